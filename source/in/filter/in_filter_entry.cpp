// inFilterEntry: one entry of an address filter.
#include "in/filter/in_filter_entry.h"

#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "in/base/in_address_version_internal.h"
#include "in/base/in_store_form_vector.hpp"
#include "in/dns/in_dns_idna.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_entry_flags_internal.h"
#include "in/filter/in_filter_entry_internal.h"

PB_SORT_DECLARE( in___sort_IN_FILTER_ENTRY )

struct inFilterEntry final : pb::Object<struct inFilterEntry, in___sort_IN_FILTER_ENTRY> {
    pb::String host;    // null only while it is restored
    uint64_t flags = 0; // normalised
    pbInt addressVersion = -1;
    pbInt addressMatchingBits = -1;
    pb::Ref<struct pbVector> dnsSrvPrefixes = pb::adopt( pbVectorCreate() ); // never null

    auto operator<=>( const inFilterEntry & ) const = default;
};

PB_OBJECT_DEFINE( inFilterEntry, in___sort_IN_FILTER_ENTRY )

namespace {

using in::form::AcceptedText;
using in::form::Row;
using in::form::Told;

constexpr auto form = std::tuple{
    Row{ "host", &inFilterEntry::host,
         Told{ AcceptedText{ in___FilterEntryHostOk, "an IP address or a domain name" },
               "The address, or the name that is looked up", CS_KEY_FLAG_REQUIRED },
         in::form::always },
    Row{ "flags", &inFilterEntry::flags,
         Told{ in::form::Flags{ inFilterEntryFlagsToString, inFilterEntryFlagsFromString, in___FilterEntryFlagsNames },
               "How the host becomes addresses; without a flag the entry lets nobody in" },
         in::form::always },
    Row{ "addressVersion", &inFilterEntry::addressVersion,
         Told{ in::form::Enumeration{ inAddressVersionToString, inAddressVersionFromString, in___AddressVersionNames },
               "Only addresses of this version count" },
         in::form::whenPresent },
    Row{ "addressMatchingBits", &inFilterEntry::addressMatchingBits,
         Told{ in::form::Integer{ 0, PB_INT_MAX },
               "The number of leading bits in which a peer must agree; without it the whole address must" },
         in::form::whenPresent },
    Row{ "dnsSrvPrefixes", &inFilterEntry::dnsSrvPrefixes,
         Told{ in::form::VectorOf<struct pbString, AcceptedText>{ { inDnsIdnaDomainNameOk, "a domain name" } },
               "What stands before the host in the names of services, such as _sip._udp; of a service 1,000 hosts at most are "
               "looked up" },
         in::form::always },
};

struct pbVector **editPrefixes( struct inFilterEntry **entry )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    return pb::edit( entry ).dnsSrvPrefixes.address();
}

const struct pbObj *prefixObj( const struct pbString *dnsSrvPrefix )
{
    PB_ASSERT( dnsSrvPrefix );
    PB_ASSERT( inDnsIdnaDomainNameOk( dnsSrvPrefix ) );
    return pbStringObj( dnsSrvPrefix );
}

} // namespace

pbBool in___FilterEntryHostOk( const struct pbString *host )
{
    PB_ASSERT( host );
    return inDnsIdnaDomainNameOk( host ) || pb::adopt( inAddressTryCreateFromString( host ) );
}

const struct csKey *in___FilterEntryKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inFilterEntry *inFilterEntryCreate( const struct pbString *host )
{
    PB_ASSERT( host );
    PB_ASSERT( in___FilterEntryHostOk( host ) );
    auto entry = pb::make<struct inFilterEntry>();
    entry->host = pb::share( host );
    return entry.release();
}

struct inFilterEntry *inFilterEntryCreateFrom( const struct inFilterEntry *source )
{
    PB_ASSERT( source );
    return pb::make<struct inFilterEntry>( *source ).release();
}

struct pbString *inFilterEntryHost( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->host.share();
}

void inFilterEntrySetHost( struct inFilterEntry **entry, const struct pbString *host )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    PB_ASSERT( host );
    PB_ASSERT( in___FilterEntryHostOk( host ) );
    pb::edit( entry ).host = pb::share( host );
}

uint64_t inFilterEntryFlags( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->flags;
}

