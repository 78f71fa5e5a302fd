// in___FilterImp: making the list of a filter, and checking with it.
#include "in/filter/in_filter_imp_internal.h"

#include "cs/cs_object_observer.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_halt_mark.hpp"
#include "in/base/in_published.hpp"
#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_srv.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_entry_internal.h"
#include "in/filter/in_filter_list.hpp"
#include "pb/pb_boxed_int.h"
#include "pb/pb_dict.h"
#include "pb/pb_region.hpp"
#include "pb/pb_store.h"
#include "pb/pb_timer.h"
#include "pb/pb_vector.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

#include <memory>
#include <set>

PB_SORT_DECLARE( in___sort_IN___FILTER_IMP )

namespace {

using Dict = pb::Ref<struct pbDict>;
using Options = pb::Ref<struct inFilterOptions>;
using Stack = pb::Ref<struct inStack>;
using AddressesQuery = pb::Ref<struct inDnsQueryAddresses>;
using SrvQuery = pb::Ref<struct inDnsQuerySrv>;

// One answer of SRV data may name thousands of targets, each of which would be a look-up.
constexpr size_t mostTargets = 64;

// What a check needs, of one moment.
struct Rules {
    bool stackAddressPermitted = false;
    Stack stack; // or null
    std::shared_ptr<const in::FilterList> list;

    bool permit( const struct inAddress &address ) const
    {
        return ( stackAddressPermitted && stack && in___StackAddressIs( stack.get(), &address ) ) ||
               list->permits( address );
    }
};

std::unique_ptr<const Rules> noRules( const Options &options )
{
    in::FilterFindings findings;
    findings.addresses = pb::adopt( pbVectorCreate() );
    findings.matchingBits = pb::adopt( pbVectorCreate() );
    Rules rules;
    rules.list = std::make_shared<const in::FilterList>( options, std::move( findings ) );
    return std::make_unique<const Rules>( std::move( rules ) );
}

// What a run lets go, dropped when the region has been left: the last reference may end a stack.
struct Left {
    Options options;
    Stack stack;
    std::vector<pb::Ref<struct pbObj>> queries;
    in::Published<Rules>::Replaced rules;
};

pb::Ref<struct trAnchor> anchorOn( const pb::Ref<struct trStream> &stream )
{
    return pb::adopt( trAnchorCreate( stream.get(), TR_ANCHOR_KIND_PLAIN ) );
}

bool has( const struct inFilterEntry *entry, uint64_t flag )
{
    return inFilterEntryFlags( entry ) & flag;
}

bool versionFits( const struct inFilterEntry *entry, const struct inAddress *address )
{
    return !inFilterEntryHasAddressVersion( entry ) || inFilterEntryAddressVersion( entry ) == inAddressVersion( address );
}

pbInt entryIndex( const Dict &queries, pbInt at )
{
    return pbBoxedIntValue( pb::adopt( pbBoxedIntFrom( pbDictValueAt( queries.get(), at ) ) ).get() );
}

// The distinct targets of the data, in its order; those beyond the limit are counted.
std::vector<pb::String> targetsOf( const struct inDnsQuerySrv *query, size_t &beyond )
{
    std::vector<pb::String> targets;
    std::set<pb::String> seen;
    for ( pbInt i = 0; i < inDnsQuerySrvDataInSrvsLength( query ); ++i ) {
        const auto data = pb::adopt( inDnsQuerySrvDataInSrvAt( query, i ) );
        const auto target = pb::adopt( inDnsDataInSrvTarget( data.get() ) );
        if ( target && seen.insert( target ).second && targets.size() < mostTargets )
            targets.push_back( target );
    }
    beyond = seen.size() - targets.size();
    return targets;
}

} // namespace

struct in___FilterImp final : pb::Object<struct in___FilterImp, in___sort_IN___FILTER_IMP> {
    in___FilterImp( const struct inFilterOptions *options, struct trAnchor *optionalAnchor );
    ~in___FilterImp();

