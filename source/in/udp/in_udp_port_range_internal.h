// The keys of a stored inUdpPortRange.
#ifndef IN_UDP_PORT_RANGE_INTERNAL_H
#define IN_UDP_PORT_RANGE_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___UdpPortRangeKeys( pbInt *count );

PB_DECLS_END

#endif
