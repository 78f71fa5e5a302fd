// Processes under contention; made to be run under ThreadSanitizer too.
#include "pr/probe.hpp"

#include <gmock/gmock.h>
#include <thread>

namespace {

constexpr int threadCount = 4;

template <class Body> void inThreads( const Body &body )
{
    std::vector<std::thread> threads;
    for ( int i = 0; i < threadCount; ++i )
        threads.emplace_back( [&body, i] { body( i ); } );
    for ( std::thread &thread : threads )
        thread.join();
}

// Every schedule is followed by a run that sees what was written before it. The counters of the function are plain, so
// that a run beside itself is a race.
TEST( PrStress, NoScheduleIsLostAndRunsAreSerial )
{
    constexpr int rounds = 4000;
    std::atomic<int> written[threadCount]{};
    int seen[threadCount]{}, runs = 0;
    std::atomic<bool> inside{ false };
    const Process counted = process( [&] {
        EXPECT_FALSE( inside.exchange( true, std::memory_order_relaxed ) ); // orders nothing, so hides no race
        ++runs;
        for ( int i = 0; i < threadCount; ++i )
            seen[i] = written[i].load( std::memory_order_relaxed );
        inside.store( false, std::memory_order_relaxed );
    } );
    inThreads( [&]( int thread ) {
        for ( int round = 1; round <= rounds; ++round ) {
            written[thread].store( round, std::memory_order_relaxed );
            prProcessSchedule( counted.get() );
        }
    } );
    pr___Quiesce();
    for ( int i = 0; i < threadCount; ++i )
        EXPECT_EQ( seen[i], rounds );
    EXPECT_LE( runs, threadCount * rounds );
    prProcessHalt( counted.get() );
    prProcessEndWait( counted.get() );
}

// Threads schedule and halt the same processes; half of them also halt themselves, and all hold themselves alive
// through their argument. Each ends once, its argument goes once, and no run starts after its end.
TEST( PrStress, HaltRacesWithSchedulesAndRuns )
{
    constexpr int rounds = 1500;
    std::atomic<int> destroyed{ 0 }, late{ 0 };
    struct Shared {
        Process process;
        std::atomic<bool> over{ false };
        int plain = 0;
    };
    for ( int round = 0; round < rounds; ++round ) {
        auto shared = std::make_shared<Shared>();
        shared->process = process(
            [&late, shared, round] {
                if ( shared->over )
                    ++late;
                ++shared->plain;
                if ( round % 2 )
                    prProcessHalt( shared->process.get() );
            },
            &destroyed );
        const Process racing = shared->process;
        inThreads( [&]( int thread ) {
            prProcessSchedule( racing.get() );
            if ( thread == round % threadCount )
                prProcessHalt( racing.get() );
            prProcessSchedule( racing.get() );
        } );
        prProcessEndWait( racing.get() );
        shared->over = true;
        prProcessSchedule( racing.get() );
        EXPECT_EQ( destroyed, round + 1 );
        shared->process.reset();
    }
    pr___Quiesce();
    EXPECT_EQ( late, 0 );
}

// Processes that pass work on among themselves, with sleepers coming and going: a lost wake would hang the end.
TEST( PrStress, NoWakeIsLost )
{
    constexpr int chains = 8, links = 5000;
    std::atomic<int> ended{ 0 };
    std::vector<Process> ring( chains );
    std::vector<std::atomic<int>> left( chains );
    for ( int i = 0; i < chains; ++i ) {
        left[i] = links;
        ring[i] = process( [&, i] {
            if ( left[i].fetch_sub( 1 ) <= 0 )
                ++ended;
            else
                prProcessSchedule( ring[( i + 1 ) % chains].get() );
        } );
    }
    prProcessSchedule( ring[0].get() );
    prProcessSchedule( ring[chains / 2].get() );
    pr___Quiesce();
    EXPECT_GE( ended, 1 );
    for ( const Process &process : ring )
        prProcessHalt( process.get() );
    pr___Quiesce();
}

// Domains made and released around running and pending processes.
TEST( PrStress, DomainsComeAndGo )
{
    std::atomic<int> created{ 0 }, destroyed{ 0 };
    inThreads( [&]( int ) {
        for ( int round = 0; round < 60; ++round ) {
            const pb::Ref<struct prDomain> domain = pb::adopt( prDomainTryCreate( 2, 0, 0 ) );
            for ( int i = 0; i < 4; ++i ) {
                const Process some = process( [] { std::this_thread::yield(); }, &destroyed, i, domain.get() );
                ++created;
                prProcessSchedule( some.get() );
                if ( i % 2 )
                    prProcessHalt( some.get() );
            }
        }
    } );
    EXPECT_EQ( destroyed, created );
}

} // namespace
