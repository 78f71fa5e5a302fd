// How the host of a filter entry becomes addresses. Several flags may be given.
#ifndef IN_FILTER_ENTRY_FLAGS_H
#define IN_FILTER_ENTRY_FLAGS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_FILTER_ENTRY_FLAG_ADDRESS ( (uint64_t)1 )             // it is an address
#define IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES ( (uint64_t)2 ) // it is a name, whose addresses are asked for
#define IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV ( (uint64_t)4 ) // the entry's prefixes and it are names, whose SRV data is

// Keeps the flags defined above.
IN_API uint64_t inFilterEntryFlagsNormalize( uint64_t flags );
// The names joined by "|"; the empty text for none. Known between start-up and shut-down of the module.
IN_API struct pbString *inFilterEntryFlagsToString( uint64_t flags );
// Unknown names are ignored.
IN_API uint64_t inFilterEntryFlagsFromString( const struct pbString *pbs );

PB_DECLS_END

#endif
