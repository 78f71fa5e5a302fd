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
    struct Report {
        pbInt fd, conditions;
        bool operator==( const Report & ) const = default;
    };

    Observer observer = pb::adopt( unixFdObserverTryCreate() );
    Signal abort = pb::adopt( pbSignalCreate() );

    bool watch( const pb::Fd &fd, pbInt conditions )
    {
        return unixFdObserverTrySetConditions( observer.get(), fd.get(), conditions );
    }
    std::optional<Report> wait()
    {
        Report report{ -1, -1 };
        if ( unixFdObserverWait( observer.get(), abort.get(), &report.fd, &report.conditions ) )
            return report;
        EXPECT_EQ( report, ( Report{ -1, -1 } ) );
        return std::nullopt;
    }
    std::optional<Report> waitAndUnblock()
    {
        const std::optional<Report> report = wait();
        if ( report )
            unixFdObserverUnblock( observer.get() );
        return report;
    }
    // True when nothing is reported: the waiting thread falls asleep and only the signal wakes it.
    bool staysSilent()
    {
        std::optional<Report> report;
        {
            SleepingThread waiting( [&] { report = waitAndUnblock(); } );
            pbSignalAssert( abort.get() );
        }
        abort = pb::adopt( pbSignalCreate() );
        return !report;
    }
};

// The conditions that are watched, against what happened to the descriptor.
TEST_F( UnixFdObserver, Conditions )
{
    const auto nothing = []( Pair & ) {};
    const auto data = []( Pair &pair ) { pair.peerWrites(); };
    const auto peerGone = []( Pair &pair ) { pair.peer.reset(); };
    const auto halfClosed = []( Pair &pair ) { shutdown( pair.peer.get(), SHUT_WR ); };
    const auto closedBothWays = []( Pair &pair ) {
        shutdown( pair.own.get(), SHUT_WR );
        pair.peer.reset();
    };
    const auto refused = []( Pair &pair ) {
        pair.peer.reset();
        PB_ASSERT( write( pair.own.get(), "x", 1 ) == 1 );
    };
    struct {
        const char *what;
        Pair ( *make )();
        void ( *happens )( Pair & );
        pbInt watched, reported;
    } const rows[] = {
        { "idle", Pair::sockets, nothing, readable | error, 0 },
        { "idle", Pair::sockets, nothing, readable | writable, writable },
        { "data", Pair::sockets, data, readable, readable },
        { "data", Pair::sockets, data, readable | writable | error, readable | writable },
        { "data", Pair::sockets, data, writable, writable },
        { "data", Pair::sockets, data, error, 0 },
        { "half-closed", Pair::sockets, halfClosed, readable | error, readable },
        { "half-closed", Pair::sockets, halfClosed, error, 0 },
        { "closed both ways", Pair::sockets, closedBothWays, readable | error, readable },
        { "closed both ways", Pair::sockets, closedBothWays, writable | error, writable },
        { "closed both ways", Pair::sockets, closedBothWays, error, 0 },
        { "writer gone", Pair::pipeOwningRead, peerGone, readable | error, readable },
        { "writer gone", Pair::pipeOwningRead, peerGone, error, 0 },
        { "reader gone", Pair::pipeOwningWrite, peerGone, writable | error, writable | error },
        { "reader gone", Pair::pipeOwningWrite, peerGone, error, error },
        { "reader gone", Pair::pipeOwningWrite, peerGone, readable, 0 },
        { "refused", Pair::udp, refused, readable | error, error },
        { "refused", Pair::udp, refused, readable, 0 },
    };
    for ( const auto &row : rows ) {
        for ( const bool before : { false, true } ) {
            SCOPED_TRACE( testing::Message() << row.what << " watched " << row.watched << " before " << before );
            Pair pair = row.make();
            if ( before )
                row.happens( pair );
            ASSERT_TRUE( watch( pair.own, row.watched ) );
            if ( !before )
                row.happens( pair );
            if ( row.reported ) {
                EXPECT_EQ( waitAndUnblock(), ( Report{ pair.own.get(), row.reported } ) );
                EXPECT_EQ( waitAndUnblock(), ( Report{ pair.own.get(), row.reported } ) ); // level-triggered
            } else
                EXPECT_TRUE( staysSilent() );
            ASSERT_TRUE( watch( pair.own, 0 ) );
            EXPECT_TRUE( staysSilent() );
        }
    }
}