    void run();

    in::HaltMark<in___FilterImp> halted;

    // Fixed after construction.
    const pb::Ref<struct trStream> trace = pb::adopt( trStreamCreateCstr( "IN_FILTER", -1 ) );
    const pb::Ref<struct csStatusReporter> status;
    const pb::Ref<struct csObjectObserver> stackObserver;
    const pb::Ref<struct prProcess> isProcess;
    const pb::Ref<struct pbSignalable> isSignalable;
    const pb::Ref<struct pbTimer> rebuildTimer;

    in::Published<Rules> published; // replaced under the region held exclusively

    mutable pb::Region region{ 10 };
    // Guarded by the region.
    Options options PB_GUARDED_BY( region );
    std::shared_ptr<const in::FilterList> list PB_GUARDED_BY( region ); // the one published
    bool listMade PB_GUARDED_BY( region ) = false;        // and not the empty one of the beginning
    bool listIsOfOptions PB_GUARDED_BY( region ) = false; // of those applied
    // While rebuilding, together or not at all. The queries' values are the places of their entries.
    bool buildRebuilding PB_GUARDED_BY( region ) = false;
    pb::Ref<struct trStream> buildTrace PB_GUARDED_BY( region );
    pb::Ref<struct pbVector> buildAddressesVector PB_GUARDED_BY( region );
    pb::Ref<struct pbVector> buildMatchingBitsVector PB_GUARDED_BY( region );
    Dict buildDnsQueryAddressesDict PB_GUARDED_BY( region );
    Dict buildDnsQuerySrvDict PB_GUARDED_BY( region );

  private:
    // The steps of a run.
    bool takeOverOptions() PB_REQUIRES( region );
    bool takeOverStack() PB_REQUIRES( region );
    void startRebuild( Left &left ) PB_REQUIRES( region );
    void collectServices( Left &left ) PB_REQUIRES( region );
    void collectAddresses( Left &left ) PB_REQUIRES( region );
    bool queriesPending() const PB_REQUIRES( region );
    void publishList() PB_REQUIRES( region );
    [[nodiscard]] in::Published<Rules>::Replaced publishRules() PB_REQUIRES( region );
    void report() PB_REQUIRES( region );

    // Of one entry, when a rebuild starts.
    void addHost( pbInt index, const struct inFilterEntry *entry ) PB_REQUIRES( region );
    void askForHost( pbInt index, const struct inFilterEntry *entry ) PB_REQUIRES( region );
    void askForServices( pbInt index, const struct inFilterEntry *entry ) PB_REQUIRES( region );

    static void assertBuild( const in___FilterImp *imp ) PB_REQUIRES( imp->region );
    void dropBuild( Left &left ) PB_REQUIRES( region );
    void askForAddresses( pbInt index, const pb::String &name ) PB_REQUIRES( region );
    void takeServices( pbInt index, const struct inDnsQuerySrv *query ) PB_REQUIRES( region );
    void takeAddresses( pbInt index, const struct inDnsQueryAddresses *query ) PB_REQUIRES( region );
    void append( pbInt index, const struct inFilterEntry *entry, const struct inAddress *address,
                 const pb::String &name ) PB_REQUIRES( region );
    void note( pbInt index, const pb::String &name, std::string text ) PB_REQUIRES( region );
    void noteUnlessAddress( pbInt index, const pb::String &name, const char *text ) PB_REQUIRES( region );
    pb::Ref<struct inFilterEntry> entryAt( pbInt index ) const PB_REQUIRES( region );
    void setItem( const char *key, const std::string &value ) const;

    Options appliedOptions_ PB_GUARDED_BY( region );
    Stack stack_ PB_GUARDED_BY( region );
    std::vector<in::FilterFindings::Source> buildSources_ PB_GUARDED_BY( region );
    std::vector<in::FilterFindings::Note> buildNotes_ PB_GUARDED_BY( region );
};

