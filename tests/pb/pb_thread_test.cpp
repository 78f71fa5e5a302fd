// Threads, and who enters a region when.
#include "pb/pb_thread.h"
#include "pb/pb_random.h"
#include "pb/pb_region.h"
#include "pb/pb_string.hpp"
#include "support/asleep.hpp"
#include "support/death_table.hpp"
#include "support/target.hpp"

#include <csignal>
#include <list>
#include <mutex>

namespace {

TEST( ThreadDeathTest, Preconditions )
{
    static const auto run = []( pbObj * ) {};
    support::expectDeaths( {
        { [] { pbThreadTrySpawnCstr( "x", -1, nullptr, nullptr, 0 ); }, "function" },
        { [] { pbThreadTrySpawnCstr( "x", -1, run, nullptr, 5 ); }, "priority >= 0 && priority <= 4" },
        { [] { pbThreadRelease( pbThreadTrySpawnCstr( "x", -1, run, nullptr, 0 ) ); pause(); },
          "a thread is joined before it is released" },
        { [] { pbRandomNonNegativeIntRange( 2, 1 ); }, "low <= high" },
    } );
}

TEST( Thread, RunsNamedWithSignalsBlockedAndReleasesItsArgument )
{
    char kernelName[16];
    sigset_t blocked;
    const auto target = pb::make<support::Target>( [&] {
        pthread_getname_np( pthread_self(), kernelName, sizeof kernelName );
        pthread_sigmask( SIG_SETMASK, nullptr, &blocked );
    } );
    const auto thread =
        pb::adopt( pbThreadTrySpawnCstr( "a name of 25 characters..", 25, support::Target::wake, target.get(), 4 ) );
    ASSERT_TRUE( thread );
    pbThreadJoin( thread.get() );
    EXPECT_STREQ( kernelName, "a name of 25 ch" );
    EXPECT_EQ( pb::utf8( pb::adopt( pbThreadName( thread.get() ) ) ), "a name of 25 characters.." );
    for ( const int signal : { SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGUSR1, SIGALRM } )
        EXPECT_TRUE( sigismember( &blocked, signal ) ) << signal;
    EXPECT_FALSE( pbObjIsShared( target.get() ) );
    pthread_sigmask( SIG_SETMASK, nullptr, &blocked );
    EXPECT_FALSE( sigismember( &blocked, SIGINT ) ) << "the creator's";
}

TEST( Region, LetsReadersAndWritersTakeTurns )
{
    const struct {
        char inside;          // r or w: holds the region while the others come
        const char *arrivals; // in this order
        const char *entries;
    } table[] = { { 'r', "wrwr", "wrrw" }, { 'w', "rwr", "rrw" }, { 'w', "wwrr", "rrww" }, { 'r', "www", "www" } };
    for ( const auto &[inside, arrivals, entries] : table ) {
        SCOPED_TRACE( std::string( 1, inside ) + " inside, then " + arrivals );
        const auto region = pb::adopt( pbRegionCreate() );
        const auto enter = [&]( char kind ) {
            ( kind == 'r' ? pbRegionEnterShared : pbRegionEnterExclusive )( region.get() );
        };
        std::mutex mutex;
        std::string log;
        enter( inside );
        if ( inside == 'r' )
            std::thread( [&] { enter( 'r' ), pbRegionLeave( region.get() ); } ).join(); // readers are in together
        std::list<support::SleepingThread> waiting;
        for ( const char *kind = arrivals; *kind; ++kind )
            waiting.emplace_back( [&, kind = *kind] {
                enter( kind );
                mutex.lock();
                log += kind;
                mutex.unlock();
                pbRegionLeave( region.get() );
            } );
        EXPECT_EQ( log, "" );
        pbRegionLeave( region.get() );
        waiting.clear();
        EXPECT_EQ( log, entries );
    }
}

TEST( Random, ReachesBothEndsAndNothingBeyond )
{
    for ( bool low = false, high = false; !low || !high; ) {
        const pbInt number = pbRandomNonNegativeIntRange( 7, 9 );
        ASSERT_TRUE( number >= 7 && number <= 9 );
        low |= number == 7;
        high |= number == 9;
    }
}

} // namespace
