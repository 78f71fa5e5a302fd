// Processes, domains and the module, one property at a time.
#include "pr/probe.hpp"

#include "pb/pb_alert.h"
#include "pb/pb_alertable.h"
#include "pb/pb_timer.h"
#include "pb/pb_wake.hpp"
#include "pr/pr_module.h"

#include <gmock/gmock.h>
#include <semaphore>
#include <thread>

using testing::ElementsAre;

namespace {

using Domain = pb::Ref<struct prDomain>;
using Gate = std::counting_semaphore<>;

Domain domain( pbInt threads ) { return pb::adopt( prDomainTryCreate( threads, 3, 0 ) ); }

TEST( PrProcess, SchedulesBeforeARunCollapseAndOneDuringItCausesOneMore )
{
    const Domain one = domain( 1 );
    Gate entered( 0 ), go( 0 );
    std::atomic<int> runs{ 0 };
    const auto caller = std::this_thread::get_id();
    const Process blocker = process( [&] { entered.release(), go.acquire(); }, nullptr, 1, one.get() );
    const Process counted = process(
        [&] {
            EXPECT_NE( std::this_thread::get_id(), caller );
            ++runs;
            entered.release();
            go.acquire();
        },
        nullptr, 1, one.get() );
    prProcessSchedule( blocker.get() );
    entered.acquire();
    for ( int i = 0; i < 3; ++i )
        prProcessSchedule( counted.get() );
    go.release(); // the blocker ends
    entered.acquire();
    EXPECT_EQ( runs, 1 );
    for ( int i = 0; i < 3; ++i )
        prProcessSchedule( counted.get() ); // during the first run
    go.release();
    entered.acquire();
    go.release();
    const Process last = process( [&] { entered.release(); }, nullptr, 1, one.get() );
    prProcessSchedule( last.get() );
    entered.acquire();
    EXPECT_EQ( runs, 2 );
}

TEST( PrProcess, HigherPrioritiesRunFirstAndEqualOnesInOrder )
{
    const Domain one = domain( 1 );
    Gate entered( 0 ), go( 0 );
    const Process blocker = process( [&] { entered.release(), go.acquire(); }, nullptr, 9, one.get() );
    prProcessSchedule( blocker.get() );
    entered.acquire();
    std::vector<int> order;
    std::vector<Process> processes;
    const pbInt priorities[] = { 1, 0, 9, 1, 9, 5 };
    for ( int i = 0; i < 6; ++i ) {
        processes.push_back( process( [&order, i] { order.push_back( i ); }, nullptr, priorities[i], one.get() ) );
        prProcessSchedule( processes.back().get() );
    }
    const Process last = process( [&] { entered.release(); }, nullptr, 0, one.get() );
    prProcessSchedule( last.get() );
    go.release();
    entered.acquire();
    EXPECT_THAT( order, ElementsAre( 2, 4, 5, 0, 3, 1 ) );
}

TEST( PrProcess, HaltCancelsAPendingRunAndReleasesTheArgumentOnce )
{
    const Domain one = domain( 1 );
    Gate entered( 0 ), go( 0 );
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    const Process blocker = process( [&] { entered.release(), go.acquire(); }, nullptr, 1, one.get() );
    prProcessSchedule( blocker.get() );
    entered.acquire();
    const Process pending = process( [&] { ++runs; }, &destroyed, 1, one.get() );
    const Process idle = process( [&] { ++runs; }, &destroyed, 1, one.get() );
    prProcessSchedule( pending.get() );
    for ( const Process &halted : { pending, idle } ) {
        EXPECT_FALSE( prProcessHalted( halted.get() ) );
        prProcessHalt( halted.get() );
        prProcessHalt( halted.get() );
        EXPECT_TRUE( prProcessHalted( halted.get() ) );
        prProcessSchedule( halted.get() );
    }
    EXPECT_EQ( destroyed, 0 ); // never in the thread that halts
    go.release();
    prProcessEndWait( pending.get() );
    prProcessEndWait( idle.get() );
    EXPECT_EQ( destroyed, 2 ); // before the end is signalled
    EXPECT_EQ( runs, 0 );
}

TEST( PrProcess, HaltFromInsideLetsTheRunGoOnWithItsArgument )
{
    std::atomic<int> destroyed{ 0 }, runs{ 0 };
    Gate ended( 0 );
    Process halting;
    halting = process(
        [&] {
            prProcessSchedule( halting.get() );
            prProcessHalt( halting.get() );
            prProcessSchedule( halting.get() );
            EXPECT_EQ( destroyed, 0 );
            ++runs;
        },
        &destroyed );
    // The end wakes signalables that are added before it and at once those that come after.
    const Process before = process( [&] { ended.release(); } ), after = process( [&] { ended.release(); } );
    const auto add = [&]( const Process &woken ) {
        prProcessEndAddSignalable( halting.get(), pb::adopt( prProcessCreateSignalable( woken.get() ) ).get() );
    };
    add( before );
    prProcessSchedule( halting.get() );
    ended.acquire();
    EXPECT_EQ( destroyed, 1 );
    EXPECT_EQ( runs, 1 );
    add( after );
    ended.acquire();
    pr___Quiesce();
}

TEST( PrProcess, ReleasedWhilePendingItStillRuns )
{
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    for ( int i = 0; i < 100; ++i )
        prProcessSchedule( process( [&] { ++runs; }, &destroyed ).get() );
    pr___Quiesce();
    EXPECT_EQ( runs, 100 );
    EXPECT_EQ( destroyed, 100 );
}

TEST( PrProcess, SignalsAlertsAndTimersScheduleIt )
{
    std::atomic<int> runs{ 0 };
    pb::Ref<struct pbTimer> timer;
    const Process woken = process( [&] {
        ++runs;
        EXPECT_FALSE( pbTimerScheduled( timer.get() ) ); // the expiry clears it before it wakes
    } );
    timer = pb::adopt( prProcessCreateTimer( woken.get() ) );
    const pb::Ref<struct pbSignal> signal = pb::adopt( pbSignalCreate() );
    pbSignalAddSignalable( signal.get(), pb::adopt( prProcessCreateSignalable( woken.get() ) ).get() );
    pbSignalAssert( signal.get() );
    pr___Quiesce();
    EXPECT_EQ( runs, 1 );

    const pb::Ref<struct pbAlert> alert = pb::adopt( pbAlertCreate() );
    pbAlertSet( alert.get() );
    pbAlertAddAlertable( alert.get(), pb::adopt( prProcessCreateAlertable( woken.get() ) ).get() );
    pr___Quiesce();
    EXPECT_EQ( runs, 2 );

    pb___ClockDrive( true );
    pbTimerSchedule( timer.get(), 600'000 );
    pb___ClockAdvance( 599'999 );
    pr___Quiesce();
    EXPECT_EQ( runs, 2 );
    pb___ClockAdvance( 1 );
    pr___Quiesce();
    EXPECT_EQ( runs, 3 );
    pb___ClockDrive( false );
    prProcessHalt( woken.get() );
    pr___Quiesce();
}

TEST( PrDomain, ReleaseWaitsForTheRunUnderWayAndDropsTheRest )
{
    Domain one = domain( 1 );
    Gate entered( 0 );
    std::atomic<bool> finished{ false };
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    const Process running = process(
        [&] {
            entered.release();
            for ( int i = 0; i < 1000; ++i )
                std::this_thread::yield();
            finished = true;
        },
        &destroyed, 1, one.get() );
    prProcessSchedule( running.get() );
    entered.acquire();
    const Process pending = process( [&] { ++runs; }, &destroyed, 1, one.get() );
    const Process halted = process( [&] { ++runs; }, &destroyed, 1, one.get() );
    prProcessSchedule( pending.get() );
    prProcessHalt( halted.get() );
    one.reset();
    EXPECT_TRUE( finished );
    EXPECT_EQ( destroyed, 1 ); // the halted one
    prProcessSchedule( pending.get() );
    prProcessSchedule( running.get() );
    EXPECT_EQ( runs, 0 );
    prProcessHalt( pending.get() );
    prProcessEndWait( pending.get() );
    EXPECT_EQ( destroyed, 2 );
}

TEST( PrModule, NothingRunsAfterShutDown )
{
    const pbModule *const module = prModule();
    ASSERT_TRUE( module->startup() );
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    const Process counted = process( [&] { ++runs; }, &destroyed );
    prProcessSchedule( counted.get() );
    pr___Quiesce();
    module->shutdown();
    module->shutdownWait();
    prProcessSchedule( counted.get() );
    pr___Quiesce();
    EXPECT_EQ( runs, 1 );
    prProcessHalt( counted.get() );
    EXPECT_EQ( destroyed, 1 );
    ASSERT_TRUE( module->startup() ); // for the tests that follow
}

TEST( PrDeathTest, Preconditions )
{
    struct {
        void ( *call )();
        const char *text;
    } const rows[] = {
        { [] { prProcessSchedule( nullptr ); }, "process" },
        { [] { process( [] {}, nullptr, 10 ); }, "priority >= 0 && priority <= 9" },
        { [] { prProcessCreateWithPriorityCstr( 1, nullptr, nullptr, "p", -1 ); }, "function" },
        { [] { prDomainTryCreate( 0, 0, 0 ); }, "threads >= 1 && threads <= 64" },
        { [] { prDomainTryCreate( 1, 0, 1 ); }, "!flags" },
        { [] {
             Process self;
             self = process( [&] { prProcessEndWait( self.get() ); } );
             prProcessSchedule( self.get() );
             pr___Quiesce();
         },
          "process != runningProcess" },
    };
    GTEST_FLAG_SET( death_test_style, "threadsafe" );
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.text );
        EXPECT_DEATH( row.call(), testing::HasSubstr( std::string( ": " ) + row.text ) );
    }
}

} // namespace
