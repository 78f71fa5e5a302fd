// The keys of stored inTcpOptions.
#ifndef IN_TCP_OPTIONS_INTERNAL_H
#define IN_TCP_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___TcpOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