PB_OBJECT_DEFINE( in___FilterImp, in___sort_IN___FILTER_IMP )

in___FilterImp::in___FilterImp( const struct inFilterOptions *initialOptions, struct trAnchor *optionalAnchor )
    : status( pb::adopt( csStatusReporterCreate( anchorOn( trace ).get() ) ) ),
      stackObserver( pb::adopt( csObjectObserverCreate( inStackSort(), anchorOn( trace ).get() ) ) ),
      isProcess( pb::adopt(
          prProcessCreateWithPriorityCstr( 1, in___FilterImpProcessFunc, this, "in___FilterImpProcessFunc", -1 ) ) ),
      isSignalable( pb::adopt( prProcessCreateSignalable( isProcess.get() ) ) ),
      rebuildTimer( pb::adopt( prProcessCreateTimer( isProcess.get() ) ) ),
      published( noRules( pb::share( initialOptions ) ) ), options( pb::share( initialOptions ) )
{
    published.read( [&]( const Rules &rules ) PB_NO_THREAD_SAFETY_ANALYSIS {
        list = rules.list;
        return true;
    } );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, trace.get() );
}

in___FilterImp::~in___FilterImp()
{
    csObjectObserverUpdateDelSignalable( stackObserver.get(), isSignalable.get() );
}

void in___FilterImp::run()
{
    Left left;
    pb::ExclusiveGuard guard( region );
    left.options = appliedOptions_;
    left.stack = stack_;
    assertBuild( this );

    const bool optionsChanged = takeOverOptions();
    const bool stackChanged = takeOverStack();
    bool listChanged = false;
    // A rebuild unschedules the timer: while one is under way it says nothing.
    if ( optionsChanged || ( !buildRebuilding && !pbTimerScheduled( rebuildTimer.get() ) ) )
        startRebuild( left );
    if ( buildRebuilding ) {
        collectServices( left ); // first, as the addresses of their targets may be known already
        collectAddresses( left );
        listChanged = !queriesPending();
        if ( listChanged ) {
            publishList();
            dropBuild( left );
            pbTimerSchedule( rebuildTimer.get(), inFilterOptionsRebuildInterval( appliedOptions_.get() ) );
        }
    }
    if ( optionsChanged || stackChanged || listChanged )
        left.rules = publishRules();
    report();
    assertBuild( this );
}

bool in___FilterImp::takeOverOptions()
{
    const bool changed = !options.is( appliedOptions_ ) && options != appliedOptions_;
    appliedOptions_ = options;
    if ( changed ) {
        listIsOfOptions = false;
        trStreamSetConfiguration( trace.get(),
                                  pb::adopt( inFilterOptionsStore( appliedOptions_.get(), false ) ).get() );
        const auto given = pb::adopt( inFilterOptionsStack( appliedOptions_.get() ) );
        csObjectObserverConfigure( stackObserver.get(),
                                   pb::adopt( inFilterOptionsStackName( appliedOptions_.get() ) ).get(),
                                   inStackObj( given.get() ) );
    }
    csObjectObserverUpdateAddSignalable( stackObserver.get(), isSignalable.get() );
    return changed;
}

bool in___FilterImp::takeOverStack()
{
    const Stack current = pb::adopt( inStackFrom( csObjectObserverObject( stackObserver.get() ) ) );
    if ( current.is( stack_ ) )
        return false;
    stack_ = current;
    if ( stack_ ) {
        const auto anchor = pb::adopt(
            trAnchorCreateWithAnnotationCstr( trace.get(), TR_ANCHOR_KIND_PLAIN, "inFilterInStack", -1 ) );
        inStackTraceCompleteAnchor( stack_.get(), anchor.get() );
    }
    return true;
}

