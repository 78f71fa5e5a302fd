// The keys of stored inQosOptions.
#ifndef IN_QOS_OPTIONS_INTERNAL_H
#define IN_QOS_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___QosOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
