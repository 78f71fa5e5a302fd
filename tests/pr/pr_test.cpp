// Processes, domains and the module, alone and under contention.
#include "pb/pb_alert.h"
#include "pb/pb_alertable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pb/pb_timer.h"
#include "pb/pb_wake.hpp"
#include "pr/pr_domain.h"
#include "pr/pr_module.h"
#include "pr/pr_process.h"
#include "pr/pr_test.hpp"
#include "support/death_table.hpp"

#include <semaphore>
#include <thread>

// What a process runs; counts its own destructions.
PB_SORT_DECLARE( prProbeSort )
struct Probe final : pb::Object<Probe, prProbeSort> {
    const std::function<void()> body;
    std::atomic<int> *const destroyed;

    Probe( std::function<void()> run, std::atomic<int> *count ) : body( std::move( run ) ), destroyed( count ) {}
    ~Probe() { destroyed ? void( ++*destroyed ) : void(); }
};
constinit const struct pbSort prProbeSort = pb::detail::makeSort<Probe>( "PROBE" );

namespace {

using Process = pb::Ref<struct prProcess>;
using Domain = pb::Ref<struct prDomain>;

// The process alone holds the probe.
Process process( std::function<void()> body, std::atomic<int> *destroyed = nullptr, const Domain &domain = nullptr,
                 pbInt priority = 1 )
{
    const auto probe = pb::make<Probe>( std::move( body ), destroyed );
    const auto run = []( struct pbObj *argument ) { static_cast<Probe *>( argument )->body(); };
    return pb::adopt( domain ? prProcessCreateInDomainCstr( domain.get(), priority, run, probe.get(), "probe", -1 )
                             : prProcessCreateWithPriorityCstr( priority, run, probe.get(), "probe", -1 ) );
}

// A domain whose only thread is held inside a process until it is let go.
struct PrHeld : testing::Test {
    std::counting_semaphore<> entered{ 0 }, go{ 0 };
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    Domain domain = pb::adopt( prDomainTryCreate( 1, 3, 0 ) );
    const Process holder = process( [this] { hold(); }, nullptr, domain );

