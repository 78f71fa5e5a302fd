// The keys of stored inDnsOptions.
#ifndef IN_DNS_OPTIONS_INTERNAL_H
#define IN_DNS_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

const struct csKey *in___DnsOptionsKeys( pbInt *count );

PB_DECLS_END

#endif
