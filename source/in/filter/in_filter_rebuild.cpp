// FilterRebuild: from the entries of a filter, through DNS, to its next list.
#include "in/filter/in_filter_rebuild.hpp"

#include "in/base/in_stack.h"
#include "in/dns/in_dns_data_in_srv.hpp"
#include "in/dns/in_dns_query.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_srv.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "pb/pb_boxed_int.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

#include <set>

namespace in {
namespace {

using AddressesQuery = pb::Ref<struct inDnsQueryAddresses>;
using SrvQuery = pb::Ref<struct inDnsQuerySrv>;

// More than any service names. A hostile answer of 64 KiB may name 2,600 targets, each of which would be a look-up.
constexpr size_t mostTargets = 1000;
// As many look-ups may stand still at once as there are name servers that do not answer, and they share their threads
// with all others: those that an answer asks for must leave some to those that people ask for.
constexpr pbInt mostTargetsAtOnce = 2;

constexpr const char *noQuestion = "not a name that can be looked up";

bool has( const struct inFilterEntry *entry, uint64_t flag )
{
    return inFilterEntryFlags( entry ) & flag;
}

bool versionFits( const struct inFilterEntry *entry, const struct inAddress *address )
{
    return !inFilterEntryHasAddressVersion( entry ) ||
           inFilterEntryAddressVersion( entry ) == inAddressVersion( address );
}

pbInt entryIndex( const pb::Ref<struct pbDict> &queries, pbInt at )
{
    return pbBoxedIntValue( pb::adopt( pbBoxedIntFrom( pbDictValueAt( queries.get(), at ) ) ).get() );
}

// Hands the queries that have ended to take, with the places of their entries, and out of the dictionary.
template <class Query, class Take>
void takeEnded( pb::Ref<struct pbDict> &queries, Query *( *from )( struct pbObj * ), pbBool ( *end )( const Query * ),
                FilterRebuild::Dropped &dropped, const Take &take )
{
    for ( pbInt at = 0; at < pbDictLength( queries.get() ); ) {
        auto key = pb::adopt( pbDictKeyAt( queries.get(), at ) );
        const Query *query = from( key.get() );
        if ( !end( query ) ) {
            ++at;
            continue;
        }
        take( entryIndex( queries, at ), query );
        dropped.push_back( std::move( key ) );
        pbDictDelAt( queries.address(), at );
    }
}

template <class Query>
void stopSignalling( const pb::Ref<struct pbDict> &queries, Query *( *from )( struct pbObj * ),
                     void ( *del )( Query *, struct pbSignalable * ), struct pbSignalable *signalable )
{
    for ( pbInt at = 0; at < pbDictLength( queries.get() ); ++at )
        del( pb::adopt( from( pbDictKeyAt( queries.get(), at ) ) ).get(), signalable );
}

// The distinct targets of SRV data, in its order.
struct Targets {
    std::vector<pb::String> names;
    size_t beyond = 0;  // the limit
    size_t tooLong = 0; // no name of DNS is; the texts of all that one answer holds could fill the memory

    explicit Targets( const struct inDnsQuerySrv *query )
    {
        std::set<pb::String> seen;
        for ( pbInt i = 0; i < inDnsQuerySrvDataInSrvsLength( query ); ++i ) {
            const auto data = pb::adopt( inDnsQuerySrvDataInSrvAt( query, i ) );
            if ( data->target.length() > dns::Name::longestText )
                ++tooLong;
            else if ( const pb::String name = data->target.text(); name && seen.insert( name ).second )
                if ( names.size() < mostTargets )
                    names.push_back( name );
        }
        beyond = seen.size() - names.size();
    }
};

} // namespace

FilterRebuild::FilterRebuild( pb::Ref<struct trStream> filterTrace, pb::Ref<struct pbSignalable> signalable )
    : filterTrace_( std::move( filterTrace ) ), signalable_( std::move( signalable ) )
{
}

// One that is under way is abandoned.
void FilterRebuild::start( const Options &options, const Stack &stack, Dropped &dropped )
{
    drop( dropped );
    buildRebuilding = true;
    buildOptions = options;
    buildTrace = pb::adopt( trStreamCreateCstr( "in___FilterImpRebuild()", -1 ) );
    trAnchorComplete( pb::adopt( trAnchorCreate( filterTrace_.get(), TR_ANCHOR_KIND_PLAIN ) ).get(), buildTrace.get() );
    buildAddressesVector = pb::adopt( pbVectorCreate() );
    buildMatchingBitsVector = pb::adopt( pbVectorCreate() );
    buildDnsQueryAddressesDict = pb::adopt( pbDictCreate() );
    buildDnsQuerySrvDict = pb::adopt( pbDictCreate() );
    for ( pbInt index = 0; index < inFilterOptionsEntriesLength( buildOptions.get() ); ++index ) {
        const auto entry = entryAt( index );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_ADDRESS ) )
            addHost( index, entry.get() );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES ) )
            askForHost( index, entry.get(), stack );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV ) )
            askForServices( index, entry.get(), stack );
    }
}

