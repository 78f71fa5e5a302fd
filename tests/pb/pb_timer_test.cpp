// Timers on the driven clock and on the real one; differences of times.
#include "pb/pb_timer.h"
#include "pb/pb_barrier.h"
#include "pb/pb_time.h"
#include "support/asleep.hpp"
#include "support/death_table.hpp"
#include "support/target.hpp"

namespace {

class TimerTest : public testing::Test {
protected:
    TimerTest() { pb___ClockDrive( true ); }
    ~TimerTest() override
    {
        pb___ClockDrive( false );
        pb___TimerShutdown();
    }

    // Notes its name when it comes due, or "!" when it is still scheduled then.
    pb::Ref<pbTimer> timer( char name )
    {
        const auto target = pb::make<support::Target>();
        auto created = pb::adopt( pbTimerCreate( support::signalableOf( target ).get() ) );
        target->onWake = [this, name, timer = created.get()] { log += pbTimerScheduled( timer ) ? '!' : name; };
        return created;
    }

    std::string log;
    pb::Ref<pbTimer> a = timer( 'a' ), b = timer( 'b' ), c = timer( 'c' );
};

TEST( TimerDeathTest, Preconditions )
{
    static const auto timer = pb::adopt( pbTimerCreate( support::signalableOf( pb::make<support::Target>() ).get() ) );
    support::expectDeaths( {
        { [] { pbTimerCreate( nullptr ); }, "signalable" },
        { [] { pbTimerSchedule( timer.get(), -1 ); }, "milliseconds >= 0" },
        { [] { pb___ClockAdvance( 1 ); }, "the clock is driven" },
        { [] { pbTimeCreate( 0, 1000000000 ); }, "nanoseconds >= 0 && nanoseconds <= 999999999" },
    } );
}

TEST_F( TimerTest, SignalsInOrderOfExpiryAndNotBefore )
{
    pbTimerSchedule( a.get(), 20 );
    pbTimerSchedule( b.get(), 10 );
    pbTimerSchedule( c.get(), 20 );
    const std::pair<pbInt, const char *> steps[] = { { 9, "" }, { 1, "b" }, { 9, "b" }, { 1, "bac" }, { 1000, "bac" } };
    for ( const auto &[milliseconds, expected] : steps ) {
        pb___ClockAdvance( milliseconds );
        EXPECT_EQ( log, expected );
    }
    pbTimerSchedule( a.get(), 0 ); // due at once
    pb___ClockAdvance( 0 );
    EXPECT_EQ( log, "baca" );
}

TEST_F( TimerTest, ScheduleReplacesAndUnscheduleAndReleaseCancel )
{
    pbTimerSchedule( a.get(), 10 );
    pbTimerSchedule( a.get(), 30 );
    pbTimerSchedule( b.get(), 10 );
    pbTimerUnschedule( b.get() );
    EXPECT_FALSE( pbTimerScheduled( b.get() ) );
    pbTimerSchedule( timer( 'x' ).get(), 10 ); // released at once
    pb___ClockAdvance( 29 );
    EXPECT_EQ( log, "" );
    pbTimerSchedule( b.get(), PB_INT_MAX );
    pb___ClockAdvance( 1 );
    EXPECT_EQ( log, "a" );
    EXPECT_TRUE( pbTimerScheduled( b.get() ) );
}

TEST_F( TimerTest, ClockRunsOnFromWhereItWasDrivenAndTimersSurviveTheThread )
{
    const pbInt start = pbTimestamp();
    pb___ClockAdvance( 100'000 );
    EXPECT_EQ( pbTimestamp(), start + 100'000 );
    pb___TimerShutdown();
    pb___ClockDrive( false );
    EXPECT_GE( pbTimestamp(), start + 100'000 );

    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto real = pb::adopt( pbTimerCreate( pb::adopt( pbSignalableCreateBarrier( barrier.get() ) ).get() ) );
    for ( int i = 0; i < 20; ++i ) { // the thread sleeps for the later one when the earlier one comes
        pbTimerSchedule( a.get(), 3'600'000 );
        pbTimerSchedule( real.get(), 1 );
        pbBarrierPass( barrier.get() );
        EXPECT_FALSE( pbTimerScheduled( real.get() ) );
        pbBarrierBlock( barrier.get() );
    }
}

// As hosts of modules do that end while another one ends.
TEST_F( TimerTest, ShutDownTwiceAtOnceEndsTheThreadOnce )
{
    for ( int round = 0; round < 3; ++round ) { // started again each time
        const auto signalled = pb::adopt( pbBarrierCreate( 1 ) ), goOn = pb::adopt( pbBarrierCreate( 1 ) );
        const auto target = pb::make<support::Target>( [&] {
            pbBarrierUnblock( signalled.get() );
            pbBarrierPass( goOn.get() );
        } );
        const auto blocking = pb::adopt( pbTimerCreate( support::signalableOf( target ).get() ) );
        pbTimerSchedule( blocking.get(), 0 );
        pbBarrierPass( signalled.get() );
        const support::SleepingThread first( [] { pb___TimerShutdown(); } ), second( [] { pb___TimerShutdown(); } );
        pbBarrierUnblock( goOn.get() );
    }
}

TEST( Time, DifferenceIsFlooredAndFailsWhenItDoesNotFit )
{
    constexpr pbInt untouched = 42;
    const struct {
        pbInt aSeconds, aNanoseconds, bSeconds, bNanoseconds, difference;
    } table[] = { { 5, 0, 3, 0, 2 },   { 5, 0, 3, 1, 1 },   { 5, 1, 3, 0, 2 },
                  { 3, 0, 5, 0, -2 },  { 3, 0, 5, 1, -3 },  { 0, 0, PB_INT_MAX, 1, PB_INT_MIN },
                  { PB_INT_MAX, 0, -1, 1, PB_INT_MAX },     { PB_INT_MAX, 0, -1, 0, untouched },
                  { PB_INT_MIN, 0, 0, 1, untouched },       { PB_INT_MIN, 0, 1, 0, untouched } };
    for ( const auto &row : table ) {
        SCOPED_TRACE( &row - table );
        const auto a = pb::adopt( pbTimeCreate( row.aSeconds, row.aNanoseconds ) );
        const auto b = pb::adopt( pbTimeCreate( row.bSeconds, row.bNanoseconds ) );
        pbInt difference = untouched;
        EXPECT_EQ( pbTimeTryDifferenceSeconds( a.get(), b.get(), &difference ), row.difference != untouched );
        EXPECT_EQ( difference, row.difference );
    }
}

} // namespace
