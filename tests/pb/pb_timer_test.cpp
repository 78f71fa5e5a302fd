// Timers on the driven clock and on the real one; differences of times.
#include "pb/pb_timer.h"
#include "pb/pb_barrier.h"
#include "pb/pb_time.h"
#include "pb/pb_wake.hpp"
#include "support/death_table.hpp"

PB_SORT_DECLARE( test___sort_RECORDER )

namespace {

// Notes when its timer comes due, and whether that is still scheduled then.
struct Recorder final : pb::Object<Recorder, test___sort_RECORDER> {
    std::string &log;
    const char name;
    pbTimer *timer = nullptr;

    Recorder( std::string &log, char name ) : log( log ), name( name ) {}
    static void wake( pbObj *target )
    {
        const auto *self = static_cast<Recorder *>( target );
        self->log += self->timer && pbTimerScheduled( self->timer ) ? '!' : self->name;
    }
};

} // namespace

constinit const struct pbSort test___sort_RECORDER = pb::detail::makeSort<Recorder>( "RECORDER" );

namespace {

class TimerTest : public testing::Test {
protected:
    TimerTest()
    {
        pb___ClockDrive( true );
        for ( const char name : { 'a', 'b', 'c' } )
            timers.push_back( timer( name ) );
    }
    ~TimerTest() override
    {
        timers.clear();
        pb___ClockDrive( false );
        pb___TimerShutdown();
    }

    pb::Ref<pbTimer> timer( char name )
    {
        const auto recorder = pb::make<Recorder>( log, name );
        const auto signalable = pb::adopt( pb___SignalableCreate( Recorder::wake, recorder.get() ) );
        auto created = pb::adopt( pbTimerCreate( signalable.get() ) );
        recorder->timer = created.get();
        return created;
    }
    pbTimer *at( size_t i ) { return timers.at( i ).get(); }

    std::string log;
    std::vector<pb::Ref<pbTimer>> timers;
};

TEST( TimerDeathTest, Preconditions )
{
    static const auto timer = pb::adopt(
        pbTimerCreate( pb::adopt( pbSignalableCreateBarrier( pb::adopt( pbBarrierCreate( 0 ) ).get() ) ).get() ) );
    support::expectDeaths( { { [] { pbTimerCreate( nullptr ); }, "signalable" },
                             { [] { pbTimerSchedule( timer.get(), -1 ); }, "milliseconds >= 0" },
                             { [] { pb___ClockAdvance( 1 ); }, "the clock is driven" },
                             { [] { pbSleep( -1 ); }, "milliseconds >= 0" },
                             { [] { pbTimeCreate( 0, 1000000000 ); }, "nanoseconds >= 0 && nanoseconds <= 999999999" } } );
}

TEST_F( TimerTest, SignalsInOrderOfExpiryAndNotBefore )
{
    pbTimerSchedule( at( 0 ), 20 );
    pbTimerSchedule( at( 1 ), 10 );
    pbTimerSchedule( at( 2 ), 20 );
    const struct {
        pbInt milliseconds;
        const char *log;
    } steps[] = { { 9, "" }, { 1, "b" }, { 9, "b" }, { 1, "bac" }, { 1000, "bac" } };
    for ( const auto &step : steps ) {
        pb___ClockAdvance( step.milliseconds );
        EXPECT_EQ( log, step.log );
    }
    pbTimerSchedule( at( 0 ), 0 ); // due at once
    pb___ClockAdvance( 0 );
    EXPECT_EQ( log, "baca" );
}

TEST_F( TimerTest, ScheduleReplacesAndUnscheduleAndReleaseCancel )
{
    pbTimerSchedule( at( 0 ), 10 );
    pbTimerSchedule( at( 0 ), 30 );
    pbTimerSchedule( at( 1 ), 10 );
    pbTimerUnschedule( at( 1 ) );
    EXPECT_TRUE( pbTimerScheduled( at( 0 ) ) );
    EXPECT_FALSE( pbTimerScheduled( at( 1 ) ) );
    pbTimerSchedule( at( 2 ), 10 );
    timers.pop_back();
    pb___ClockAdvance( 29 );
    EXPECT_EQ( log, "" );
    pbTimerSchedule( at( 1 ), PB_INT_MAX );
    pb___ClockAdvance( 1 );
    EXPECT_EQ( log, "a" );
    EXPECT_TRUE( pbTimerScheduled( at( 1 ) ) );
}

TEST_F( TimerTest, ClockRunsOnFromWhereItWasDrivenAndTimersSurviveTheThread )
{
    const pbInt start = pbTimestamp();
    EXPECT_EQ( pbTimestamp(), start );
    pb___ClockAdvance( 100'000 );
    EXPECT_EQ( pbTimestamp(), start + 100'000 );
    pb___TimerShutdown();
    pb___ClockDrive( false );
    EXPECT_GE( pbTimestamp(), start + 100'000 );

    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    const auto real = pb::adopt( pbTimerCreate( signalable.get() ) );
    for ( int i = 0; i < 20; ++i ) { // the thread sleeps for the later one when the earlier one comes
        pbTimerSchedule( at( 0 ), 3'600'000 );
        pbTimerSchedule( real.get(), 1 );
        pbBarrierPass( barrier.get() );
        EXPECT_FALSE( pbTimerScheduled( real.get() ) );
        pbBarrierBlock( barrier.get() );
    }
}

TEST( Time, DifferenceIsFlooredAndFailsWhenItDoesNotFit )
{
    constexpr pbInt untouched = 42;
    const struct {
        pbInt aSeconds, aNanoseconds, bSeconds, bNanoseconds, difference;
    } table[] = { { 5, 0, 3, 0, 2 },
                  { 5, 0, 3, 1, 1 },
                  { 5, 1, 3, 0, 2 },
                  { 3, 0, 5, 0, -2 },
                  { 3, 0, 5, 1, -3 },
                  { PB_INT_MAX, 0, 0, 0, PB_INT_MAX },
                  { 0, 0, PB_INT_MAX, 1, PB_INT_MIN },
                  { PB_INT_MAX, 0, -1, 1, PB_INT_MAX },
                  { PB_INT_MAX, 0, -1, 0, untouched },
                  { PB_INT_MIN, 0, 0, 1, untouched },
                  { PB_INT_MIN, 0, 1, 0, untouched } };
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
