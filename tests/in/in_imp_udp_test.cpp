// The UDP backend on loopback: ports, pairs, groups, datagrams, errors, and what a caller must not do.
#include "in/in_imp_udp_support.hpp"
#include "pb/pb_signalable.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <vector>

using namespace support;

namespace {

constexpr pbInt any = IN_UDP_PORT_INVALID;

class ImpUdp : public testing::Test {
protected:
    UdpBackend backend_;
};

TEST_F( ImpUdp, CarriesDatagramsOfBothVersions )
{
    for ( const char *ip : { "127.1.0.1", "::1" } ) {
        SCOPED_TRACE( ip );
        const UdpChannel a( ip, any ), b( ip, any );
        const std::string large( 65507, 'x' ), texts[] = { "first", "", "after the empty one", large };
        for ( const auto &text : texts ) {
            a.send( b.local().get(), text );
            const auto packet = b.await();
            EXPECT_EQ( payload( packet ), text );
            const auto sender = pb::adopt( inUdpPacketRemoteAddress( packet.get() ) );
            EXPECT_TRUE( inUdpAddressEquals( sender.get(), a.local().get() ) );
        }
        EXPECT_FALSE( b.receive() );
        // Nobody there, another version: lost, and the channel lives on.
        for ( const char *peer : { ip, ip[0] == ':' ? "127.0.0.1" : "::1" } )
            a.send( pb::adopt( inUdpAddressCreate( address( peer ).get(), 9 ) ).get(), "lost" );
        EXPECT_FALSE( in___ImpUdpChannelError( a.get() ) );
    }
}

// A packet that waits keeps its sender, whatever comes after it.
TEST_F( ImpUdp, KeepsTheSenderOfEachPacket )
{
    const UdpChannel to( "127.1.0.2", any ), a( "127.1.0.2", any ), b( "127.1.0.2", any );
    for ( const auto *from : { &a, &b, &b, &a } )
        from->send( to.local().get(), std::to_string( from->port() ) );
    for ( const auto *from : { &a, &b, &b, &a } ) {
        const auto packet = to.await();
        EXPECT_EQ( payload( packet ), std::to_string( from->port() ) );
        EXPECT_EQ( inUdpAddressPort( pb::adopt( inUdpPacketRemoteAddress( packet.get() ) ).get() ), from->port() );
    }
}

TEST_F( ImpUdp, TakesPortsFromItsRange )
{
    const PlainSocket foreign( "127.1.0.3", 20001 );
    struct Row {
        pbInt port, first, count;
        std::vector<pbInt> ports; // of the channels that can be had, then none
    };
    const Row rows[] = {
        { any, 20000, 0, {} },
        { any, 20000, 1, { 20000 } },
        { any, 20000, 3, { 20000, 20002 } },  // without the one that somebody else has
        { any, 65534, 100, { 65534, 65535 } }, // ends at the last port
        { 20007, 20000, 1, { 20007 } },       // a given port need not be in the range
        { 20001, 0, -1, {} },
    };
    for ( const Row &row : rows ) {
        SCOPED_TRACE( testing::Message() << row.port << " " << row.first << " " << row.count );
        std::vector<UdpChannel> held;
        std::vector<pbInt> ports;
        while ( held.emplace_back( "127.1.0.3", row.port, row.first, row.count ) )
            ports.push_back( held.back().port() );
        EXPECT_THAT( ports, testing::UnorderedElementsAreArray( row.ports ) );
    }
    // What a channel had is free again after it.
    EXPECT_TRUE( UdpChannel( "127.1.0.3", any, 20000, 1 ) );
}

TEST_F( ImpUdp, FindsPairs )
{
    std::vector<PlainSocket> oddPorts;
    for ( pbInt port = 22001; port < 22300; port += 2 )
        oddPorts.emplace_back( "127.1.0.4", port );
    struct Row {
        pbInt first, count;
        std::vector<pbInt> rtp; // one of these, or no pair
    };
    const Row rows[] = {
        { 0, -1, {} },
        { 21000, 2, { 21000 } },
        { 21001, 2, {} },
        { 21001, 3, { 21002 } },
        { 21000, 1, {} },
        { 65534, 2, { 65534 } },
        { 21000, 5, { 21000, 21002 } },
        { 22000, 60, {} },  // no odd port: until the range is used up
        { 22000, 300, {} }, // or until the search is long enough
    };
    const int before = descriptorCount();
    for ( const Row &row : rows )
        for ( int repetition = 0; repetition < 8; ++repetition ) {
            SCOPED_TRACE( testing::Message() << row.first << " " << row.count );
            const auto range = row.count < 0 ? nullptr : pb::adopt( inUdpPortRangeCreate( row.first, row.count ) );
            pbInt rtp = 0, rtcp = 0;
            in___ImpUdpChannelTryCreateRtp( &rtp, &rtcp, address( "127.1.0.4" ).get(), range.get(), 0, nullptr );
            const UdpChannel a( rtp ), b( rtcp );
            ASSERT_EQ( !!a, !row.rtp.empty() || row.count < 0 );
            ASSERT_EQ( !!a, !!b );
            EXPECT_EQ( descriptorCount(), before + ( a ? 2 : 0 ) );
            if ( !a )
                continue;
            EXPECT_EQ( a.port() % 2, 0 );
            EXPECT_EQ( b.port(), a.port() + 1 );
            EXPECT_TRUE( row.rtp.empty() || std::ranges::count( row.rtp, a.port() ) ) << a.port();
        }
}

TEST_F( ImpUdp, ReusesIdentifiersFromTheLastOneOn )
{
    UdpChannel a( "127.1.0.5", any ), b( "127.1.0.5", any );
    const pbInt last = b.get();
    EXPECT_EQ( last, a.get() + 1 );
    b = UdpChannel();
    b = UdpChannel( "127.1.0.5", any );
    EXPECT_EQ( b.get(), last );
    a = UdpChannel();
    a = UdpChannel( "127.1.0.5", any );
    EXPECT_EQ( a.get(), last + 1 );
}

TEST_F( ImpUdp, JoinsGroups )
{
    const int loopback = 1; // the index of "lo" in every namespace
    for ( const char *group : { "239.83.1.1", "ff15::83:1" } ) {
        SCOPED_TRACE( group );
        const auto create = [&]( pbInt port, const char *interface ) {
            return UdpChannel( in___ImpUdpChannelTryCreate( address( group ).get(), port, nullptr, 0, nullptr,
                                                            pb::string( interface ).get() ) );
        };
        EXPECT_FALSE( create( any, "lo" ) ); // no port to listen on
        // A group is shared, unlike the address of one host. An interface that nobody has does no harm.
        const auto a = create( 23456, "lo" ), b = create( 23456, "lo" ), c = create( 23456, "nobody0" );
        ASSERT_TRUE( a && b );
        EXPECT_TRUE( in___ImpUdpChannelIsMulticast( a.get() ) );
        EXPECT_EQ( pb::utf8( pb::adopt( in___ImpUdpChannelInterface( a.get() ) ) ), "lo" );
        if ( group[0] == 'f' )
            continue; // the loopback interface has no route for IPv6 groups
        const PlainSocket sender( "127.0.0.1" );
        const ip_mreqn through{ {}, {}, loopback };
        ASSERT_EQ( setsockopt( sender.fd(), IPPROTO_IP, IP_MULTICAST_IF, &through, sizeof through ), 0 );
        ASSERT_TRUE( sender.send( a.local().get(), "to all" ) );
        EXPECT_EQ( payload( a.await() ), "to all" );
        EXPECT_EQ( payload( b.await() ), "to all" );
    }
}

// The descriptor of a channel, found from outside.
int descriptorOf( const UdpChannel &channel )
{
    for ( int fd = 3;; ++fd ) {
        sockaddr_in bound{};
        socklen_t length = sizeof bound;
        if ( getsockname( fd, reinterpret_cast<sockaddr *>( &bound ), &length ) == 0 && bound.sin_family == AF_INET
             && ntohs( bound.sin_port ) == channel.port() )
            return fd;
    }
}

TEST_F( ImpUdp, FailsForGoodWhenTheSocketReportsAnError )
{
    UdpChannel channel( "127.1.0.6", any ), peer( "127.1.0.6", any );
    const int on = 1; // refused datagrams are reported
    ASSERT_EQ( setsockopt( descriptorOf( channel ), IPPROTO_IP, IP_RECVERR, &on, sizeof on ), 0 );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    in___ImpUdpChannelErrorAddSignalable( channel.get(), signalable.get() );
    channel.send( pb::adopt( inUdpAddressCreate( address( "127.1.0.6" ).get(), 9 ) ).get(), "nobody" );
    pbBarrierPass( barrier.get() );
    EXPECT_TRUE( in___ImpUdpChannelError( channel.get() ) );
    channel.send( peer.local().get(), "too late" );
    peer.send( channel.local().get(), "unheard" );
    peer.send( peer.local().get(), "behind it" );
    EXPECT_EQ( payload( peer.await() ), "behind it" );
    EXPECT_FALSE( channel.receive() );
}

// Each creation either has all the descriptors that it needs or leaves none behind.
TEST_F( ImpUdp, NeedsADescriptorForEachChannel )
{
    const auto unicast = address( "127.1.0.7" ), group = address( "239.83.1.2" );
    const auto lo = pb::string( "lo" );
    const int before = descriptorCount();
    const int next = dup( 0 );
    close( next );
    const DescriptorLimit limit;
    for ( const int spare : { 0, 1, 2 } ) {
        SCOPED_TRACE( spare );
        limit.set( static_cast<rlim_t>( next + spare ) );
        EXPECT_EQ( !!UdpChannel( "127.1.0.7", any ), spare >= 1 );
        EXPECT_EQ( !!UdpChannel( "127.1.0.7", any, 24000, 500 ), spare >= 1 );
        EXPECT_EQ( !!UdpChannel( in___ImpUdpChannelTryCreate( group.get(), 23457, nullptr, 0, nullptr, lo.get() ) ),
                   spare >= 1 );
        pbInt rtp, rtcp;
        in___ImpUdpChannelTryCreateRtp( &rtp, &rtcp, unicast.get(), nullptr, 0, nullptr );
        const UdpChannel a( rtp ), b( rtcp );
        EXPECT_EQ( a && b, spare >= 2 );
        EXPECT_EQ( !!a, !!b );
    }
    EXPECT_EQ( descriptorCount(), before );
    EXPECT_TRUE( UdpChannel( "127.1.0.7", any ) );
}

using ImpUdpDeathTest = ImpUdp;

TEST_F( ImpUdpDeathTest, Preconditions )
{
    const UdpChannel channel( "127.1.0.8", any );
    const auto ip = address( "127.1.0.8" );
    const auto remote = channel.local();
    struct Row {
        std::function<void()> call;
        const char *text;
    };
    const Row rows[] = {
        { [] { in___ImpUdpChannelFlags( -1 ); }, "IN___IMP_UDP_CHANNEL_OK( chan )" },
        { [] { in___ImpUdpChannelFlags( 16384 ); }, "chan < PB_SIZEOF_ARRAY( channelArray )" },
        { [&] { in___ImpUdpChannelReceive( channel.get() + 1 ); }, "CHAN" },
        { [&] { in___ImpUdpChannelTryCreate( ip.get(), 0, nullptr, 0, nullptr, nullptr ); },
          "optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort )" },
        { [&] { in___ImpUdpChannelTryCreate( ip.get(), 65536, nullptr, 0, nullptr, nullptr ); },
          "optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort )" },
        { [&] { in___ImpUdpChannelSendBytes( channel.get(), nullptr, "", 0 ); }, "remoteAddress" },
        { [&] { in___ImpUdpChannelSendBytes( channel.get(), remote.get(), nullptr, 1 ); }, "bytes || !byteCount" },
        { [&] { in___ImpUdpChannelSendBytes( channel.get(), remote.get(), "", -1 ); }, "byteCount >= 0" },
        { [] { in___ImpUdpChannelShutdown(); }, "channelArray[i] == NULL" },
    };
    GTEST_FLAG_SET( death_test_style, "threadsafe" ); // a mere fork would have no I/O thread
    for ( const Row &row : rows )
        EXPECT_DEATH( row.call(), testing::HasSubstr( std::string( ": " ) + row.text + "\n" ) );
}

} // namespace
