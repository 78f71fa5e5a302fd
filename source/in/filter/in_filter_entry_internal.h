// What a filter does with its entries, and the keys of their configuration.
#ifndef IN_FILTER_ENTRY_INTERNAL_H
#define IN_FILTER_ENTRY_INTERNAL_H

#include "in/filter/in_filter_entry.h"

PB_DECLS_BEGIN

struct csKey;

// An address or a valid domain name.
pbBool in___FilterEntryHostOk( const struct pbString *host );

// Whether the system's resolver can be asked for the name: a valid domain name whose ASCII form neither ends in ".", nor
// holds U+0000, nor is longer than a name in DNS can be. Names from DNS and from configurations may be valid and still
// no question (U+2026 prepares to "...").
pbBool in___FilterEntryQueryNameOk( const struct pbString *name );

// Static description of the keys of an entry, *count of them.
const struct csKey *in___FilterEntryKeys( pbInt *count );

PB_DECLS_END

#endif