void inFilterEntrySetFlags( struct inFilterEntry **entry, uint64_t flags )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    pb::edit( entry ).flags = inFilterEntryFlagsNormalize( flags );
}

pbInt inFilterEntryAddressVersion( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->addressVersion;
}

pbBool inFilterEntryHasAddressVersion( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return IN_ADDRESS_VERSION_OK( entry->addressVersion );
}

void inFilterEntrySetAddressVersion( struct inFilterEntry **entry, pbInt version )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    PB_ASSERT( IN_ADDRESS_VERSION_OK( version ) );
    pb::edit( entry ).addressVersion = version;
}

void inFilterEntryDelAddressVersion( struct inFilterEntry **entry )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    pb::edit( entry ).addressVersion = -1;
}

pbInt inFilterEntryAddressMatchingBits( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->addressMatchingBits;
}

pbBool inFilterEntryHasAddressMatchingBits( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->addressMatchingBits >= 0;
}

void inFilterEntrySetAddressMatchingBits( struct inFilterEntry **entry, pbInt bits )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    PB_ASSERT( bits >= 0 );
    pb::edit( entry ).addressMatchingBits = bits;
}

void inFilterEntryDelAddressMatchingBits( struct inFilterEntry **entry )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    pb::edit( entry ).addressMatchingBits = -1;
}

pbInt inFilterEntryDnsSrvPrefixesLength( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return pbVectorLength( entry->dnsSrvPrefixes.get() );
}

struct pbVector *inFilterEntryDnsSrvPrefixesVector( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return entry->dnsSrvPrefixes.share();
}

void inFilterEntrySetDnsSrvPrefixesVector( struct inFilterEntry **entry, const struct pbVector *vec )
{
    PB_ASSERT( entry );
    PB_ASSERT( *entry );
    PB_ASSERT( vec );
    PB_ASSERT( pbVectorContainsOnly( vec, pbStringSort() ) );
    for ( pbInt i = 0; i < pbVectorLength( vec ); ++i )
        (void)prefixObj( pb::adopt( pbStringFrom( pbVectorObjAt( vec, i ) ) ).get() ); // for its preconditions
    pb::edit( entry ).dnsSrvPrefixes = pb::share( vec );
}

void inFilterEntryClearDnsSrvPrefixes( struct inFilterEntry **entry )
{
    pbVectorClear( editPrefixes( entry ) );
}

struct pbString *inFilterEntryDnsSrvPrefixAt( const struct inFilterEntry *entry, pbInt index )
{
    PB_ASSERT( entry );
    return pbStringFrom( pbVectorObjAt( entry->dnsSrvPrefixes.get(), index ) );
}

void inFilterEntrySetDnsSrvPrefixAt( struct inFilterEntry **entry, pbInt index, const struct pbString *dnsSrvPrefix )
{
    pbVectorSetObjAt( editPrefixes( entry ), index, prefixObj( dnsSrvPrefix ) );
}

void inFilterEntryDelDnsSrvPrefixAt( struct inFilterEntry **entry, pbInt index )
{
    pbVectorDelAt( editPrefixes( entry ), index );
}

void inFilterEntryAppendDnsSrvPrefix( struct inFilterEntry **entry, const struct pbString *dnsSrvPrefix )
{
    pbVectorAppend( editPrefixes( entry ), prefixObj( dnsSrvPrefix ) );
}

void inFilterEntryPrependDnsSrvPrefix( struct inFilterEntry **entry, const struct pbString *dnsSrvPrefix )
{
    pbVectorPrepend( editPrefixes( entry ), prefixObj( dnsSrvPrefix ) );
}

void inFilterEntryInsertDnsSrvPrefix( struct inFilterEntry **entry, pbInt index, const struct pbString *dnsSrvPrefix )
{
    pbVectorInsert( editPrefixes( entry ), index, prefixObj( dnsSrvPrefix ) );
}

struct pbStore *inFilterEntryStore( const struct inFilterEntry *entry )
{
    PB_ASSERT( entry );
    return in::form::store( *entry, form ).release();
}

struct inFilterEntry *inFilterEntryTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto entry = pb::make<struct inFilterEntry>();
    (void)in::form::restore( *entry, form, store ); // the host alone must be there
    return entry->host ? entry.release() : nullptr;
}
