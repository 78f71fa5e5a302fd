// inFilterEntry: what one entry of an address filter lets in, a value: an address, a network (an address of which a
// number of leading bits must match), the addresses of a name, or those of the hosts that offer a service. The flags say
// which (in_filter_entry_flags.h); without a flag an entry lets nobody in.
#ifndef IN_FILTER_ENTRY_H
#define IN_FILTER_ENTRY_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inFilterEntry;
struct pbStore;
struct pbString;
struct pbVector;

IN_API const struct pbSort *inFilterEntrySort( void );
IN_API struct inFilterEntry *inFilterEntryRetain( const struct inFilterEntry *obj );
IN_API void inFilterEntryRelease( const struct inFilterEntry *obj );
IN_API struct pbObj *inFilterEntryObj( const struct inFilterEntry *obj );
IN_API struct inFilterEntry *inFilterEntryFrom( struct pbObj *obj );
IN_API struct pbString *inFilterEntryToString( const struct inFilterEntry *obj );
IN_API pbInt inFilterEntryCompare( const struct inFilterEntry *a, const struct inFilterEntry *b );
IN_API pbBool inFilterEntryEquals( const struct inFilterEntry *a, const struct inFilterEntry *b );

// The text of an address, or a valid domain name.
IN_API struct inFilterEntry *inFilterEntryCreate( const struct pbString *host );
IN_API struct inFilterEntry *inFilterEntryCreateFrom( const struct inFilterEntry *source );

IN_API struct pbString *inFilterEntryHost( const struct inFilterEntry *entry );
IN_API void inFilterEntrySetHost( struct inFilterEntry **entry, const struct pbString *host );
IN_API uint64_t inFilterEntryFlags( const struct inFilterEntry *entry );
IN_API void inFilterEntrySetFlags( struct inFilterEntry **entry, uint64_t flags );
// Only addresses of this version count; -1: of either.
IN_API pbInt inFilterEntryAddressVersion( const struct inFilterEntry *entry );
IN_API pbBool inFilterEntryHasAddressVersion( const struct inFilterEntry *entry );
IN_API void inFilterEntrySetAddressVersion( struct inFilterEntry **entry, pbInt version );
IN_API void inFilterEntryDelAddressVersion( struct inFilterEntry **entry );
// The number of leading bits in which a peer must agree; more than the address has lets nobody in. -1: the whole address.
IN_API pbInt inFilterEntryAddressMatchingBits( const struct inFilterEntry *entry );
IN_API pbBool inFilterEntryHasAddressMatchingBits( const struct inFilterEntry *entry );
IN_API void inFilterEntrySetAddressMatchingBits( struct inFilterEntry **entry, pbInt bits ); // bits >= 0
IN_API void inFilterEntryDelAddressMatchingBits( struct inFilterEntry **entry );

// What stands before the host in the names of the services, such as "_sip._udp": valid domain names. A prefix that does
// not give a valid name with the host is skipped. An answer is taken whatever its owner names, response code or truncation
// say, but of its targets 1,000 at most are asked for, two at a time, and none far longer than a name can be.
IN_API pbInt inFilterEntryDnsSrvPrefixesLength( const struct inFilterEntry *entry );
IN_API struct pbVector *inFilterEntryDnsSrvPrefixesVector( const struct inFilterEntry *entry );
IN_API void inFilterEntrySetDnsSrvPrefixesVector( struct inFilterEntry **entry, const struct pbVector *vec );
IN_API void inFilterEntryClearDnsSrvPrefixes( struct inFilterEntry **entry );
IN_API struct pbString *inFilterEntryDnsSrvPrefixAt( const struct inFilterEntry *entry, pbInt index );
IN_API void inFilterEntrySetDnsSrvPrefixAt( struct inFilterEntry **entry, pbInt index,
                                            const struct pbString *dnsSrvPrefix );
IN_API void inFilterEntryDelDnsSrvPrefixAt( struct inFilterEntry **entry, pbInt index );
IN_API void inFilterEntryAppendDnsSrvPrefix( struct inFilterEntry **entry, const struct pbString *dnsSrvPrefix );
IN_API void inFilterEntryPrependDnsSrvPrefix( struct inFilterEntry **entry, const struct pbString *dnsSrvPrefix );
// index 0..length
IN_API void inFilterEntryInsertDnsSrvPrefix( struct inFilterEntry **entry, pbInt index,
                                             const struct pbString *dnsSrvPrefix );

IN_API struct pbStore *inFilterEntryStore( const struct inFilterEntry *entry );
// Null without a valid host; what else is missing or not valid keeps its default.
IN_API struct inFilterEntry *inFilterEntryTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
