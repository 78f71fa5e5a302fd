// pbTimer: the timers of the process in the order of their expiry, and the thread that waits for the earliest.
// The queue holds no references: a timer takes itself out when it is released, which may happen anywhere. So the thread
// touches a timer only under the lock, takes the signalable from it there, and signals after leaving the lock.
#include "pb/pb_timer.h"
#include "pb/pb_clock.hpp"
#include "pb/pb_monitor.hpp"
#include "pb/pb_thread.h"
#include "pb/pb_timer.hpp"
#include "pb/pb_wake.hpp"

#include <chrono>
#include <set>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_TIMER )

namespace {

constexpr pbInt nanosecondsPerMillisecond = 1'000'000;

// Equal expiries keep the order in which they were scheduled.
struct Expiry {
    pbInt time; // of the clock, in nanoseconds
    uint64_t sequence;
    pbTimer *timer;

    auto operator<=>( const Expiry & ) const = default;
};
using Queue = std::set<Expiry>;

} // namespace

struct pbTimer final : pb::Object<struct pbTimer, pb___sort_PB_TIMER> {
    const pb::Ref<struct pbSignalable> signalable;
    std::atomic<bool> scheduled{ false }; // changes under the service's monitor, with the place
    Queue::iterator place;                // while scheduled

    explicit pbTimer( struct pbSignalable *signalable ) : signalable( pb::share( signalable ) ) {}
    ~pbTimer();
};

PB_OBJECT_DEFINE( pbTimer, pb___sort_PB_TIMER )

namespace {

class TimerService {
public:
    void schedule( pbTimer &timer, pbInt milliseconds )
    {
        const pb::Guard guard( monitor_ );
        remove( timer );
        const pbInt time =
            pbIntAddSaturating( pb::clockNow(), pbIntMulSaturating( milliseconds, nanosecondsPerMillisecond ) );
        timer.place = queue_.insert( { time, sequence_++, &timer } ).first;
        timer.scheduled = true;
        (void)startThread(); // refused: the next schedule asks again
        if ( timer.place == queue_.begin() )
            changed_.wakeAll();
    }

    void unschedule( pbTimer &timer )
    {
        const pb::Guard guard( monitor_ );
        remove( timer );
    }

    void drive( bool driven )
    {
        const pb::Guard guard( monitor_ );
        pb::clockDrive( driven );
        changed_.wakeAll();
    }

    void advance( pbInt milliseconds )
    {
        const pb::Guard guard( monitor_ );
        PB_ASSERT_TEXT( pb::clockIsDriven(), "the clock is driven" );
        pb::clockMove( pbIntMulSaturating( milliseconds, nanosecondsPerMillisecond ) );
        changed_.wakeAll();
        while ( thread_ && ( signalling_ || earliestDue() ) )
            settled_.wait( monitor_ );
    }

    bool start()
    {
        const pb::Guard guard( monitor_ );
        return startThread();
    }

    void shutdown()
    {
        const pb::Ref<struct pbThread> ending = stop();
        if ( !ending )
            return;
        pbThreadJoin( ending.get() );
        const pb::Guard guard( monitor_ );
        stopping_ = false;
        changed_.wakeAll();
    }

private:
    void remove( pbTimer &timer ) PB_REQUIRES( monitor_ )
    {
        if ( timer.scheduled )
            queue_.erase( timer.place );
        timer.scheduled = false;
    }

    // The timer that is to be signalled next, when its time has come.
    pbTimer *earliestDue() const PB_REQUIRES( monitor_ )
    {
        return !queue_.empty() && queue_.begin()->time <= pb::clockNow() ? queue_.begin()->timer : nullptr;
    }

    bool startThread() PB_REQUIRES( monitor_ )
    {
        if ( !thread_ && !stopping_ )
            thread_ = pb::adopt( pbThreadTrySpawnCstr( "pbTimer", -1, runService, nullptr, 0 ) );
        return static_cast<bool>( thread_ );
    }

    // The thread that is going to end, to be joined by the caller. Null when there is none; one that somebody else joins
    // has ended then.
    pb::Ref<struct pbThread> stop()
    {
        const pb::Guard guard( monitor_ );
        while ( stopping_ )
            changed_.wait( monitor_ );
        stopping_ = static_cast<bool>( thread_ );
        changed_.wakeAll();
        settled_.wakeAll();
        return std::exchange( thread_, nullptr );
    }

    static void runService( struct pbObj * );

    void run()
    {
        for ( std::vector<pb::Ref<struct pbSignalable>> due; waitForDue( due ); due.clear() ) {
            const pb::WakeHold hold;
            for ( const auto &signalable : due )
                pbSignalableSignal( signalable.get() );
        }
    }

    // Takes the timers that have come due out of the queue. False when the thread is to end.
    bool waitForDue( std::vector<pb::Ref<struct pbSignalable>> &due )
    {
        const pb::Guard guard( monitor_ );
        for ( signalling_ = false; !stopping_; sleep() ) {
            while ( pbTimer *timer = earliestDue() ) {
                due.push_back( timer->signalable );
                remove( *timer );
            }
            signalling_ = !due.empty();
            if ( signalling_ )
                return true;
            settled_.wakeAll();
        }
        return false;
    }

    void sleep() PB_REQUIRES( monitor_ )
    {
        using Monotonic = std::chrono::steady_clock::time_point;
        if ( queue_.empty() || pb::clockIsDriven() )
            changed_.wait( monitor_ );
        else
            (void)changed_.waitUntil(
                monitor_, Monotonic( std::chrono::nanoseconds( pb::clockToMonotonic( queue_.begin()->time ) ) ) );
    }

    pb::Monitor monitor_;
    pb::Condition changed_; // the earliest expiry, the clock, or the wish to stop
    pb::Condition settled_; // whatever was due has been signalled
    Queue queue_ PB_GUARDED_BY( monitor_ );
    uint64_t sequence_ PB_GUARDED_BY( monitor_ ) = 0;
    pb::Ref<struct pbThread> thread_ PB_GUARDED_BY( monitor_ );
    bool signalling_ PB_GUARDED_BY( monitor_ ) = false;
    bool stopping_ PB_GUARDED_BY( monitor_ ) = false;
};

// Never destroyed: timers may be released by destructors that run at the end of the process.
TimerService &service()
{
    static TimerService *const instance = new TimerService;
    return *instance;
}

void TimerService::runService( struct pbObj * ) { service().run(); }

} // namespace

pbTimer::~pbTimer() { service().unschedule( *this ); }

namespace pb {

bool timerTryStart() { return service().start(); }

} // namespace pb

extern "C" {

struct pbTimer *pbTimerCreate( struct pbSignalable *signalable )
{
    PB_ASSERT( signalable );
    return new pbTimer( signalable );
}

void pbTimerSchedule( struct pbTimer *timer, pbInt milliseconds )
{
    PB_ASSERT( timer );
    PB_ASSERT( milliseconds >= 0 );
    service().schedule( *timer, milliseconds );
}

void pbTimerUnschedule( struct pbTimer *timer )
{
    PB_ASSERT( timer );
    service().unschedule( *timer );
}

pbBool pbTimerScheduled( const struct pbTimer *timer )
{
    PB_ASSERT( timer );
    return timer->scheduled;
}

void pb___ClockDrive( pbBool driven ) { service().drive( driven ); }

void pb___ClockAdvance( pbInt milliseconds )
{
    PB_ASSERT( milliseconds >= 0 );
    service().advance( milliseconds );
}

void pb___TimerShutdown( void ) { service().shutdown(); }

} // extern "C"
