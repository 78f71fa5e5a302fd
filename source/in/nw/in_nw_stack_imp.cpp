// in___NwStackImp: keeping one interface of the host as the stack's options wish.
#include "in/nw/in_nw_stack_imp_internal.h"

#include "cs/cs_condition.h"
#include "cs/cs_condition_observer.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/base/in_halt_mark.hpp"
#include "in/base/in_network.h"
#include "in/nw/in_nw_interface_internal.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/nw/in_nw_interfaces.h"
#include "in/nw/in_nw_options.h"
#include "in/nw/in_nw_stack_decisions.hpp"
#include "in/nw/in_nw_stack_state.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_store.h"
#include "pb/pb_timer.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

PB_SORT_DECLARE( in___sort_IN___NW_STACK_IMP )

namespace {

using Options = pb::Ref<struct inNwOptions>;
using Interface = pb::Ref<struct inNwInterface>;

pb::Ref<struct trAnchor> annotatedAnchor( const pb::Ref<struct trStream> &stream, const char *annotation )
{
    return pb::adopt( trAnchorCreateWithAnnotationCstr( stream.get(), TR_ANCHOR_KIND_PLAIN, annotation, -1 ) );
}

bool hasAddress( const Interface &iface, const pb::Ref<struct inAddress> &address )
{
    const auto state = pb::adopt( inNwInterfaceState( iface.get() ) );
    return !inNwInterfaceStateEnd( state.get() ) &&
           inNwInterfaceStateLayer3HasUnicastAddress( state.get(), address.get() );
}

} // namespace

struct in___NwStackImp final : pb::Object<struct in___NwStackImp, in___sort_IN___NW_STACK_IMP> {
    in___NwStackImp( const struct inNwOptions *initialOptions, struct trAnchor *optionalAnchor );
    ~in___NwStackImp();

    void run();

    in::HaltMark<in___NwStackImp> halted;

    // Fixed after construction.
    const pb::Ref<struct trStream> trace = pb::adopt( trStreamCreateCstr( "IN_NW_STACK", -1 ) );
    const pb::Ref<struct csStatusReporter> status;
    const pb::Ref<struct csConditionObserver> condition;
    const pb::Ref<struct prProcess> process;
    const pb::Ref<struct pbSignalable> signalable;
    const pb::Ref<struct pbTimer> retryTimer;

    mutable pb::Monitor monitor{ 30 };
    // Guarded by the monitor.
    bool extHalt PB_GUARDED_BY( monitor ) = false;
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
    Options options PB_GUARDED_BY( monitor );
    pb::Ref<struct inNwStackState> state PB_GUARDED_BY( monitor ) = pb::adopt( inNwStackStateCreate() );

private:
    // The steps of a run.
    bool takeOverOptions() PB_REQUIRES( monitor );
    bool findInterface() PB_REQUIRES( monitor );
    void startAnew() PB_REQUIRES( monitor );
    bool tryApply() PB_REQUIRES( monitor );
    void retryLater() PB_REQUIRES( monitor );
    void revert( const Interface &iface, const Options &reverted ) PB_REQUIRES( monitor );
    void report() PB_REQUIRES( monitor );
    // The update signal that is over, to be dropped after the monitor.
    [[nodiscard]] pb::Ref<struct pbSignal> assertUpdate() PB_REQUIRES( monitor );

    bool failed( const char *what, pbInt error ) PB_REQUIRES( monitor );
    void leave( const Interface &iface, const pb::Ref<struct inAddress> &address, pbInt error ) PB_REQUIRES( monitor );
    void forgetWhatIsGone() PB_REQUIRES( monitor );
    void setItem( const char *key, const std::string &value ) const;

    Options appliedOptions_ PB_GUARDED_BY( monitor );
    Interface interface_ PB_GUARDED_BY( monitor );
    pbInt retryInterval_ PB_GUARDED_BY( monitor ) = -1;
    in::NwStackAccount account_ PB_GUARDED_BY( monitor );
};

