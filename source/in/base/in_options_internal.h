// The keys of stored inOptions.
#ifndef IN_OPTIONS_INTERNAL_H
#define IN_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___OptionsKeys( pbInt *count );

PB_DECLS_END

#endif
