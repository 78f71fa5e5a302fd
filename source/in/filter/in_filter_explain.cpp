// Why a filter permits or refuses an address, told from the list that it checks with.
#include "in/dns/in_dns_query_failure.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_list.hpp"
#include "pb/pb_boxed_int.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"

#include <algorithm>

namespace in {
namespace {

using Address = pb::Ref<struct inAddress>;
using Store = pb::Ref<struct pbStore>;

// One address or network of an entry, as the walk over the list meets it.
struct Member {
    Address address;
    pb::String name; // null: the entry's host
    pbInt bits = -1;
    pbInt matchingBits = -1; // with the address in question; -1: of another version
    bool permits = false;

    Member( const FilterFindings &findings, const FilterFindings::Source &source,
            const struct inAddress *optionalAddress )
        : address( pb::adopt( inAddressFrom( pbVectorObjAt( findings.addresses.get(), source.address ) ) ) ),
          name( source.name ),
          bits( pbBoxedIntValue(
              pb::adopt( pbBoxedIntFrom( pbVectorObjAt( findings.matchingBits.get(), source.address ) ) ).get() ) )
    {
        if ( !optionalAddress || address->version != optionalAddress->version )
            return;
        matchingBits = inAddressMatchingBits( address.get(), optionalAddress );
        permits = bits == -1 ? *address == *optionalAddress : matchingBits >= bits;
    }
    pbInt lengthInBits() const { return inAddressLength( address.get() ) * 8; }
    pbInt wantedBits() const { return bits == -1 ? lengthInBits() : bits; }
    std::string text() const { return pb::utf8( pb::adopt( inAddressToString( address.get() ) ) ); }
};

struct Explained {
    std::vector<Member> members;
    std::vector<const FilterFindings::Note *> notes;

