// What a filter does with its entries, and the keys of their configuration.
#ifndef IN_FILTER_ENTRY_INTERNAL_H
#define IN_FILTER_ENTRY_INTERNAL_H

#include "in/filter/in_filter_entry.h"

PB_DECLS_BEGIN

struct csKey;

// An address or a valid domain name.
pbBool in___FilterEntryHostOk( const struct pbString *host );

// Static description of the keys of an entry, *count of them.
const struct csKey *in___FilterEntryKeys( pbInt *count );

PB_DECLS_END

#endif
