// The keys of stored inUdpOptions.
#ifndef IN_UDP_OPTIONS_INTERNAL_H
#define IN_UDP_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___UdpOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
