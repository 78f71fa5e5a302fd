// The keys of stored inDnsOptions.
#ifndef IN_DNS_OPTIONS_INTERNAL_H
#define IN_DNS_OPTIONS_INTERNAL_H

#include "cs/cs_key.h"

PB_DECLS_BEGIN

struct csWarnings;
struct pbStore;

const struct csKey *in___DnsOptionsKeys( pbInt *count );
// Warns about what restoring the store makes of it; key is the way to it.
void in___DnsOptionsWarn( const struct pbStore *optionalStore, const char *key, struct csWarnings *warnings );

PB_DECLS_END

#endif
