// The clock behind pbTimestamp and the timers.
#include "pb/pb_clock.hpp"
#include "pb/pb_time.h"

#include <atomic>

namespace {

constexpr pbInt nanosecondsPerSecond = 1'000'000'000, nanosecondsPerMillisecond = 1'000'000;

// While driven the clock stands at `stopped`; else it is `ahead` of the monotonic clock by what it was moved before.
std::atomic<bool> driven{ false };
std::atomic<pbInt> stopped{ 0 }, ahead{ 0 };

pbInt monotonicNow() noexcept
{
    timespec now;
    clock_gettime( CLOCK_MONOTONIC, &now );
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

} // namespace

namespace pb {

pbInt clockNow() noexcept
{
    return driven.load( std::memory_order_acquire ) ? stopped.load( std::memory_order_relaxed )
                                                    : monotonicNow() + ahead.load( std::memory_order_relaxed );
}

bool clockIsDriven() noexcept { return driven.load( std::memory_order_acquire ); }

pbInt clockToMonotonic( pbInt now ) noexcept
{
    return pbIntAddSaturating( now, -ahead.load( std::memory_order_relaxed ) );
}

void clockDrive( bool drive ) noexcept
{
    if ( drive == clockIsDriven() )
        return;
    if ( drive )
        stopped.store( clockNow(), std::memory_order_relaxed );
    else
        ahead.store( stopped.load( std::memory_order_relaxed ) - monotonicNow(), std::memory_order_relaxed );
    driven.store( drive, std::memory_order_release );
}

void clockMove( pbInt nanoseconds ) noexcept
{
    stopped.store( pbIntAddSaturating( stopped.load( std::memory_order_relaxed ), nanoseconds ),
                   std::memory_order_release );
}

timespec monotonicDeadline( pbInt milliseconds ) noexcept
{
    const pbInt duration = pbIntMulSaturating( milliseconds, nanosecondsPerMillisecond );
    const pbInt deadline = pbIntAddSaturating( monotonicNow(), duration );
    return { deadline / nanosecondsPerSecond, deadline % nanosecondsPerSecond };
}

} // namespace pb

extern "C" pbInt pbTimestamp( void ) { return pb::clockNow() / nanosecondsPerMillisecond; }