// One that is under way is abandoned.
void in___FilterImp::startRebuild( Left &left )
{
    dropBuild( left );
    buildRebuilding = true;
    buildTrace = pb::adopt( trStreamCreateCstr( "in___FilterImpRebuild()", -1 ) );
    trAnchorComplete( anchorOn( trace ).get(), buildTrace.get() );
    buildAddressesVector = pb::adopt( pbVectorCreate() );
    buildMatchingBitsVector = pb::adopt( pbVectorCreate() );
    buildDnsQueryAddressesDict = pb::adopt( pbDictCreate() );
    buildDnsQuerySrvDict = pb::adopt( pbDictCreate() );
    pbTimerUnschedule( rebuildTimer.get() );
    for ( pbInt index = 0; index < inFilterOptionsEntriesLength( appliedOptions_.get() ); ++index ) {
        const auto entry = entryAt( index );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_ADDRESS ) )
            addHost( index, entry.get() );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES ) )
            askForHost( index, entry.get() );
        if ( has( entry.get(), IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV ) )
            askForServices( index, entry.get() );
    }
}

void in___FilterImp::addHost( pbInt index, const struct inFilterEntry *entry )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    const auto address = pb::adopt( inAddressTryCreateFromString( host.get() ) );
    if ( address )
        append( index, entry, address.get(), nullptr );
    else if ( inFilterEntryFlags( entry ) == IN_FILTER_ENTRY_FLAG_ADDRESS )
        note( index, host, "not an address, and the flags do not let it be looked up" );
}

void in___FilterImp::askForHost( pbInt index, const struct inFilterEntry *entry )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    if ( !stack_ )
        note( index, host, "there is no stack to ask for it" );
    else
        askForAddresses( index, host );
}

void in___FilterImp::askForServices( pbInt index, const struct inFilterEntry *entry )
{
    const auto host = pb::adopt( inFilterEntryHost( entry ) );
    const pbInt prefixes = inFilterEntryDnsSrvPrefixesLength( entry );
    if ( !stack_ || !prefixes )
        note( index, host, prefixes ? "there is no stack to ask for its services" : "no prefix names a service of it" );
    for ( pbInt i = 0; stack_ && i < prefixes; ++i ) {
        const auto service =
            pb::format( "%~s.%s", pb::adopt( inFilterEntryDnsSrvPrefixAt( entry, i ) ), host );
        if ( !in___FilterEntryQueryNameOk( service.get() ) ) {
            note( index, service, "not a name that can be looked up" );
            continue;
        }
        const auto boxed = pb::adopt( pbBoxedIntCreate( index ) );
        const SrvQuery query =
            pb::adopt( inDnsQuerySrvCreate( stack_.get(), service.get(), anchorOn( buildTrace ).get() ) );
        pbDictSetObjKey( buildDnsQuerySrvDict.address(), inDnsQuerySrvObj( query.get() ), pbBoxedIntObj( boxed.get() ) );
        inDnsQuerySrvEndAddSignalable( query.get(), isSignalable.get() );
    }
}

void in___FilterImp::askForAddresses( pbInt index, const pb::String &name )
{
    if ( !in___FilterEntryQueryNameOk( name.get() ) )
        return noteUnlessAddress( index, name, "not a name that can be looked up" );
    const auto boxed = pb::adopt( pbBoxedIntCreate( index ) );
    const AddressesQuery query =
        pb::adopt( inDnsQueryAddressesCreate( stack_.get(), name.get(), anchorOn( buildTrace ).get() ) );
    pbDictSetObjKey( buildDnsQueryAddressesDict.address(), inDnsQueryAddressesObj( query.get() ),
                     pbBoxedIntObj( boxed.get() ) );
    inDnsQueryAddressesEndAddSignalable( query.get(), isSignalable.get() );
}

void in___FilterImp::collectServices( Left &left )
{
    for ( pbInt at = 0; at < pbDictLength( buildDnsQuerySrvDict.get() ); ) {
        const SrvQuery query =
            pb::adopt( inDnsQuerySrvFrom( pbDictKeyAt( buildDnsQuerySrvDict.get(), at ) ) );
        if ( !inDnsQuerySrvEnd( query.get() ) ) {
            ++at;
            continue;
        }
        takeServices( entryIndex( buildDnsQuerySrvDict, at ), query.get() );
        left.queries.push_back( pb::share( inDnsQuerySrvObj( query.get() ) ) );
        pbDictDelAt( buildDnsQuerySrvDict.address(), at );
    }
}

