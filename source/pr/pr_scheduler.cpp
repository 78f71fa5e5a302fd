// prScheduler: a pool of threads and its queue of processes that are ready to run.
#include "pr/pr_scheduler.hpp"

#include "pb/pb_wake.hpp"
#include "pr/pr_process_internal.hpp"
#include "pr/pr_test.hpp"

#include <algorithm>
#include <bit>
#include <thread>

constinit const struct pbSort pr___sort_PR_SCHEDULER =
    pb::detail::makeSort<struct prScheduler>( pb::detail::sortText( "pr___sort_PR_SCHEDULER" ) );

namespace {

thread_local const struct prScheduler *schedulerOfThread = nullptr;

} // namespace

namespace pr {

void ReadyList::push( pb::Ref<struct prProcess> process ) noexcept
{
    struct prProcess *const added = process.get();
    ( first_ ? last_->nextReady : first_ ) = std::move( process );
    last_ = added;
}

pb::Ref<struct prProcess> ReadyList::pop() noexcept
{
    pb::Ref<struct prProcess> process = std::move( first_ );
    first_ = std::move( process->nextReady );
    return process;
}

} // namespace pr

pbInt prScheduler::start()
{
    pb::Guard life( lifeMonitor_ );
    {
        pb::Guard guard( monitor_ );
        stopped_ = false;
    }
    return spawn();
}

void prScheduler::startUnlessStopped()
{
    pb::Guard life( lifeMonitor_ );
    {
        pb::Guard guard( monitor_ );
        if ( stopped_ )
            return;
    }
    (void)spawn();
}

pbInt prScheduler::spawn()
{
    while ( static_cast<pbInt>( threads_.size() ) < threadCount_ ) {
        pb::Ref<struct pbThread> thread =
            pb::adopt( pbThreadTrySpawnCstr( threadName_, -1, threadFunction, this, threadPriority_ ) );
        if ( !thread )
            break;
        threads_.push_back( std::move( thread ) );
    }
    started_.store( !threads_.empty(), std::memory_order_release );
    return static_cast<pbInt>( threads_.size() );
}

void prScheduler::stop()
{
    PB_ASSERT( schedulerOfThread != this );
    {
        pb::Guard life( lifeMonitor_ );
        {
            pb::Guard guard( monitor_ );
            stopped_ = true;
        }
        work_.wakeAll();
        for ( const pb::Ref<struct pbThread> &thread : threads_ )
            pbThreadJoin( thread.get() );
        threads_.clear();
        started_.store( false, std::memory_order_release );
    }
    for ( ;; ) { // under no monitor, as arguments may end with their processes
        pb::Ref<struct prProcess> process;
        {
            pb::Guard guard( monitor_ );
            process = pop();
            if ( !process && quiescing_ )
                quiet_.wakeAll();
        }
        if ( !process )
            return;
        process->drop();
    }
}

bool prScheduler::enqueue( struct prProcess *process )
{
    // A thread that is woken at once may take this one's place, and would find the monitors taken that this one holds.
    const bool held = pb___WakesTryHold( wakeHeldBack, this );
    bool wake;
    {
        pb::Guard guard( monitor_ );
        if ( stopped_ )
            return false;
        push( pb::share( process ) );
        wake = !held && oweWake();
    }
    if ( wake )
        work_.wakeOne();
    // Without any thread the process stays queued, and the next one that comes tries again.
    if ( !started_.load( std::memory_order_acquire ) )
        startUnlessStopped();
    return true;
}

// What was queued may have run by now.
void prScheduler::wakeHeldBack( struct pbObj *self )
{
    const auto scheduler = static_cast<struct prScheduler *>( self );
    bool wake;
    {
        pb::Guard guard( scheduler->monitor_ );
        wake = scheduler->readyMask_ && scheduler->oweWake();
    }
    if ( wake )
        scheduler->work_.wakeOne();
}

bool prScheduler::oweWake()
{
    if ( sleeping_ <= wakesOwed_ )
        return false;
    ++wakesOwed_;
    return true;
}

void prScheduler::quiesce()
{
    pb::Guard guard( monitor_ );
    ++quiescing_;
    while ( readyMask_ || running_ )
        quiet_.wait( monitor_ );
    --quiescing_;
}

void prScheduler::threadFunction( struct pbObj *self )
{
    const auto scheduler = static_cast<struct prScheduler *>( self );
    schedulerOfThread = scheduler;
    scheduler->work();
}

void prScheduler::work()
{
    pb::Ref<struct prProcess> process = next( true, nullptr );
    while ( process ) {
        const bool again = process->run();
        if ( !again )
            prProcess::retire( std::move( process ) ); // before the run counts as over: it may free what hangs on it
        process = next( false, std::move( process ) );
    }
}

pb::Ref<struct prProcess> prScheduler::next( bool first, pb::Ref<struct prProcess> again )
{
    pb::Guard guard( monitor_ );
    if ( !first )
        --running_;
    if ( again )
        push( std::move( again ) ); // wakes nobody: this thread takes what is ready
    while ( !stopped_ && !readyMask_ ) {
        if ( !running_ && quiescing_ )
            quiet_.wakeAll();
        ++sleeping_;
        while ( !stopped_ && !wakesOwed_ )
            work_.wait( monitor_ );
        --sleeping_;
        wakesOwed_ = std::max<pbInt>( wakesOwed_ - 1, 0 );
    }
    if ( stopped_ )
        return nullptr;
    ++running_;
    return pop();
}

void prScheduler::push( pb::Ref<struct prProcess> process )
{
    const pbInt priority = process->priority;
    ready_[priority].push( std::move( process ) );
    readyMask_ |= 1u << priority;
}

pb::Ref<struct prProcess> prScheduler::pop()
{
    if ( !readyMask_ )
        return nullptr;
    const int priority = std::bit_width( readyMask_ ) - 1;
    pb::Ref<struct prProcess> process = ready_[priority].pop();
    if ( ready_[priority].empty() )
        readyMask_ &= ~( 1u << priority );
    return process;
}

extern "C" struct prScheduler *pr___SchedulerDefault( void )
{
    static struct prScheduler *const scheduler =
        new prScheduler( "prScheduler", std::clamp<pbInt>( std::thread::hardware_concurrency(), 2, 4 ), 0 );
    return scheduler;
}

extern "C" void pr___Quiesce( void ) { pr___SchedulerDefault()->quiesce(); }
