// prProcess: a function that the scheduler runs when something asks for it.
#include "pr/pr_process.h"

#include "pb/pb_barrier.h"
#include "pb/pb_timer.h"
#include "pb/pb_wake.hpp"
#include "pr/pr_process_internal.hpp"

PB_OBJECT_DEFINE( prProcess, pr___sort_PR_PROCESS )

namespace {

thread_local const struct prProcess *runningProcess = nullptr;

void scheduleTarget( struct pbObj *target ) { prProcessFrom( target )->schedule(); }

struct prProcess *create( struct prScheduler *scheduler, pbInt priority, void ( *function )( struct pbObj * ),
                          struct pbObj *optionalArgument, const char *name, pbInt nameLength )
{
    return pb::make<struct prProcess>( scheduler, priority, function, pb::share( optionalArgument ),
                                       pb::adopt( pbStringCreateFromCstr( name, nameLength ) ) )
        .release();
}

} // namespace

prProcess::~prProcess()
{
    if ( !argument )
        return;
    const auto successor =
        pb::make<struct prProcess>( scheduler.get(), priority, function, std::move( argument ), name );
    successor->halt();
}

// The flags change by read-modify-write alone, also where a flag is set already: the run then reads from a chain that
// began with the schedule, and sees what the caller wrote before it.
void prProcess::schedule()
{
    if ( state.fetch_or( scheduled, std::memory_order_acq_rel ) == 0 )
        enqueue();
}

void prProcess::halt()
{
    if ( state.fetch_or( halted | scheduled, std::memory_order_acq_rel ) == 0 )
        enqueue();
}

void prProcess::enqueue()
{
    if ( !scheduler->enqueue( this ) )
        drop();
}

bool prProcess::run()
{
    unsigned expected = scheduled;
    if ( !state.compare_exchange_strong( expected, running, std::memory_order_acq_rel ) ) {
        finish();
        return false;
    }
    runningProcess = this;
    function( argument.get() );
    runningProcess = nullptr;
    // Leaves what was asked for during the run, be it another run or the end.
    return state.fetch_and( ~running, std::memory_order_acq_rel ) & scheduled;
}

void prProcess::drop()
{
    unsigned expected = scheduled;
    if ( !state.compare_exchange_strong( expected, 0, std::memory_order_acq_rel ) )
        finish();
}

void prProcess::retire( pb::Ref<struct prProcess> process )
{
    if ( !pb::isShared( process.get() ) )
        process->argument.reset();
}

void prProcess::finish()
{
    // Before the end is signalled: whoever waits for it may tear down what the argument uses.
    argument.reset();
    pbSignalAssert( end.get() );
}

extern "C" {

struct prProcess *prProcessCreateWithPriorityCstr( pbInt priority, void ( *function )( struct pbObj *optionalArgument ),
                                                   struct pbObj *optionalArgument, const char *name, pbInt nameLength )
{
    PB_ASSERT( priority >= 0 && priority <= 9 );
    PB_ASSERT( function );
    PB_ASSERT( name );
    return create( pr___SchedulerDefault(), priority, function, optionalArgument, name, nameLength );
}

struct prProcess *prProcessCreateInDomainCstr( struct prDomain *domain, pbInt priority,
                                               void ( *function )( struct pbObj *optionalArgument ),
                                               struct pbObj *optionalArgument, const char *name, pbInt nameLength )
{
    PB_ASSERT( domain );
    PB_ASSERT( priority >= 0 && priority <= 9 );
    PB_ASSERT( function );
    PB_ASSERT( name );
    return create( pr___DomainScheduler( domain ), priority, function, optionalArgument, name, nameLength );
}

struct pbString *prProcessName( const struct prProcess *process )
{
    PB_ASSERT( process );
    return process->name.share();
}

void prProcessSchedule( struct prProcess *process )
{
    PB_ASSERT( process );
    process->schedule();
}

void prProcessHalt( struct prProcess *process )
{
    PB_ASSERT( process );
    process->halt();
}

pbBool prProcessHalted( const struct prProcess *process )
{
    PB_ASSERT( process );
    return PB_BOOL_FROM( process->state.load( std::memory_order_acquire ) & prProcess::halted );
}

void prProcessEndAddSignalable( struct prProcess *process, struct pbSignalable *signalable )
{
    PB_ASSERT( process );
    pbSignalAddSignalable( process->end.get(), signalable );
}

void prProcessEndDelSignalable( struct prProcess *process, struct pbSignalable *signalable )
{
    PB_ASSERT( process );
    pbSignalDelSignalable( process->end.get(), signalable );
}

void prProcessEndWait( struct prProcess *process )
{
    PB_ASSERT( process );
    PB_ASSERT( process != runningProcess );
    const pb::Ref<struct pbBarrier> barrier = pb::adopt( pbBarrierCreate( 1 ) );
    pbSignalAddBarrier( process->end.get(), barrier.get() );
    pbBarrierPass( barrier.get() );
}

struct pbSignalable *prProcessCreateSignalable( struct prProcess *process )
{
    PB_ASSERT( process );
    return pb___SignalableCreate( scheduleTarget, process );
}

struct pbAlertable *prProcessCreateAlertable( struct prProcess *process )
{
    PB_ASSERT( process );
    return pb___AlertableCreate( scheduleTarget, process );
}

struct pbTimer *prProcessCreateTimer( struct prProcess *process )
{
    PB_ASSERT( process );
    return pbTimerCreate( pb::adopt( prProcessCreateSignalable( process ) ).get() );
}

} // extern "C"