void in___FilterImp::takeServices( pbInt index, const struct inDnsQuerySrv *query )
{
    const auto service = pb::adopt( inDnsQuerySrvService( query ) );
    if ( inDnsQuerySrvError( query ) )
        return note( index, service, in::whyNotFound( inDnsQuerySrvFailure( query ) ) );
    size_t beyond = 0;
    const std::vector<pb::String> targets = targetsOf( query, beyond );
    if ( targets.empty() )
        note( index, service, "the service is not available" );
    if ( beyond ) {
        trStreamSetNotable( buildTrace.get() );
        tr::text( buildTrace.get(), "[in___FilterImpRebuild()] service: %s, targets left out: %i", service, beyond );
        note( index, service,
              "only " + std::to_string( mostTargets ) + " targets are asked for, " + std::to_string( beyond ) +
                  " more are left out" );
    }
    for ( const pb::String &target : targets )
        if ( stack_ )
            askForAddresses( index, target );
        else
            note( index, target, "there is no stack to ask for it" );
}

void in___FilterImp::collectAddresses( Left &left )
{
    for ( pbInt at = 0; at < pbDictLength( buildDnsQueryAddressesDict.get() ); ) {
        const AddressesQuery query =
            pb::adopt( inDnsQueryAddressesFrom( pbDictKeyAt( buildDnsQueryAddressesDict.get(), at ) ) );
        if ( !inDnsQueryAddressesEnd( query.get() ) ) {
            ++at;
            continue;
        }
        takeAddresses( entryIndex( buildDnsQueryAddressesDict, at ), query.get() );
        left.queries.push_back( pb::share( inDnsQueryAddressesObj( query.get() ) ) );
        pbDictDelAt( buildDnsQueryAddressesDict.address(), at );
    }
}

void in___FilterImp::takeAddresses( pbInt index, const struct inDnsQueryAddresses *query )
{
    const auto name = pb::adopt( inDnsQueryAddressesDomainName( query ) );
    const auto entry = entryAt( index );
    if ( inDnsQueryAddressesError( query ) )
        return noteUnlessAddress( index, name, in::whyNotFound( inDnsQueryAddressesFailure( query ) ) );
    for ( pbInt i = 0; i < inDnsQueryAddressesAddressesLength( query ); ++i )
        append( index, entry.get(), pb::adopt( inDnsQueryAddressesAddressAt( query, i ) ).get(), name );
}

bool in___FilterImp::queriesPending() const
{
    return pbDictLength( buildDnsQueryAddressesDict.get() ) || pbDictLength( buildDnsQuerySrvDict.get() );
}

// An address of another version than the entry's is left out.
void in___FilterImp::append( pbInt index, const struct inFilterEntry *entry, const struct inAddress *address,
                             const pb::String &name )
{
    if ( !versionFits( entry, address ) )
        return note( index, pb::adopt( inAddressToString( address ) ), "not of the entry's address version" );
    const auto boxed = pb::adopt( pbBoxedIntCreate( inFilterEntryAddressMatchingBits( entry ) ) );
    const auto place = static_cast<uint32_t>( pbVectorLength( buildAddressesVector.get() ) );
    pbVectorAppend( buildAddressesVector.address(), inAddressObj( address ) );
    pbVectorAppend( buildMatchingBitsVector.address(), pbBoxedIntObj( boxed.get() ) );
    buildSources_.push_back( { static_cast<uint32_t>( index ), place, name } );
}

void in___FilterImp::note( pbInt index, const pb::String &name, std::string text )
{
    buildNotes_.push_back( { static_cast<uint32_t>( index ), name, std::move( text ) } );
}

