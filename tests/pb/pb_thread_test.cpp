// Threads, and who enters a region when.
#include "pb/pb_thread.h"
#include "pb/pb_random.h"
#include "pb/pb_region.h"
#include "pb/pb_string.hpp"
#include "support/asleep.hpp"
#include "support/death_table.hpp"

#include <csignal>
#include <list>
#include <mutex>
#include <pthread.h>

PB_SORT_DECLARE( test___sort_FINDINGS )

namespace {

struct Findings final : pb::Object<Findings, test___sort_FINDINGS> {
    std::string kernelName;
    bool anySignalPasses = false;
};

} // namespace

constinit const struct pbSort test___sort_FINDINGS = pb::detail::makeSort<Findings>( "FINDINGS" );

namespace {

void look( pbObj *argument )
{
    auto &findings = *static_cast<Findings *>( argument );
    char name[16];
    pthread_getname_np( pthread_self(), name, sizeof name );
    findings.kernelName = name;
    sigset_t blocked;
    pthread_sigmask( SIG_SETMASK, nullptr, &blocked );
    for ( const int signal : { SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGUSR1, SIGALRM } )
        findings.anySignalPasses |= !sigismember( &blocked, signal );
}

TEST( ThreadDeathTest, Preconditions )
{
    support::expectDeaths(
        { { [] { pbThreadTrySpawnCstr( nullptr, -1, look, nullptr, 0 ); }, "name" },
          { [] { pbThreadTrySpawnCstr( "x", -1, nullptr, nullptr, 0 ); }, "function" },
          { [] { pbThreadTrySpawnCstr( "x", -1, look, nullptr, 5 ); }, "priority >= 0 && priority <= 4" },
          { [] { pbThreadRelease( pbThreadTrySpawnCstr( "x", -1, []( pbObj * ) {}, nullptr, 0 ) ); pause(); },
            "a thread is joined before it is released" },
          { [] { pbRandomNonNegativeIntRange( 2, 1 ); }, "low <= high" } } );
}

TEST( Thread, RunsNamedWithSignalsBlockedAndReleasesItsArgument )
{
    for ( const pbInt priority : { 0, 4 } ) {
        const auto findings = pb::make<Findings>();
        const auto thread = pb::adopt( pbThreadTrySpawnCstr( "a name of 25 characters..", 25, look, findings.get(), priority ) );
        ASSERT_TRUE( thread );
        pbThreadJoin( thread.get() );
        EXPECT_EQ( findings->kernelName, "a name of 25 ch" );
        EXPECT_EQ( pb::utf8( pb::adopt( pbThreadName( thread.get() ) ) ), "a name of 25 characters.." );
        EXPECT_FALSE( findings->anySignalPasses );
        EXPECT_FALSE( pbObjIsShared( findings.get() ) );
    }
    sigset_t blocked;
    pthread_sigmask( SIG_SETMASK, nullptr, &blocked );
    EXPECT_FALSE( sigismember( &blocked, SIGINT ) );
}

TEST( Region, LetsReadersAndWritersTakeTurns )
{
    const struct {
        char inside;          // r or w: holds the region while the others come
        const char *arrivals; // in this order
        const char *entries;
    } table[] = { { 'r', "wr", "wr" },   { 'r', "wrwr", "wrrw" }, { 'w', "r", "r" },       { 'w', "wr", "rw" },
                  { 'w', "ww", "ww" },   { 'w', "rwr", "rrw" },   { 'w', "wwrr", "rrww" }, { 'r', "www", "www" } };
    for ( const auto &[inside, arrivals, entries] : table ) {
        SCOPED_TRACE( std::string( 1, inside ) + " inside, then " + arrivals );
        const auto region = pb::adopt( pbRegionCreate() );
        const auto enter = [&]( char kind ) { ( kind == 'r' ? pbRegionEnterShared : pbRegionEnterExclusive )( region.get() ); };
        std::mutex mutex;
        std::string log;
        enter( inside );
        {
            std::list<support::SleepingThread> waiting;
            for ( const char *kind = arrivals; *kind; ++kind )
                waiting.emplace_back( [&, kind = *kind] {
                    enter( kind );
                    {
                        const std::lock_guard guard( mutex );
                        log += kind;
                    }
                    pbRegionLeave( region.get() );
                } );
            EXPECT_EQ( log, "" );
            pbRegionLeave( region.get() );
        }
        EXPECT_EQ( log, entries );
    }
}

TEST( Region, LetsReadersInTogether )
{
    const auto region = pb::adopt( pbRegionCreate() );
    pbRegionEnterShared( region.get() );
    std::thread( [&] { pbRegionEnterShared( region.get() ), pbRegionLeave( region.get() ); } ).join();
    pbRegionLeave( region.get() );
    pbRegionEnterExclusive( region.get() );
    pbRegionLeave( region.get() );
}

TEST( Random, ReachesBothEndsAndNothingBeyond )
{
    bool low = false, high = false;
    while ( !low || !high ) {
        const pbInt number = pbRandomNonNegativeIntRange( 7, 9 );
        ASSERT_TRUE( number >= 7 && number <= 9 );
        low |= number == 7;
        high |= number == 9;
    }
    EXPECT_EQ( pbRandomNonNegativeIntRange( PB_INT_MAX, PB_INT_MAX ), PB_INT_MAX );
}

} // namespace