TEST_F( UnixFdObserver, DataBehindAnUnwatchedErrorIsReported )
{
    Pair pair = Pair::udp();
    const int peerNumber = pair.peer.get();
    sockaddr_in peerAddress{}, ownAddress{};
    socklen_t length = sizeof peerAddress;
    getsockname( peerNumber, reinterpret_cast<sockaddr *>( &peerAddress ), &length );
    getsockname( pair.own.get(), reinterpret_cast<sockaddr *>( &ownAddress ), &length );
    ASSERT_TRUE( watch( pair.own, readable ) );
    pair.peer.reset();
    ASSERT_EQ( write( pair.own.get(), "x", 1 ), 1 ); // refused: an error is pending
    EXPECT_TRUE( staysSilent() );

    pair.peer = pb::Fd( socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
    ASSERT_EQ( bind( pair.peer.get(), reinterpret_cast<sockaddr *>( &peerAddress ), length ), 0 );
    ASSERT_EQ( connect( pair.peer.get(), reinterpret_cast<sockaddr *>( &ownAddress ), length ), 0 );
    pair.peerWrites();
    for ( int i = 0; i < 2; ++i )
        EXPECT_EQ( waitAndUnblock(), ( Report{ pair.own.get(), readable } ) );
    EXPECT_EQ( pair.read(), -1 ); // the error
    EXPECT_EQ( pair.read(), 'x' );
    EXPECT_TRUE( staysSilent() );
}

TEST_F( UnixFdObserver, TheSignalEndsTheWait )
{
    Pair pair = Pair::sockets();
    ASSERT_TRUE( watch( pair.own, readable | writable ) );
    pbSignalAssert( abort.get() );
    EXPECT_FALSE( wait() ); // though a descriptor is ready
    EXPECT_FALSE( wait() );
    abort = pb::adopt( pbSignalCreate() ); // the first one's assertion leaves nothing behind
    EXPECT_EQ( waitAndUnblock(), ( Report{ pair.own.get(), writable } ) );
    ASSERT_TRUE( watch( pair.own, 0 ) );
    EXPECT_TRUE( staysSilent() );
    EXPECT_TRUE( staysSilent() );
    // The signal outlives the observer that waited with it.
    pbSignalAsserted( abort.get() );
    ASSERT_TRUE( watch( pair.own, writable ) );
    EXPECT_TRUE( waitAndUnblock() );
    observer.reset();
    pbSignalAssert( abort.get() );
}

TEST_F( UnixFdObserver, SettingConditionsWaitsForTheOutstandingReport )
{
    Pair reported = Pair::sockets(), other = Pair::sockets();
    for ( const auto &[pair, conditions] : { std::pair{ &reported, pbInt{ 0 } }, { &other, readable } } ) {
        ASSERT_TRUE( watch( reported.own, writable ) );
        ASSERT_TRUE( wait() );
        std::atomic<bool> set{ false };
        {
            SleepingThread setter( [&, &pair = pair, conditions = conditions] {
                EXPECT_TRUE( watch( pair->own, conditions ) );
                set = true;
            } );
            EXPECT_FALSE( set );
            unixFdObserverUnblock( observer.get() );
        }
        EXPECT_TRUE( set );
    }
    // The waiting thread itself may set conditions between its reports.
    EXPECT_TRUE( watch( reported.own, 0 ) );
}

// Both descriptors become ready before one wait fetches both; what happens to the second before it is handed out counts.
TEST_F( UnixFdObserver, AnEventThatWasFetchedIsJudgedWhenItIsHandedOut )
{
    struct {
        const char *what;
        std::function<void( pb::Fd & )> happens;
    } const rows[] = {
        { "deregistered", [&]( pb::Fd &second ) { EXPECT_TRUE( watch( second, 0 ) ); } },
        { "readable no longer watched", [&]( pb::Fd &second ) { EXPECT_TRUE( watch( second, error ) ); } },
        { "deregistered, closed, and the number registered by a new owner",
          [&]( pb::Fd &second ) {
              EXPECT_TRUE( watch( second, 0 ) );
              EXPECT_EQ( dup3( pb::Fd( eventfd( 0, EFD_CLOEXEC ) ).get(), second.get(), O_CLOEXEC ), second.get() );
              EXPECT_TRUE( watch( second, readable ) );
          } },
        { "closed without a word, and the number registered by a new owner",
          [&]( pb::Fd &second ) {
              EXPECT_EQ( dup3( pb::Fd( eventfd( 0, EFD_CLOEXEC ) ).get(), second.get(), O_CLOEXEC ), second.get() );
              EXPECT_TRUE( watch( second, readable ) );
          } },
        { "deregistered after it was closed",
          [&]( pb::Fd &second ) {
              const int number = second.get();
              second.reset();
              EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), number, 0 ) );
          } },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.what );
        Pair pairs[2] = { Pair::sockets(), Pair::sockets() };
        for ( Pair &pair : pairs ) {
            pair.peerWrites();
            ASSERT_TRUE( watch( pair.own, readable ) );
        }
        const std::optional<Report> first = waitAndUnblock();
        ASSERT_TRUE( first );
        const bool firstIs1 = first->fd == pairs[1].own.get();
        ASSERT_TRUE( watch( pairs[firstIs1].own, 0 ) );
        pb::Fd &second = pairs[!firstIs1].own;
        row.happens( second );
        EXPECT_TRUE( staysSilent() );
        if ( second ) {
            EXPECT_TRUE( watch( second, 0 ) );
        }
    }
}

