// The descriptor observer, one property at a time.
#include "support/asleep.hpp"
#include "support/death_table.hpp"
#include "unix/sockets.hpp"

#include <optional>
#include <set>
#include <sys/eventfd.h>
#include <sys/resource.h>

using support::SleepingThread;

namespace {

struct UnixFdObserver : testing::Test {
    using Report = std::pair<pbInt, pbInt>; // descriptor, conditions

    Observer observer = pb::adopt( unixFdObserverTryCreate() );
    Signal abort = pb::adopt( pbSignalCreate() );

    bool watch( const pb::Fd &fd, pbInt conditions )
    {
        return unixFdObserverTrySetConditions( observer.get(), fd.get(), conditions );
    }
    std::optional<Report> wait( bool unblock = true )
    {
        Report report{ -1, -1 };
        if ( !unixFdObserverWait( observer.get(), abort.get(), &report.first, &report.second ) )
            return std::nullopt;
        if ( unblock )
            unixFdObserverUnblock( observer.get() );
        return report;
    }
    // True when nothing is reported: the waiting thread falls asleep, and the signal alone wakes it.
    bool staysSilent()
    {
        std::optional<Report> report;
        {
            SleepingThread waiting( [&] { report = wait(); } );
            pbSignalAssert( abort.get() );
        }
        abort = pb::adopt( pbSignalCreate() );
        return !report;
    }
};

// What is watched, against what happened to the descriptor.
TEST_F( UnixFdObserver, Conditions )
{
    using Happens = void ( * )( Pair & );
    const Happens nothing = []( Pair & ) {};
    const Happens data = []( Pair &pair ) { pair.peerWrites(); };
    const Happens peerGone = []( Pair &pair ) { pair.peer.reset(); };
    const Happens halfClosed = []( Pair &pair ) { shutdown( pair.peer.get(), SHUT_WR ); };
    const Happens bothClosed = []( Pair &pair ) { shutdown( pair.own.get(), SHUT_WR ), pair.peer.reset(); };
    struct {
        Pair::Kind kind;
        Happens happens;
        pbInt watched, reported;
    } const rows[] = {
        { Pair::sockets, nothing, readable | error, 0 },
        { Pair::sockets, nothing, readable | writable, writable },
        { Pair::sockets, data, readable | writable | error, readable | writable },
        { Pair::sockets, data, writable, writable },
        { Pair::sockets, halfClosed, readable | error, readable },
        { Pair::sockets, halfClosed, error, 0 },
        { Pair::sockets, bothClosed, readable | error, readable },
        { Pair::sockets, bothClosed, error, 0 }, // a hang-up that nobody watches
        { Pair::readingPipe, peerGone, readable | error, readable },
        { Pair::writingPipe, peerGone, writable | error, writable | error },
        { Pair::writingPipe, peerGone, readable, 0 }, // an error that nobody watches
    };
    for ( const auto &row : rows ) {
        for ( const bool before : { false, true } ) {
            SCOPED_TRACE( testing::Message() << "row " << &row - rows << " before " << before );
            Pair pair( row.kind );
            if ( before )
                row.happens( pair );
            ASSERT_TRUE( watch( pair.own, row.watched ) );
            if ( !before )
                row.happens( pair );
            for ( int i = 0; i < 2 && row.reported; ++i ) // level-triggered
                EXPECT_EQ( wait(), Report( pair.own.get(), row.reported ) );
            EXPECT_TRUE( row.reported || staysSilent() );
            ASSERT_TRUE( watch( pair.own, 0 ) );
            EXPECT_TRUE( staysSilent() );
        }
    }
}

TEST_F( UnixFdObserver, TheSignalEndsTheWait )
{
    const Pair pair;
    ASSERT_TRUE( watch( pair.own, writable ) );
    pbSignalAssert( abort.get() );
    EXPECT_FALSE( wait() ); // though a descriptor is ready
    EXPECT_FALSE( wait() );
    abort = pb::adopt( pbSignalCreate() );
    EXPECT_TRUE( wait() );
    observer.reset(); // the signal may outlive the observer
    pbSignalAssert( abort.get() );
}

TEST_F( UnixFdObserver, SettingConditionsWaitsForTheOutstandingReport )
{
    const Pair reported, other;
    for ( const Pair *pair : { &other, &reported } ) {
        ASSERT_TRUE( watch( reported.own, writable ) );
        ASSERT_TRUE( wait( false ) );
        std::atomic<bool> set{ false };
        {
            SleepingThread setter( [&] { set = watch( pair->own, 0 ); } );
            EXPECT_FALSE( set );
            unixFdObserverUnblock( observer.get() );
        }
        EXPECT_TRUE( set );
    }
}

// One wait fetches two ready descriptors; what happens to the second before it is handed out counts.
TEST_F( UnixFdObserver, AnEventThatWasFetchedIsJudgedWhenItIsHandedOut )
{
    const auto reuse = []( pb::Fd &fd ) { return dup3( pb::Fd( eventfd( 0, 0 ) ).get(), fd.get(), O_CLOEXEC ) >= 0; };
    const std::function<bool( pb::Fd & )> rows[] = {
        [&]( pb::Fd &second ) { return watch( second, 0 ); },
        [&]( pb::Fd &second ) { return watch( second, error ); },
        [&]( pb::Fd &second ) { return watch( second, 0 ) && reuse( second ) && watch( second, readable ); },
        [&]( pb::Fd &second ) { return reuse( second ) && watch( second, readable ); },
    };
    for ( const auto &happens : rows ) {
        SCOPED_TRACE( &happens - rows );
        Pair pairs[2];
        for ( Pair &pair : pairs ) {
            pair.peerWrites();
            ASSERT_TRUE( watch( pair.own, readable ) );
        }
        const bool firstIs1 = wait()->first == pairs[1].own.get();
        ASSERT_TRUE( watch( pairs[firstIs1].own, 0 ) );
        EXPECT_TRUE( happens( pairs[!firstIs1].own ) );
        EXPECT_TRUE( staysSilent() );
        EXPECT_TRUE( watch( pairs[!firstIs1].own, 0 ) );
    }
}

TEST_F( UnixFdObserver, AllThatIsReadyIsReportedInTurn )
{
    const std::vector<Pair> pairs( 200 ); // more than one batch
    std::set<pbInt> reported;
    for ( const Pair &pair : pairs )
        ASSERT_TRUE( watch( pair.own, writable ) );
    for ( size_t i = 0; i < 2 * pairs.size(); ++i )
        reported.insert( wait()->first );
    EXPECT_EQ( reported.size(), pairs.size() );
}

TEST_F( UnixFdObserver, WhatTheSystemRefuses )
{
    const Pair pair;
    const int closed = Pair().own.get();
    EXPECT_FALSE( unixFdObserverTrySetConditions( observer.get(), closed, readable ) );
    EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), closed, 0 ) );
    EXPECT_FALSE( watch( pb::Fd( open( "/proc/self/exe", O_RDONLY | O_CLOEXEC ) ), readable ) ); // a plain file
    // Closed while it was watched, and its number is a plain file's by now: the others are watched as before.
    const Pair closedEarly;
    ASSERT_TRUE( watch( closedEarly.own, readable ) && watch( pair.own, readable ) );
    const pb::Fd file( open( "/proc/self/exe", O_RDONLY | O_CLOEXEC ) );
    ASSERT_EQ( dup3( file.get(), closedEarly.own.get(), O_CLOEXEC ), closedEarly.own.get() );
    EXPECT_TRUE( watch( closedEarly.own, 0 ) );
    pair.peerWrites();
    EXPECT_EQ( wait(), Report( pair.own.get(), readable ) );
    EXPECT_FALSE( unixFdObserverError( observer.get() ) );

    // No descriptor left at any step of the creation.
    rlimit before;
    getrlimit( RLIMIT_NOFILE, &before );
    const int lowest = pb::Fd( dup( 0 ) ).get();
    for ( int available = 0; available <= 2; ++available ) {
        const rlimit limit{ static_cast<rlim_t>( lowest + available ), before.rlim_max };
        setrlimit( RLIMIT_NOFILE, &limit );
        EXPECT_EQ( bool( pb::adopt( unixFdObserverTryCreate() ) ), available == 2 );
        setrlimit( RLIMIT_NOFILE, &before );
        EXPECT_EQ( pb::Fd( dup( 0 ) ).get(), lowest ); // nothing is left behind
    }
}

TEST_F( UnixFdObserver, PreconditionsDeathTest )
{
    const Pair pair;
    pbInt fd, conditions;
    support::expectDeaths( {
        { [] { unixFdObserverTrySetConditions( nullptr, 0, 0 ); }, "observer" },
        { [&] { unixFdObserverTrySetConditions( observer.get(), -1, 0 ); }, "fd >= 0 && fd <= INT32_MAX" },
        { [&] { unixFdObserverTrySetConditions( observer.get(), 0, 8 ); }, "!( conditions & ~allConditions )" },
        { [&] { unixFdObserverWait( observer.get(), nullptr, &fd, &conditions ); }, "abortSignal" },
        { [&] { unixFdObserverUnblock( observer.get() ); }, "reporting_" },
        { [&] { watch( pair.own, writable ), wait( false ), watch( pair.own, 0 ); },
          "no report of the calling thread is outstanding" },
    } );
}

} // namespace