    PrHeld() { prProcessSchedule( holder.get() ), entered.acquire(); }
    void hold() { entered.release(), go.acquire(); }
    // Lets the holder go and waits for all that is queued behind it.
    void finish()
    {
        const Process last = process( [this] { entered.release(); }, nullptr, domain, 0 );
        prProcessSchedule( last.get() );
        go.release();
        entered.acquire();
    }
};

TEST_F( PrHeld, SchedulesBeforeARunCollapseAndOneDuringItCausesOneMore )
{
    const Process counted = process( [this] { ++runs, hold(); }, nullptr, domain );
    for ( int expected = 1; expected <= 2; ++expected ) {
        for ( int i = 0; i < 3; ++i )
            prProcessSchedule( counted.get() );
        go.release();
        entered.acquire();
        EXPECT_EQ( runs, expected );
    }
    finish();
    EXPECT_EQ( runs, 2 );
}

TEST_F( PrHeld, HigherPrioritiesRunFirstAndEqualOnesInOrder )
{
    std::vector<int> order;
    const pbInt priorities[] = { 1, 0, 9, 1, 9, 5 };
    for ( int i = 0; i < 6; ++i ) // released while pending, and run all the same
        prProcessSchedule( process( [&order, i] { order.push_back( i ); }, &destroyed, domain, priorities[i] ).get() );
    finish();
    EXPECT_THAT( order, testing::ElementsAre( 2, 4, 5, 0, 3, 1 ) );
    EXPECT_EQ( destroyed, 6 );
}

TEST_F( PrHeld, HaltCancelsAPendingRunAndReleasesTheArgumentInASchedulerThread )
{
    const Process pending = process( [this] { ++runs; }, &destroyed, domain );
    const Process idle = process( [this] { ++runs; }, &destroyed, domain );
    prProcessSchedule( pending.get() );
    for ( const Process &halted : { pending, idle } ) {
        for ( int i = 0; i < 2; ++i )
            prProcessHalt( halted.get() );
        EXPECT_TRUE( prProcessHalted( halted.get() ) );
        prProcessSchedule( halted.get() );
    }
    EXPECT_EQ( destroyed, 0 );
    go.release();
    prProcessEndWait( pending.get() );
    prProcessEndWait( idle.get() );
    EXPECT_EQ( destroyed, 2 );
    EXPECT_EQ( runs, 0 );
}

TEST_F( PrHeld, TheLastReleaseLeavesTheArgumentToASchedulerThread )
{
    process( [] {}, &destroyed, domain ).reset();
    Process lastOfAStoppedDomain;
    {
        const Domain stopped = pb::adopt( prDomainTryCreate( 1, 3, 0 ) );
        lastOfAStoppedDomain = process( [] {}, &runs, stopped );
    }
    EXPECT_EQ( destroyed, 0 );
    finish();
    EXPECT_EQ( destroyed, 1 );
    lastOfAStoppedDomain.reset();
    EXPECT_EQ( runs, 1 );
}

// The first process runs again at once, and blocks: the other thread of the domain has to take the second one.
TEST( PrDomain, AProcessThatRunsAgainAndBlocksHoldsUpNoOther )
{
    Domain domain = pb::adopt( prDomainTryCreate( 2, 3, 0 ) );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    std::counting_semaphore<> again{ 0 }, passed{ 0 };
    int runs = 0;
    bool inTime = false;
    Process blocking;
    blocking = process(
        [&] {
            if ( ++runs == 1 ) {
                prProcessSchedule( blocking.get() );
                return;
            }
            again.release();
            inTime = pbBarrierPassTimed( barrier.get(), 20'000 );
            passed.release();
        },
        nullptr, domain );
    const Process opening = process( [&] { pbBarrierUnblock( barrier.get() ); }, nullptr, domain );
    prProcessSchedule( blocking.get() );
    again.acquire();
    prProcessSchedule( opening.get() );
    passed.acquire();
    EXPECT_TRUE( inTime );
    domain.reset(); // waits for what still runs
}

TEST_F( PrHeld, ReleaseOfTheDomainWaitsForTheRunUnderWayAndDropsTheRest )
{
    const Process pending = process( [this] { ++runs; }, &destroyed, domain );
    const Process halted = process( [this] { ++runs; }, &destroyed, domain );
    prProcessSchedule( pending.get() );
    prProcessHalt( halted.get() );
    std::atomic<bool> let{ false };
    std::thread releasing( [&] {
        let = true;
        go.release();
    } );
    domain.reset();
    EXPECT_TRUE( let );
    releasing.join();
    EXPECT_LE( runs, 1 );
    prProcessSchedule( pending.get() );
    prProcessHalt( pending.get() );
    prProcessEndWait( pending.get() );
    prProcessEndWait( halted.get() );
    EXPECT_EQ( destroyed, 2 );
}

TEST( PrProcess, HaltFromInsideLetsTheRunGoOnWithItsArgument )
{
    std::atomic<int> destroyed{ 0 }, ended{ 0 };
    Process halting;
    halting = process(
        [&] {
            prProcessSchedule( halting.get() );
            prProcessHalt( halting.get() );
            EXPECT_EQ( destroyed, 0 );
        },
        &destroyed );
    const Process observer = process( [&] { ended = destroyed.load(); } );
    const auto signalable = pb::adopt( prProcessCreateSignalable( observer.get() ) );
    prProcessEndAddSignalable( halting.get(), signalable.get() );
    prProcessSchedule( halting.get() );
    pr___Quiesce();
    EXPECT_EQ( ended, 1 ); // woken by the end, after the argument went
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
    const auto signal = pb::adopt( pbSignalCreate() );
    pbSignalAddSignalable( signal.get(), pb::adopt( prProcessCreateSignalable( woken.get() ) ).get() );
    {
        const pb::WakeHold hold; // the thread that is to run it sleeps until this ends
        pbSignalAssert( signal.get() );
    }
    pr___Quiesce();
    EXPECT_EQ( runs, 1 );
    const auto alert = pb::adopt( pbAlertCreate() );
    pbAlertSet( alert.get() );
    pbAlertAddAlertable( alert.get(), pb::adopt( prProcessCreateAlertable( woken.get() ) ).get() );
    pr___Quiesce();
    EXPECT_EQ( runs, 2 );
    pb___ClockDrive( true );
    pbTimerSchedule( timer.get(), 600'000 );
    for ( const auto &[advance, expected] : { std::pair{ 599'999, 2 }, { 1, 3 } } ) {
        pb___ClockAdvance( advance );
        pr___Quiesce();
        EXPECT_EQ( runs, expected );
    }
    pb___ClockDrive( false );
}

TEST( PrModule, NothingRunsAfterShutDown )
{
    ASSERT_TRUE( prModule()->startup() );
    std::atomic<int> runs{ 0 }, destroyed{ 0 };
    const Process counted = process( [&] { ++runs; }, &destroyed );
    prProcessSchedule( counted.get() );
    pr___Quiesce();
    prModule()->shutdown();
    prModule()->shutdownWait();
    prProcessSchedule( counted.get() );
    prProcessHalt( counted.get() );
    EXPECT_EQ( runs, 1 );
    EXPECT_EQ( destroyed, 1 );
    ASSERT_TRUE( prModule()->startup() ); // for the tests that follow
}

template <class Body> void inThreads( const Body &body )
{
    std::vector<std::thread> threads;
    for ( int i = 0; i < 4; ++i )
        threads.emplace_back( body, i );
    for ( std::thread &thread : threads )
        thread.join();
}

// Every schedule is followed by a run that sees what was written before it. What the function counts is plain, so that
// a run beside itself is a race.
TEST( PrStress, NoScheduleIsLostAndRunsAreSerial )
{
    std::atomic<int> written[4]{};
    int seen[4]{}, runs = 0;
    const Process counted = process( [&] {
        ++runs;
        for ( int i = 0; i < 4; ++i )
            seen[i] = written[i].load( std::memory_order_relaxed );
    } );
    inThreads( [&]( int thread ) {
        for ( int round = 1; round <= 10'000; ++round ) {
            written[thread].store( round, std::memory_order_relaxed );
            prProcessSchedule( counted.get() );
        }
    } );
    pr___Quiesce();
    EXPECT_THAT( seen, testing::Each( 10'000 ) );
}

// Threads schedule and halt the same process, which holds itself alive through its argument and in half of the rounds
// halts itself. It ends once, its argument goes once, and no run starts after its end.
TEST( PrStress, HaltRacesWithSchedulesAndRuns )
{
    std::atomic<int> destroyed{ 0 }, late{ 0 };
    for ( int round = 0; round < 1000; ++round ) {
        const auto self = std::make_shared<Process>();
        const auto over = std::make_shared<std::atomic<bool>>( false );
        *self = process(
            [&late, self, over, round] {
                late += *over;
                if ( round % 2 )
                    prProcessHalt( self->get() );
            },
            &destroyed );
        const Process racing = *self;
        inThreads( [&]( int thread ) {
            prProcessSchedule( racing.get() );
            if ( thread == round % 4 )
                prProcessHalt( racing.get() );
            prProcessSchedule( racing.get() );
        } );
        prProcessEndWait( racing.get() );
        *over = true;
        prProcessSchedule( racing.get() );
        EXPECT_EQ( destroyed, round + 1 );
    }
    pr___Quiesce();
    EXPECT_EQ( late, 0 );
}

TEST( PrDeathTest, Preconditions )
{
    GTEST_FLAG_SET( death_test_style, "threadsafe" );
    support::expectDeaths( {
        { [] { prProcessSchedule( nullptr ); }, "process" },
        { [] { process( [] {}, nullptr, nullptr, 10 ); }, "priority >= 0 && priority <= 9" },
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
    } );
}

} // namespace