void FilterRebuild::addHost( pbInt index, const struct inFilterEntry *entry )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    const auto address = pb::adopt( inAddressTryCreateFromString( host.get() ) );
    if ( address )
        append( index, entry, address.get(), nullptr );
    else if ( inFilterEntryFlags( entry ) == IN_FILTER_ENTRY_FLAG_ADDRESS )
        note( index, host, "not an address, and the flags do not let it be looked up" );
}

void FilterRebuild::askForHost( pbInt index, const struct inFilterEntry *entry, const Stack &stack )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    if ( !stack )
        note( index, host, "there is no stack to ask for it" );
    else if ( !inDnsQueryNameOk( host.get() ) )
        noteUnlessAddress( index, host, noQuestion );
    else
        askForAddresses( index, host, stack );
}

void FilterRebuild::askForServices( pbInt index, const struct inFilterEntry *entry, const Stack &stack )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    const pbInt prefixes = inFilterEntryDnsSrvPrefixesLength( entry );
    if ( !stack || !prefixes )
        note( index, host, prefixes ? "there is no stack to ask for its services" : "no prefix names a service of it" );
    for ( pbInt i = 0; stack && i < prefixes; ++i ) {
        const auto service = pb::format( "%~s.%s", pb::adopt( inFilterEntryDnsSrvPrefixAt( entry, i ) ), host );
        if ( !inDnsQueryNameOk( service.get() ) ) {
            note( index, service, noQuestion );
            continue;
        }
        const auto boxed = pb::adopt( pbBoxedIntCreate( index ) );
        const SrvQuery query = pb::adopt( inDnsQuerySrvCreate( stack.get(), service.get(), anchor().get() ) );
        pbDictSetObjKey( buildDnsQuerySrvDict.address(), inDnsQuerySrvObj( query.get() ),
                         pbBoxedIntObj( boxed.get() ) );
        inDnsQuerySrvEndAddSignalable( query.get(), signalable_.get() );
    }
}

void FilterRebuild::askForAddresses( pbInt index, const pb::String &name, const Stack &stack )
{
    const auto boxed = pb::adopt( pbBoxedIntCreate( index ) );
    const AddressesQuery query = pb::adopt( inDnsQueryAddressesCreate( stack.get(), name.get(), anchor().get() ) );
    pbDictSetObjKey( buildDnsQueryAddressesDict.address(), inDnsQueryAddressesObj( query.get() ),
                     pbBoxedIntObj( boxed.get() ) );
    inDnsQueryAddressesEndAddSignalable( query.get(), signalable_.get() );
}

void FilterRebuild::collect( const Stack &stack, Dropped &dropped )
{
    // Services first, as the addresses of their targets may be known already.
    takeEnded( buildDnsQuerySrvDict, inDnsQuerySrvFrom, inDnsQuerySrvEnd, dropped,
               [this]( pbInt index, const struct inDnsQuerySrv *query ) { takeServices( index, query ); } );
    do {
        askForTargets( stack );
        takeEnded( buildDnsQueryAddressesDict, inDnsQueryAddressesFrom, inDnsQueryAddressesEnd, dropped,
                   [this]( pbInt index, const struct inDnsQueryAddresses *query ) { takeAddresses( index, query ); } );
    } while ( !buildTargets.empty() && pbDictLength( buildDnsQueryAddressesDict.get() ) < mostTargetsAtOnce );
}

void FilterRebuild::askForTargets( const Stack &stack )
{
    while ( !buildTargets.empty() && pbDictLength( buildDnsQueryAddressesDict.get() ) < mostTargetsAtOnce ) {
        const auto [index, name] = std::move( buildTargets.front() );
        buildTargets.pop_front();
        if ( stack )
            askForAddresses( index, name, stack );
        else
            note( index, name, "there is no stack to ask for it" );
    }
}

void FilterRebuild::takeServices( pbInt index, const struct inDnsQuerySrv *query )
{
    const auto service = pb::adopt( inDnsQuerySrvService( query ) );
    if ( inDnsQuerySrvError( query ) )
        return note( index, service, whyNotFound( inDnsQuerySrvFailure( query ) ) );
    const Targets targets( query );
    if ( targets.names.empty() && !targets.tooLong )
        note( index, service, "the service is not available" );
    if ( targets.tooLong )
        note( index, service, "targets longer than names can be are left out: " + std::to_string( targets.tooLong ) );
    if ( targets.beyond ) {
        trStreamSetNotable( buildTrace.get() );
        tr::text( buildTrace.get(), "[in___FilterImpRebuild()] service: %s, targets left out: %i", service,
                  targets.beyond );
        note( index, service,
              "only " + std::to_string( mostTargets ) + " targets are asked for, " + std::to_string( targets.beyond ) +
                  " more are left out" );
    }
    for ( const pb::String &target : targets.names )
        if ( inDnsQueryNameOk( target.get() ) )
            buildTargets.emplace_back( index, target );
        else
            note( index, target, noQuestion );
}