PB_OBJECT_DEFINE( in___NwStackImp, in___sort_IN___NW_STACK_IMP )

in___NwStackImp::in___NwStackImp( const struct inNwOptions *initialOptions, struct trAnchor *optionalAnchor )
    : status( pb::adopt(
          csStatusReporterCreate( pb::adopt( trAnchorCreate( trace.get(), TR_ANCHOR_KIND_PLAIN ) ).get() ) ) ),
      condition( pb::adopt( csConditionObserverCreate( annotatedAnchor( trace, "inCsConditionObserver" ).get() ) ) ),
      process( pb::adopt(
          prProcessCreateWithPriorityCstr( 1, in___NwStackImpProcessFunc, this, "in___NwStackImpProcessFunc", -1 ) ) ),
      signalable( pb::adopt( prProcessCreateSignalable( process.get() ) ) ),
      retryTimer( pb::adopt( prProcessCreateTimer( process.get() ) ) ), options( pb::share( initialOptions ) )
{
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, trace.get() );
}

in___NwStackImp::~in___NwStackImp()
{
    csConditionObserverUpdateDelSignalable( condition.get(), signalable.get() );
    inNwInterfacesUpdateDelSignalable( signalable.get() );
    if ( interface_ )
        inNwInterfaceUpdateDelSignalable( interface_.get(), signalable.get() );
}

void in___NwStackImp::run()
{
    pb::Ref<struct pbSignal> over;
    Options optionsBefore; // keep what the run lets go until the monitor has been left
    Interface interfaceBefore;
    pb::Guard guard( monitor ); // held over the changes to the interface on purpose
    optionsBefore = appliedOptions_;
    interfaceBefore = interface_;

    csConditionObserverUpdateAddSignalable( condition.get(), signalable.get() );
    bool changed = takeOverOptions();
    changed |= findInterface();
    if ( changed ) {
        startAnew();
        if ( interfaceBefore && optionsBefore )
            revert( interfaceBefore, optionsBefore );
    }
    account_.failure.reset();
    account_.condition = csConditionObserverValue( condition.get(), true );
    if ( interface_ && account_.condition && !extHalt ) {
        if ( !tryApply() )
            retryLater();
    }
    else if ( interface_ ) {
        trStreamDelNotable( trace.get() );
        pbTimerUnschedule( retryTimer.get() );
        revert( interface_, appliedOptions_ );
    }
    report();
    if ( changed )
        over = assertUpdate();
    if ( extHalt && !prProcessHalted( process.get() ) )
        prProcessHalt( process.get() );
}

// Registers for the set of interfaces in any case, before the interface is looked up.
bool in___NwStackImp::takeOverOptions()
{
    const bool changed = appliedOptions_ != options;
    if ( changed ) {
        appliedOptions_ = options;
        const auto name = pb::adopt( inNwOptionsCsConditionName( options.get() ) );
        const auto given = pb::adopt( inNwOptionsCsCondition( options.get() ) );
        account_.conditionName = given ? nullptr : name;
        trStreamSetConfiguration( trace.get(), pb::adopt( inNwOptionsStore( options.get(), false ) ).get() );
        csConditionObserverConfigure( condition.get(), name.get(), given.get() );
    }
    inNwInterfacesUpdateAddSignalable( signalable.get() );
    account_.interfaceIdentifier = pb::adopt( inNwOptionsInterfaceIdentifier( appliedOptions_.get() ) );
    return changed;
}

bool in___NwStackImp::findInterface()
{
    const auto &identifier = account_.interfaceIdentifier;
    const Interface found =
        identifier ? pb::adopt( inNwInterfacesInterfaceByIdentifier( identifier.get() ) ) : nullptr;
    account_.interfaceFound = static_cast<bool>( found );
    if ( found.is( interface_ ) )
        return false;
    interface_ = found;
    if ( interface_ ) {
        inNwInterfaceTraceCompleteAnchor( interface_.get(), annotatedAnchor( trace, "inNwInterface" ).get() );
        inNwStackStateSetInterface( state.address(), interface_.get() );
    }
    else
        inNwStackStateDelInterface( state.address() );
    return true;
}