    const Member *permitting() const
    {
        const auto found = std::find_if( members.begin(), members.end(), []( const auto &m ) { return m.permits; } );
        return found == members.end() ? nullptr : &*found;
    }
};

// By entry of the options.
std::vector<Explained> explainEntries( const FilterList &list, const struct inAddress *optionalAddress )
{
    const FilterFindings &findings = list.findings();
    std::vector<Explained> entries( static_cast<size_t>( inFilterOptionsEntriesLength( list.options() ) ) );
    for ( const auto &source : findings.sources )
        entries[source.entry].members.emplace_back( findings, source, optionalAddress );
    for ( const auto &note : findings.notes )
        entries[note.entry].notes.push_back( &note );
    for ( Explained &entry : entries ) // answers come in any order
        std::sort( entry.members.begin(), entry.members.end(),
                          []( const Member &a, const Member &b ) { return *a.address < *b.address; } );
    return entries;
}

std::string joined( const std::vector<std::string> &texts, size_t most )
{
    std::string text;
    for ( size_t i = 0; i < texts.size() && i < most; ++i )
        text += ( i ? ", " : "" ) + texts[i];
    return texts.size() > most ? text + " and " + std::to_string( texts.size() - most ) + " more" : text;
}

std::string matched( const Member &member )
{
    const pbInt wanted = member.wantedBits();
    return "matches " + std::to_string( std::min( member.matchingBits, wanted ) ) + " of " + std::to_string( wanted ) +
           " bits";
}

std::string versionName( const Member &member )
{
    return member.address->isV4() ? "IPv4" : "IPv6";
}

std::string whyPermitted( const Member &member )
{
    const std::string told = member.name ? "resolved to " + member.text() : "";
    if ( member.bits == -1 )
        return member.name ? told : "is " + member.text();
    return ( told.empty() ? "" : told + ", " ) + matched( member );
}

std::string whyRefused( const Explained &entry )
{
    constexpr size_t mostNames = 3;
    std::vector<std::string> resolved, notes;
    const Member *nearest = nullptr;
    for ( const Member &member : entry.members ) {
        if ( member.name )
            resolved.push_back( member.text() + ( member.bits == -1 ? "" : "/" + std::to_string( member.bits ) ) );
        else if ( !nearest || member.matchingBits > nearest->matchingBits )
            nearest = &member;
    }
    for ( const FilterFindings::Note *note : entry.notes )
        notes.push_back( pb::utf8( note->name ) + ": " + note->text );
    std::string text;
    const auto add = [&]( const std::string &part ) { text += ( text.empty() ? "" : ", " ) + part; };
    if ( nearest && nearest->matchingBits == -1 )
        add( "is an " + versionName( *nearest ) + " address" );
    else if ( nearest && nearest->wantedBits() > nearest->lengthInBits() )
        add( "asks for " + std::to_string( nearest->bits ) + " of " + std::to_string( nearest->lengthInBits() ) +
             " bits" );
    else if ( nearest )
        add( matched( *nearest ) );
    if ( !resolved.empty() )
        add( "resolved to " + joined( resolved, mostNames ) );
    if ( !notes.empty() )
        add( ( text.empty() ? "has no address: " : "" ) + joined( notes, mostNames ) );
    return text.empty() ? "has no address" : text;
}

Store storeMember( const Member &member )
{
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( store.address(), "address", -1, pb::adopt( inAddressToString( member.address.get() ) ).get() );
    if ( member.bits != -1 )
        pbStoreSetValueIntCstr( store.address(), "bits", -1, member.bits );
    if ( member.matchingBits != -1 )
        pbStoreSetValueIntCstr( store.address(), "matchingBits", -1, member.matchingBits );
    if ( member.name )
        pbStoreSetValueCstr( store.address(), "name", -1, member.name.get() );
    return store;
}

Store storeNote( const FilterFindings::Note &note )
{
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( store.address(), "name", -1, note.name.get() );
    pbStoreSetValueCstr( store.address(), "text", -1, pb::string( note.text ).get() );
    return store;
}

Store storeEntry( const struct inFilterOptions *options, pbInt index, const Explained &explained, bool withVerdict )
{
    const auto entry = pb::adopt( inFilterOptionsEntryAt( options, index ) );
    auto store = pb::adopt( pbStoreCreate() );
    auto addresses = pb::adopt( pbStoreCreate() ), notes = pb::adopt( pbStoreCreate() );
    for ( const Member &member : explained.members )
        pbStoreArrayAppendStore( addresses.address(), storeMember( member ).get() );
    for ( const FilterFindings::Note *note : explained.notes )
        pbStoreArrayAppendStore( notes.address(), storeNote( *note ).get() );
    pbStoreSetValueIntCstr( store.address(), "entry", -1, index + 1 );
    pbStoreSetValueCstr( store.address(), "host", -1, pb::adopt( inFilterEntryHost( entry.get() ) ).get() );
    if ( withVerdict )
        pbStoreSetValueBoolCstr( store.address(), "permits", -1, explained.permitting() != nullptr );
    pbStoreSetStoreCstr( store.address(), "addresses", -1, addresses.get() );
    pbStoreSetStoreCstr( store.address(), "notes", -1, notes.get() );
    return store;
}

} // namespace

const char *whyNotFound( pbInt failure )
{
    switch ( failure ) {
    case IN_DNS_QUERY_FAILURE_DISABLED: return "the stack's options forbid the look-up";
    case IN_DNS_QUERY_FAILURE_NO_NAME: return "the resolver knows no such name";
    case IN_DNS_QUERY_FAILURE_NO_DATA: return "the name has nothing of what was looked up";
    case IN_DNS_QUERY_FAILURE_NO_ANSWER: return "no name server gave an answer";
    case IN_DNS_QUERY_FAILURE_SERVER: return "the name server reported a failure";
    case IN_DNS_QUERY_FAILURE_BAD_ANSWER: return "the answer was not acceptable";
    case IN_DNS_QUERY_FAILURE_FLUSHED: return "the stack's address changed during the look-up";
    case IN_DNS_QUERY_FAILURE_NOT_ASKABLE: return "not a name that can be looked up";
    default: return "the look-up failed";
    }
}

Store explain( const FilterList &list, const struct inAddress *optionalAddress )
{
    auto array = pb::adopt( pbStoreCreate() );
    const std::vector<Explained> explained = explainEntries( list, optionalAddress );
    for ( size_t i = 0; i < explained.size(); ++i )
        pbStoreArrayAppendStore( array.address(), storeEntry( list.options(), static_cast<pbInt>( i ), explained[i],
                                                              optionalAddress != nullptr )
                                                      .get() );
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueIntCstr( store.address(), "addresses", -1, list.length() );
    pbStoreSetStoreCstr( store.address(), "entries", -1, array.get() );
    return store;
}

std::string explanation( const FilterList &list, const struct inAddress *address )
{
    constexpr size_t mostEntries = 5;
    std::vector<std::string> reasons;
    const std::vector<Explained> explained = explainEntries( list, address );
    const auto entryText = []( size_t index ) { return "entry " + std::to_string( index + 1 ) + " "; };
    for ( size_t i = 0; i < explained.size(); ++i )
        if ( const Member *member = explained[i].permitting() )
            return entryText( i ) + whyPermitted( *member );
    std::string text;
    for ( size_t i = 0; i < explained.size() && i < mostEntries; ++i )
        text += ( i ? "; " : "" ) + entryText( i ) + whyRefused( explained[i] );
    if ( explained.size() > mostEntries )
        text += "; and " + std::to_string( explained.size() - mostEntries ) + " more entries do not match";
    return text.empty() ? "there is no entry" : text;
}

} // namespace in
