// Multicast receivers on the loopback interface: what arrives, what ends a wait, what is traced.
#include "in/udp/in_udp_multicast_receiver.h"

#include "in/in_imp_udp_support.hpp"
#include "pb/pb_signal.h"
#include "support/trace_catcher.hpp"

#include <gmock/gmock.h>
#include <thread>

using namespace support;

namespace {

class UdpMulticastReceiver : public testing::Test {
protected:
    pb::Ref<struct inUdpMulticastReceiver> tryCreate( pbInt port )
    {
        return pb::adopt( inUdpMulticastReceiverTryCreate( group_.get(), lo_.get(), port, nullptr ) );
    }

    UdpBackend backend_;
    pb::Ref<struct inAddress> group_ = address( "239.83.2.1" );
    pb::String lo_ = pb::string( "lo" );
};

TEST_F( UdpMulticastReceiver, BlocksUntilThereIsAPacketOrAnEnd )
{
    const auto receiver = tryCreate( 23458 );
    ASSERT_TRUE( receiver );
    const PlainSocket sender( "127.0.0.1" );
    const ip_mreqn through{ {}, {}, 1 };
    ASSERT_EQ( setsockopt( sender.fd(), IPPROTO_IP, IP_MULTICAST_IF, &through, sizeof through ), 0 );
    const auto group = pb::adopt( inUdpMulticastReceiverLocalAddress( receiver.get() ) );
    EXPECT_EQ( pb::utf8( pb::adopt( inUdpAddressToString( group.get() ) ) ), "239.83.2.1:23458" );

    const auto abort = pb::adopt( pbSignalCreate() );
    std::vector<std::string> received;
    std::thread listener( [&] {
        while ( const auto packet = pb::adopt( inUdpMulticastReceiverBlockReceive( receiver.get(), abort.get() ) ) ) {
            received.push_back( payload( packet ) );
            if ( received.size() == 2 )
                pbSignalAssert( abort.get() ); // ends the third wait, although more is on its way
        }
    } );
    for ( const char *text : { "one", "two", "three" } )
        EXPECT_TRUE( sender.send( group.get(), text ) );
    listener.join();
    EXPECT_THAT( received, testing::ElementsAre( "one", "two" ) );
    const auto third = pb::adopt( inUdpMulticastReceiverBlockReceive( receiver.get(), nullptr ) );
    EXPECT_EQ( payload( third ), "three" );

    // A wait that has nothing to wait for but the signal.
    const auto later = pb::adopt( pbSignalCreate() );
    std::thread waiter( [&] { EXPECT_FALSE( inUdpMulticastReceiverBlockReceive( receiver.get(), later.get() ) ); } );
    pbSignalAssert( later.get() );
    waiter.join();
}

TEST_F( UdpMulticastReceiver, TracesWhatItJoins )
{
    TraceCatcher catcher( true );
    EXPECT_TRUE( tryCreate( 23459 ) );
    EXPECT_EQ( catcher.property( "IN_UDP_MULTICAST_RECEIVER", "inMulticastAddress" ), "239.83.2.1" );
    EXPECT_EQ( catcher.property( "IN_UDP_MULTICAST_RECEIVER", "inMulticastPort" ), "23459" );
    EXPECT_EQ( catcher.property( "IN_UDP_MULTICAST_RECEIVER", "inMulticastInterface" ), "lo" );
    EXPECT_FALSE( catcher.notable( "IN_UDP_MULTICAST_RECEIVER" ) );
    EXPECT_FALSE( tryCreate( IN_UDP_PORT_INVALID ) );
    EXPECT_THAT( catcher.texts( "IN_UDP_MULTICAST_RECEIVER" ),
                 testing::ElementsAre( "[inUdpMulticastReceiverTryCreate()] in___ImpUdpChannelTryCreate(): "
                                       "IN___IMP_UDP_CHANNEL_INVALID" ) );
    EXPECT_TRUE( catcher.notable( "IN_UDP_MULTICAST_RECEIVER" ) );
}

TEST_F( UdpMulticastReceiver, NeedsAGroup )
{
    GTEST_FLAG_SET( death_test_style, "threadsafe" ); // there are other threads
    EXPECT_DEATH( inUdpMulticastReceiverTryCreate( address( "10.0.0.1" ).get(), nullptr, 23460, nullptr ),
                  testing::HasSubstr( ": inAddressIsMulticast( multicastAddress )\n" ) );
}

} // namespace