void FilterRebuild::takeAddresses( pbInt index, const struct inDnsQueryAddresses *query )
{
    const auto name = pb::adopt( inDnsQueryAddressesDomainName( query ) );
    const auto entry = entryAt( index );
    if ( inDnsQueryAddressesError( query ) )
        return noteUnlessAddress( index, name, whyNotFound( inDnsQueryAddressesFailure( query ) ) );
    for ( pbInt i = 0; i < inDnsQueryAddressesAddressesLength( query ); ++i )
        append( index, entry.get(), pb::adopt( inDnsQueryAddressesAddressAt( query, i ) ).get(), name );
}

bool FilterRebuild::isPending() const
{
    return pbDictLength( buildDnsQueryAddressesDict.get() ) || pbDictLength( buildDnsQuerySrvDict.get() ) ||
           !buildTargets.empty();
}

// An address of another version than the entry's is left out.
void FilterRebuild::append( pbInt index, const struct inFilterEntry *entry, const struct inAddress *address,
                            const pb::String &name )
{
    if ( !versionFits( entry, address ) )
        return note( index, pb::adopt( inAddressToString( address ) ), "not of the entry's address version" );
    const auto boxed = pb::adopt( pbBoxedIntCreate( inFilterEntryAddressMatchingBits( entry ) ) );
    const auto place = static_cast<uint32_t>( pbVectorLength( buildAddressesVector.get() ) );
    pbVectorAppend( buildAddressesVector.address(), inAddressObj( address ) );
    pbVectorAppend( buildMatchingBitsVector.address(), pbBoxedIntObj( boxed.get() ) );
    buildSources.push_back( { static_cast<uint32_t>( index ), place, name } );
}

void FilterRebuild::note( pbInt index, const pb::String &name, std::string text )
{
    buildNotes.push_back( { static_cast<uint32_t>( index ), name, std::move( text ) } );
}

// The look-up of an address that is taken as such fails as well, and nobody misses an answer.
void FilterRebuild::noteUnlessAddress( pbInt index, const pb::String &name, const char *text )
{
    if ( !has( entryAt( index ).get(), IN_FILTER_ENTRY_FLAG_ADDRESS ) ||
         !pb::adopt( inAddressTryCreateFromString( name.get() ) ) )
        note( index, name, text );
}

std::shared_ptr<const FilterList> FilterRebuild::finish( Dropped &dropped )
{
    FilterFindings findings{ std::move( buildAddressesVector ), std::move( buildMatchingBitsVector ),
                             std::move( buildSources ), std::move( buildNotes ) };
    findings.removeDuplicates();
    auto list = std::make_shared<const FilterList>( buildOptions, std::move( findings ) );
    if ( tr::listening() ) // nobody else sees the stream, which ends here
        trStreamSetPropertyCstrStore( buildTrace.get(), "inFilterAddresses", -1, list->keys().get() );
    drop( dropped );
    return list;
}

// Queries that are still pending are left alone.
void FilterRebuild::drop( Dropped &dropped )
{
    if ( buildRebuilding ) {
        stopSignalling( buildDnsQuerySrvDict, inDnsQuerySrvFrom, inDnsQuerySrvEndDelSignalable, signalable_.get() );
        stopSignalling( buildDnsQueryAddressesDict, inDnsQueryAddressesFrom, inDnsQueryAddressesEndDelSignalable,
                        signalable_.get() );
    }
    dropped.push_back( pb::adopt( pbDictObj( buildDnsQuerySrvDict.release() ) ) );
    dropped.push_back( pb::adopt( pbDictObj( buildDnsQueryAddressesDict.release() ) ) );
    dropped.push_back( pb::adopt( inFilterOptionsObj( buildOptions.release() ) ) );
    buildRebuilding = false;
    buildTrace.reset();
    buildAddressesVector.reset();
    buildMatchingBitsVector.reset();
    buildTargets.clear();
    buildSources.clear();
    buildNotes.clear();
}

void FilterRebuild::assertBuild( const FilterRebuild *imp )
{
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildOptions ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildTrace ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildAddressesVector ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildMatchingBitsVector ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildDnsQueryAddressesDict ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildDnsQuerySrvDict ) );
}

pb::Ref<struct inFilterEntry> FilterRebuild::entryAt( pbInt index ) const
{
    return pb::adopt( inFilterOptionsEntryAt( buildOptions.get(), index ) );
}

pb::Ref<struct trAnchor> FilterRebuild::anchor() const
{
    return pb::adopt( trAnchorCreate( buildTrace.get(), TR_ANCHOR_KIND_PLAIN ) );
}

} // namespace in
