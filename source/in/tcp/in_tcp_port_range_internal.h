// The keys of a stored inTcpPortRange.
#ifndef IN_TCP_PORT_RANGE_INTERNAL_H
#define IN_TCP_PORT_RANGE_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___TcpPortRangeKeys( pbInt *count );

PB_DECLS_END

#endif