// The look-up of an address that is taken as such fails as well, and nobody misses an answer.
void in___FilterImp::noteUnlessAddress( pbInt index, const pb::String &name, const char *text )
{
    if ( !has( entryAt( index ).get(), IN_FILTER_ENTRY_FLAG_ADDRESS ) ||
         !pb::adopt( inAddressTryCreateFromString( name.get() ) ) )
        note( index, name, text );
}

void in___FilterImp::publishList()
{
    in::FilterFindings findings{ std::move( buildAddressesVector ), std::move( buildMatchingBitsVector ),
                                 std::move( buildSources_ ), std::move( buildNotes_ ) };
    findings.removeDuplicates();
    list = std::make_shared<const in::FilterList>( appliedOptions_, std::move( findings ) );
    listMade = listIsOfOptions = true;
    if ( tr::listening() ) // nobody else sees the stream, which ends here
        trStreamSetPropertyCstrStore( buildTrace.get(), "inFilterAddresses", -1, list->keys().get() );
}

in::Published<Rules>::Replaced in___FilterImp::publishRules()
{
    return published.replace( std::make_unique<const Rules>(
        Rules{ static_cast<bool>( inFilterOptionsStackAddressPermitted( appliedOptions_.get() ) ), stack_, list } ) );
}

// Queries that are still pending are left alone.
void in___FilterImp::dropBuild( Left &left )
{
    for ( pbInt at = 0; buildRebuilding && at < pbDictLength( buildDnsQuerySrvDict.get() ); ++at ) {
        const auto query = pb::adopt( inDnsQuerySrvFrom( pbDictKeyAt( buildDnsQuerySrvDict.get(), at ) ) );
        inDnsQuerySrvEndDelSignalable( query.get(), isSignalable.get() );
    }
    for ( pbInt at = 0; buildRebuilding && at < pbDictLength( buildDnsQueryAddressesDict.get() ); ++at ) {
        const auto query =
            pb::adopt( inDnsQueryAddressesFrom( pbDictKeyAt( buildDnsQueryAddressesDict.get(), at ) ) );
        inDnsQueryAddressesEndDelSignalable( query.get(), isSignalable.get() );
    }
    left.queries.push_back( pb::adopt( pbDictObj( buildDnsQuerySrvDict.release() ) ) );
    left.queries.push_back( pb::adopt( pbDictObj( buildDnsQueryAddressesDict.release() ) ) );
    buildRebuilding = false;
    buildTrace.reset();
    buildAddressesVector.reset();
    buildMatchingBitsVector.reset();
    buildSources_.clear();
    buildNotes_.clear();
}

void in___FilterImp::assertBuild( const in___FilterImp *imp )
{
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildTrace ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildAddressesVector ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildMatchingBitsVector ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildDnsQueryAddressesDict ) );
    PB_ASSERT( PB_BOOL_FROM( imp->buildRebuilding ) == PB_BOOL_FROM( imp->buildDnsQuerySrvDict ) );
}

pb::Ref<struct inFilterEntry> in___FilterImp::entryAt( pbInt index ) const
{
    return pb::adopt( inFilterOptionsEntryAt( appliedOptions_.get(), index ) );
}

// What a person can see of the filter without reading its trace.
void in___FilterImp::report()
{
    setItem( "inFilterAddresses", std::to_string( list->length() ) );
    setItem( "inFilterFailures", list->notesText() );
    csStatusReporterSetUp( status.get(), listIsOfOptions );
    setItem( "inFilterRebuilding", buildRebuilding ? "true" : "" ); // last: when it changes all else has
}

void in___FilterImp::setItem( const char *key, const std::string &value ) const
{
    if ( value.empty() )
        csStatusReporterDelItemCstr( status.get(), key, -1 );
    else
        csStatusReporterSetItemCstr( status.get(), key, -1, pb::string( value ).get() );
}

