// pbTime and pbSleep. pbTimestamp stands with the clock that tests drive.
#include "pb/pb_time.h"
#include "pb/pb_clock.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_wake.hpp"

#include <cerrno>

PB_SORT_DECLARE( pb___sort_PB_TIME )

struct pbTime final : pb::Object<struct pbTime, pb___sort_PB_TIME> {
    const pbInt seconds;
    const pbInt nanoseconds; // 0..999999999

    pbTime( pbInt seconds, pbInt nanoseconds ) : seconds( seconds ), nanoseconds( nanoseconds ) {}
    auto operator<=>( const pbTime & ) const = default;
};

PB_OBJECT_DEFINE( pbTime, pb___sort_PB_TIME )

extern "C" {

void pbSleep( pbInt milliseconds )
{
    PB_ASSERT( milliseconds >= 0 );
    pb___WakesFlush();
    const timespec deadline = pb::monotonicDeadline( milliseconds );
    while ( clock_nanosleep( CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr ) == EINTR )
        continue;
}

struct pbTime *pbTimeCreateNow( void )
{
    timespec now;
    clock_gettime( CLOCK_REALTIME, &now );
    return new pbTime( now.tv_sec, now.tv_nsec );
}

struct pbTime *pbTimeCreate( pbInt seconds, pbInt nanoseconds )
{
    PB_ASSERT( nanoseconds >= 0 && nanoseconds <= 999999999 );
    return new pbTime( seconds, nanoseconds );
}

pbInt pbTimeSeconds( const struct pbTime *time )
{
    PB_ASSERT( time );
    return time->seconds;
}

pbInt pbTimeNanoseconds( const struct pbTime *time )
{
    PB_ASSERT( time );
    return time->nanoseconds;
}

pbBool pbTimeTryDifferenceSeconds( const struct pbTime *a, const struct pbTime *b, pbInt *seconds )
{
    PB_ASSERT( a );
    PB_ASSERT( b );
    PB_ASSERT( seconds );
    // a - b - 1 == a + ~b, and ~b always fits.
    const bool borrow = a->nanoseconds < b->nanoseconds;
    pbInt difference;
    if ( borrow ? __builtin_add_overflow( a->seconds, ~b->seconds, &difference )
                : __builtin_sub_overflow( a->seconds, b->seconds, &difference ) )
        return false;
    *seconds = difference;
    return true;
}

} // extern "C"
