// The keys of stored inNwOptions.
#ifndef IN_NW_OPTIONS_INTERNAL_H
#define IN_NW_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___NwOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
