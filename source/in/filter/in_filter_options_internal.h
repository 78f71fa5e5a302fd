// The keys of the configuration of address filters.
#ifndef IN_FILTER_OPTIONS_INTERNAL_H
#define IN_FILTER_OPTIONS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct csKey;

// Static description, *count keys.
const struct csKey *in___FilterOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