void in___NwStackImp::startAnew()
{
    trStreamDelNotable( trace.get() );
    pbTimerUnschedule( retryTimer.get() );
    retryInterval_ = -1;
}

// Registers for the interface before its state is read. A state that is older than the last change makes for a needless
// run at most: the newer one wakes the process.
bool in___NwStackImp::tryApply()
{
    inNwInterfaceUpdateAddSignalable( interface_.get(), signalable.get() );
    const auto current = pb::adopt( inNwInterfaceState( interface_.get() ) );
    const auto address = pb::adopt( inNwOptionsLayer3UnicastAddress( appliedOptions_.get() ) );
    const auto network = pb::adopt( inNwOptionsLayer3Network( appliedOptions_.get() ) );
    pbInt error = 0;
    if ( inNwOptionsStatus( appliedOptions_.get() ) &&
         inNwInterfaceStateStatus( current.get() ) != IN_NW_INTERFACE_STATUS_UP &&
         !in___NwInterfaceTrySetStatus( interface_.get(), IN_NW_INTERFACE_STATUS_UP, &error ) ) {
        tr::text( trace.get(), "[in___NwStackImpTryApply()] in___NwInterfaceTrySetStatus(): false" );
        return failed( "interface not set up", error );
    }
    if ( address && !inNwInterfaceStateLayer3HasUnicastAddress( current.get(), address.get() ) &&
         !in___NwInterfaceTrySetLayer3UnicastAddress( interface_.get(), address.get(), network.get(), &error ) ) {
        tr::text( trace.get(), "[in___NwStackImpTryApply()] in___NwInterfaceTrySetLayer3UnicastAddress(): false" );
        return failed( "address not set", error );
    }
    trStreamDelNotable( trace.get() );
    pbTimerUnschedule( retryTimer.get() );
    return true;
}

// The interval is kept over a success: an interface that fails now and then is not pestered.
void in___NwStackImp::retryLater()
{
    trStreamSetNotable( trace.get() );
    if ( pbTimerScheduled( retryTimer.get() ) ) {
        tr::text( trace.get(), "[in___NwStackImpProcessFunc()] in___NwStackImpTryApply(): false" );
        return;
    }
    retryInterval_ = in::nextRetryInterval( retryInterval_ );
    tr::text( trace.get(), "[in___NwStackImpProcessFunc()] in___NwStackImpTryApply(): false, starting timer (%i ms)",
              retryInterval_ );
    pbTimerSchedule( retryTimer.get(), retryInterval_ );
}

void in___NwStackImp::revert( const Interface &iface, const Options &reverted )
{
    const auto address = pb::adopt( inNwOptionsLayer3UnicastAddress( reverted.get() ) );
    pbInt error = 0;
    if ( address && !in___NwInterfaceTryDelLayer3UnicastAddress( iface.get(), address.get(), &error ) ) {
        tr::text( trace.get(), "[in___NwStackImpRevert()] in___NwInterfaceTryDelLayer3UnicastAddress(): false" );
        leave( iface, address, error );
    }
    if ( inNwOptionsStatus( reverted.get() ) &&
         !in___NwInterfaceTrySetStatus( iface.get(), IN_NW_INTERFACE_STATUS_DOWN, &error ) ) {
        tr::text( trace.get(), "[in___NwStackImpRevert()] in___NwInterfaceTrySetStatus(): false" );
        (void)failed( "interface not taken down", error ); // is told, but not tried again
    }
}

bool in___NwStackImp::failed( const char *what, pbInt error )
{
    account_.failure = in::NwFailure{ what, error };
    return false;
}

void in___NwStackImp::leave( const Interface &iface, const pb::Ref<struct inAddress> &address, pbInt error )
{
    auto identifier = pb::adopt( inNwInterfaceIdentifier( iface.get() ) );
    std::erase_if( account_.leftBehind, [&]( const in::NwLeftBehind &each ) {
        return each.address == address && each.interfaceIdentifier == identifier;
    } );
    account_.leftBehind.push_back( { std::move( identifier ), address, error } );
}