TEST_F( UnixFdObserver, AllThatIsReadyIsReportedInTurn )
{
    constexpr int count = 200; // more than one batch
    std::vector<Pair> pairs;
    std::set<pbInt> expected, reported;
    for ( int i = 0; i < count; ++i ) {
        pairs.push_back( Pair::sockets() );
        ASSERT_TRUE( watch( pairs[i].own, writable ) );
        expected.insert( pairs[i].own.get() );
    }
    for ( int i = 0; i < 2 * count; ++i )
        reported.insert( waitAndUnblock()->fd );
    EXPECT_EQ( reported, expected );
}

TEST_F( UnixFdObserver, WhatTheSystemRefuses )
{
    Pair pair = Pair::sockets();
    const int closed = Pair::sockets().own.get();
    EXPECT_FALSE( unixFdObserverTrySetConditions( observer.get(), closed, readable ) );
    EXPECT_TRUE( unixFdObserverTrySetConditions( observer.get(), closed, 0 ) );
    EXPECT_FALSE( unixFdObserverTrySetConditions( observer.get(), INT32_MAX, readable ) );
    EXPECT_FALSE( watch( pb::Fd( open( "/proc/self/exe", O_RDONLY | O_CLOEXEC ) ), readable ) ); // a plain file
    EXPECT_FALSE( unixFdObserverError( observer.get() ) );

    // No descriptor left at any step of the creation.
    rlimit before;
    getrlimit( RLIMIT_NOFILE, &before );
    const int lowest = pb::Fd( dup( pair.own.get() ) ).get();
    for ( int available = 0; available <= 2; ++available ) {
        SCOPED_TRACE( available );
        const rlimit limit{ static_cast<rlim_t>( lowest + available ), before.rlim_max };
        setrlimit( RLIMIT_NOFILE, &limit );
        EXPECT_EQ( bool( pb::adopt( unixFdObserverTryCreate() ) ), available == 2 );
        EXPECT_EQ( pb::Fd( dup( pair.own.get() ) ).get(), available ? lowest : -1 ); // nothing is left behind
        setrlimit( RLIMIT_NOFILE, &before );
    }
}

TEST( UnixFdObserverDeathTest, Preconditions )
{
    const Observer observer = pb::adopt( unixFdObserverTryCreate() );
    const Signal signal = pb::adopt( pbSignalCreate() );
    const Pair pair = Pair::sockets();
    pbInt fd, conditions;
    const auto report = [&] {
        unixFdObserverTrySetConditions( observer.get(), pair.own.get(), writable );
        unixFdObserverWait( observer.get(), signal.get(), &fd, &conditions );
    };
    support::expectDeaths( {
        { [] { unixFdObserverTrySetConditions( nullptr, 0, 0 ); }, "observer" },
        { [&] { unixFdObserverTrySetConditions( observer.get(), -1, 0 ); }, "fd >= 0 && fd <= INT32_MAX" },
        { [&] { unixFdObserverTrySetConditions( observer.get(), 0, 8 ); }, "!( conditions & ~allConditions )" },
        { [&] { unixFdObserverWait( observer.get(), nullptr, &fd, &conditions ); }, "abortSignal" },
        { [&] { unixFdObserverUnblock( observer.get() ); }, "reporting_" },
        { [&] { report(), unixFdObserverTrySetConditions( observer.get(), pair.own.get(), 0 ); },
          "no report of the calling thread is outstanding" },
    } );
}

} // namespace
