// in___FilterImp: what is in force of a filter and when its list is made anew, and checking with it.
#include "in/filter/in_filter_imp_internal.h"

#include "cs/cs_object_observer.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_halt_mark.hpp"
#include "in/base/in_published.hpp"
#include "in/base/in_stack_internal.h"
#include "in/filter/in_filter_list.hpp"
#include "in/filter/in_filter_rebuild.hpp"
#include "pb/pb_region.hpp"
#include "pb/pb_store.h"
#include "pb/pb_timer.h"
#include "pb/pb_vector.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

#include <memory>

PB_SORT_DECLARE( in___sort_IN___FILTER_IMP )

namespace {

using Options = pb::Ref<struct inFilterOptions>;
using Stack = pb::Ref<struct inStack>;

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
    in::FilterRebuild::Dropped ofRebuild;
    in::Published<Rules>::Replaced rules;
};

pb::Ref<struct trAnchor> anchorOn( const pb::Ref<struct trStream> &stream )
{
    return pb::adopt( trAnchorCreate( stream.get(), TR_ANCHOR_KIND_PLAIN ) );
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
    in::FilterRebuild rebuild PB_GUARDED_BY( region ){ trace, isSignalable };

  private:
    // The steps of a run.
    bool takeOverOptions() PB_REQUIRES( region );
    bool takeOverStack() PB_REQUIRES( region );
    void startRebuild( Left &left ) PB_REQUIRES( region );
    void finishRebuild( Left &left ) PB_REQUIRES( region );
    [[nodiscard]] in::Published<Rules>::Replaced publishRules() PB_REQUIRES( region );
    void report() PB_REQUIRES( region );

    void setItem( const char *key, const std::string &value ) const;

    Options appliedOptions_ PB_GUARDED_BY( region );
    Stack stack_ PB_GUARDED_BY( region );
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
    rebuild.assertBuild();

    const bool optionsChanged = takeOverOptions();
    const bool stackChanged = takeOverStack();
    bool listChanged = false;
    // A rebuild unschedules the timer: while one is under way it says nothing.
    if ( optionsChanged || ( !rebuild.isUnderWay() && !pbTimerScheduled( rebuildTimer.get() ) ) )
        startRebuild( left );
    if ( rebuild.isUnderWay() ) {
        rebuild.collect( stack_, left.ofRebuild );
        listChanged = !rebuild.isPending();
        if ( listChanged )
            finishRebuild( left );
    }
    if ( optionsChanged || stackChanged || listChanged )
        left.rules = publishRules();
    report();
    rebuild.assertBuild();
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

void in___FilterImp::startRebuild( Left &left )
{
    pbTimerUnschedule( rebuildTimer.get() );
    rebuild.start( appliedOptions_, stack_, left.ofRebuild );
}

void in___FilterImp::finishRebuild( Left &left )
{
    list = rebuild.finish( left.ofRebuild );
    listMade = listIsOfOptions = true;
    pbTimerSchedule( rebuildTimer.get(), inFilterOptionsRebuildInterval( appliedOptions_.get() ) );
}

in::Published<Rules>::Replaced in___FilterImp::publishRules()
{
    return published.replace( std::make_unique<const Rules>(
        Rules{ static_cast<bool>( inFilterOptionsStackAddressPermitted( appliedOptions_.get() ) ), stack_, list } ) );
}

// What a person can see of the filter without reading its trace.
void in___FilterImp::report()
{
    setItem( "inFilterAddresses", std::to_string( list->length() ) );
    setItem( "inFilterFailures", list->notesText() );
    csStatusReporterSetUp( status.get(), listIsOfOptions );
    setItem( "inFilterRebuilding", rebuild.isUnderWay() ? "true" : "" ); // last: when it changes all else has
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
        rebuilding = imp->rebuild.isUnderWay();
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