// What the interface no longer has, and what is wished there again.
void in___NwStackImp::forgetWhatIsGone()
{
    const auto wished = pb::adopt( inNwOptionsLayer3UnicastAddress( appliedOptions_.get() ) );
    std::erase_if( account_.leftBehind, [&]( const in::NwLeftBehind &each ) PB_REQUIRES( monitor ) {
        const auto &identifier = each.interfaceIdentifier;
        const Interface iface = pb::adopt( inNwInterfacesInterfaceByIdentifier( identifier.get() ) );
        const bool isWished = account_.up() && each.address == wished && identifier == account_.interfaceIdentifier;
        return isWished || !iface || !hasAddress( iface, each.address );
    } );
}

// What a person can see of the stack without reading its trace.
void in___NwStackImp::report()
{
    account_.retryMilliseconds = retryInterval_;
    if ( !account_.leftBehind.empty() )
        forgetWhatIsGone();
    csStatusReporterSetUp( status.get(), account_.up() );
    setItem( "inNwStackInterface", account_.interfaceFound ? pb::utf8( account_.interfaceIdentifier ) : "" );
    setItem( "inNwStackReason", account_.reason() );
    setItem( "inNwStackLeftBehind", account_.leftBehindText() );
}

void in___NwStackImp::setItem( const char *key, const std::string &value ) const
{
    if ( value.empty() )
        csStatusReporterDelItemCstr( status.get(), key, -1 );
    else
        csStatusReporterSetItemCstr( status.get(), key, -1, pb::string( value ).get() );
}

pb::Ref<struct pbSignal> in___NwStackImp::assertUpdate()
{
    pbSignalAssert( update.get() );
    return std::exchange( update, pb::adopt( pbSignalCreate() ) );
}

struct in___NwStackImp *in___NwStackImpCreate( const struct inNwOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    auto imp = pb::make<struct in___NwStackImp>( options, optionalAnchor );
    imp->run();
    return imp.release();
}

void in___NwStackImpProcessFunc( struct pbObj *argument )
{
    PB_ASSERT( argument );
    in___NwStackImpFrom( argument )->run();
}

void in___NwStackImpHalt( struct in___NwStackImp *imp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    PB_ASSERT( !imp->extHalt );
    imp->extHalt = true;
    imp->halted.set(); // before the process may drop the imp
    tr::text( imp->trace.get(), "[in___NwStackImpHalt()]" );
    prProcessSchedule( imp->process.get() );
}

void in___NwStackImpHaltWait( void )
{
    in::HaltMark<struct in___NwStackImp>::waitForNone();
}

struct inNwOptions *in___NwStackImpOptions( const struct in___NwStackImp *imp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    return imp->options.share();
}

void in___NwStackImpSetOptions( struct in___NwStackImp *imp, const struct inNwOptions *options )
{
    PB_ASSERT( imp );
    PB_ASSERT( options );
    Options before; // may be the last to hold a condition, which ends after the monitor
    pb::Guard guard( imp->monitor );
    before = imp->options;
    imp->options = pb::share( options );
    prProcessSchedule( imp->process.get() );
}

struct inNwStackState *in___NwStackImpState( const struct in___NwStackImp *imp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    return imp->state.share();
}

void in___NwStackImpUpdateAddSignalable( struct in___NwStackImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalAddSignalable( imp->update.get(), signalable );
}

void in___NwStackImpUpdateDelSignalable( struct in___NwStackImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalDelSignalable( imp->update.get(), signalable );
}

struct csStatusReporter *in___NwStackImpCsStatus( const struct in___NwStackImp *imp )
{
    PB_ASSERT( imp );
    return imp->status.share();
}

void in___NwStackImpTraceCompleteAnchor( struct in___NwStackImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->trace.get() );
}
