// Any store as the options of an address filter: none ends the process, what is restored is valid and restores to itself,
// and the list made of its addresses answers as the walk over them does. The input is lines, see store_lines.hpp.
#include "in/base/in_address_version.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_query.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_entry_flags_internal.h"
#include "in/filter/in_filter_entry_internal.h"
#include "in/filter/in_filter_list.hpp"
#include "in/filter/in_filter_options.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_boxed_int.h"
#include "pb/pb_vector.h"
#include "store_lines.hpp"
#include "support/in_tables.hpp"

namespace {

using Address = pb::Ref<struct inAddress>;
using Options = pb::Ref<struct inFilterOptions>;

struct Tables {
    support::InTables values;
    Tables() { in___FilterEntryFlagsStartup(); }
    ~Tables() { in___FilterEntryFlagsShutdown(); }
};

void checkStores( const Options &options )
{
    for ( const pbBool defaults : { false, true } ) {
        const auto stored = pb::adopt( inFilterOptionsStore( options.get(), defaults ) );
        const Options again = pb::adopt( inFilterOptionsRestore( stored.get() ) );
        PB_ASSERT( pbStoreEquals( pb::adopt( inFilterOptionsStore( again.get(), defaults ) ).get(), stored.get() ) );
        PB_ASSERT( defaults || again == options );
    }
    PB_ASSERT( inFilterOptionsRebuildInterval( options.get() ) > 0 );
}

void checkEntry( const struct inFilterEntry *entry )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    PB_ASSERT( in___FilterEntryHostOk( host.get() ) );
    PB_ASSERT( inFilterEntryFlags( entry ) == inFilterEntryFlagsNormalize( inFilterEntryFlags( entry ) ) );
    PB_ASSERT( inFilterEntryAddressMatchingBits( entry ) >= -1 );
    PB_ASSERT( !inFilterEntryHasAddressVersion( entry ) ||
               IN_ADDRESS_VERSION_OK( inFilterEntryAddressVersion( entry ) ) );
    for ( pbInt i = 0; i < inFilterEntryDnsSrvPrefixesLength( entry ); ++i )
        PB_ASSERT( inDnsIdnaDomainNameOk( pb::adopt( inFilterEntryDnsSrvPrefixAt( entry, i ) ).get() ) );
    // What the resolver may be asked for is a name that it takes.
    if ( inDnsQueryNameOk( host.get() ) ) {
        const auto ascii = pb::adopt( inDnsIdnaDomainNameToAscii( host.get() ) );
        PB_ASSERT( pbStringFindChar( ascii.get(), 0, 0 ) == -1 );
        PB_ASSERT( !pbStringEndsWithChar( ascii.get(), PB_CHAR_FULL_STOP ) );
    }
}

struct Walk {
    in::FilterFindings findings{ pb::adopt( pbVectorCreate() ), pb::adopt( pbVectorCreate() ), {}, {} };
    std::vector<std::pair<Address, pbInt>> members;

    void add( const struct inFilterEntry *entry )
    {
        const auto host = pb::adopt( inFilterEntryHost( entry ) );
        const Address address = pb::adopt( inAddressTryCreateFromString( host.get() ) );
        if ( !address )
            return;
        const pbInt bits = inFilterEntryAddressMatchingBits( entry );
        findings.sources.push_back( { 0, static_cast<uint32_t>( members.size() ), nullptr } );
        members.emplace_back( address, bits );
        pbVectorAppend( findings.addresses.address(), inAddressObj( address.get() ) );
        pbVectorAppend( findings.matchingBits.address(), pbBoxedIntObj( pb::adopt( pbBoxedIntCreate( bits ) ).get() ) );
    }
    bool permits( const Address &peer ) const
    {
        return std::any_of( members.begin(), members.end(), [&]( const auto &member ) {
            const auto &[address, bits] = member;
            return inAddressVersion( address.get() ) == inAddressVersion( peer.get() ) &&
                   ( bits == -1 ? address == peer : inAddressMatchingBits( address.get(), peer.get() ) >= bits );
        } );
    }
};

void checkList( Walk walk, const Options &options )
{
    walk.findings.removeDuplicates();
    const in::FilterList list( options, walk.findings );
    for ( const auto &[address, bits] : walk.members )
        for ( pbInt byte = 0; byte < inAddressLength( address.get() ); byte += 3 )
            for ( const pbInt change : { 0, 1, 255 } ) {
                Address peer = address;
                inAddressSetByteAt( peer.address(), byte, inAddressByteAt( peer.get(), byte ) + change );
                PB_ASSERT( list.permits( *peer ) == walk.permits( peer ) );
            }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    static const Tables tables;
    std::string_view text( reinterpret_cast<const char *>( data ), size );
    const Options options = pb::adopt( inFilterOptionsRestore( fuzz::takeStore( text ).get() ) );
    checkStores( options );
    Walk walk;
    for ( pbInt i = 0; i < inFilterOptionsEntriesLength( options.get() ); ++i ) {
        const auto entry = pb::adopt( inFilterOptionsEntryAt( options.get(), i ) );
        checkEntry( entry.get() );
        walk.add( entry.get() );
    }
    checkList( walk, options );
    return 0;
}