struct in___FilterImp *in___FilterImpCreate( const struct inFilterOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    auto imp = pb::make<struct in___FilterImp>( options, optionalAnchor );
    imp->run();
    return imp.release();
}

void in___FilterImpProcessFunc( struct pbObj *argument )
{
    PB_ASSERT( argument );
    in___FilterImpFrom( argument )->run();
}

void in___FilterImpHalt( struct in___FilterImp *imp )
{
    PB_ASSERT( imp );
    tr::text( imp->trace.get(), "[in___FilterImpHalt()]" );
    PB_ASSERT_TEXT( !prProcessHalted( imp->isProcess.get() ), "!prProcessHalted( imp->isProcess )" );
    imp->halted.set(); // before the process may drop the imp
    prProcessHalt( imp->isProcess.get() );
}

void in___FilterImpHaltWait( void )
{
    in::HaltMark<struct in___FilterImp>::waitForNone();
}

struct inFilterOptions *in___FilterImpOptions( const struct in___FilterImp *imp )
{
    PB_ASSERT( imp );
    pb::SharedGuard guard( imp->region );
    return imp->options.share();
}

void in___FilterImpSetOptions( struct in___FilterImp *imp, const struct inFilterOptions *options )
{
    PB_ASSERT( imp );
    PB_ASSERT( options );
    Options before; // may be the last to hold a stack, which ends after the region
    pb::ExclusiveGuard guard( imp->region );
    before = imp->options;
    imp->options = pb::share( options );
    prProcessSchedule( imp->isProcess.get() );
}

pbBool in___FilterImpCheck( const struct in___FilterImp *imp, const struct inAddress *address )
{
    PB_ASSERT( imp );
    PB_ASSERT( address );
    return imp->published.read( [address]( const Rules &rules ) { return rules.permit( *address ); } );
}

struct pbStore *in___FilterImpExplain( const struct in___FilterImp *imp, const struct inAddress *optionalAddress )
{
    PB_ASSERT( imp );
    Rules rules; // of the moment, held beyond the reading of them
    bool listMade, rebuilding;
    {
        pb::SharedGuard guard( imp->region );
        imp->published.read( [&]( const Rules &current ) {
            rules = current;
            return true;
        } );
        listMade = imp->listMade;
        rebuilding = imp->buildRebuilding;
    }
    auto store = in::explain( *rules.list, optionalAddress );
    pbStoreSetValueBoolCstr( store.address(), "published", -1, listMade );
    pbStoreSetValueBoolCstr( store.address(), "rebuilding", -1, rebuilding );
    const auto stackAddress =
        rules.stackAddressPermitted && rules.stack ? pb::adopt( inStackAddress( rules.stack.get() ) ) : nullptr;
    if ( stackAddress )
        pbStoreSetValueCstr( store.address(), "stackAddress", -1,
                             pb::adopt( inAddressToString( stackAddress.get() ) ).get() );
    if ( !optionalAddress )
        return store.release();
    const bool permitted = rules.permit( *optionalAddress );
    const bool isStackAddress = permitted && !rules.list->permits( *optionalAddress );
    const std::string reason = isStackAddress ? "it is the stack's own address"
                               : listMade     ? in::explanation( *rules.list, optionalAddress )
                                              : "names are looked up, and there is no list yet";
    pbStoreSetValueBoolCstr( store.address(), "permitted", -1, permitted );
    pbStoreSetValueCstr( store.address(), "address", -1, pb::adopt( inAddressToString( optionalAddress ) ).get() );
    pbStoreSetValueCstr( store.address(), "text", -1,
                         pb::string( ( permitted ? "permitted: " : "refused: " ) + reason ).get() );
    return store.release();
}

struct csStatusReporter *in___FilterImpCsStatus( const struct in___FilterImp *imp )
{
    PB_ASSERT( imp );
    return imp->status.share();
}

void in___FilterImpTraceCompleteAnchor( struct in___FilterImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->trace.get() );
}
