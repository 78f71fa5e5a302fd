// The UDP backend under pressure: channels that come, talk and go in many threads, and a table that is full.
// IN_SOAK_SECONDS lets the first case run for that long instead of for a number of channels.
#include "in/in_imp_udp_support.hpp"
#include "pb/pb_random.h"

#include <chrono>
#include <gmock/gmock.h>
#include <mutex>
#include <thread>

using namespace support;

namespace {

// Where channels can be reached at the moment, or could a moment ago.
class Directory {
public:
    void publish( size_t place, pb::Ref<struct inUdpAddress> channel )
    {
        const std::lock_guard lock( mutex_ );
        addresses_[place] = std::move( channel );
    }
    pb::Ref<struct inUdpAddress> any() const
    {
        const std::lock_guard lock( mutex_ );
        return addresses_[static_cast<size_t>( pbRandomNonNegativeIntRange( 0, places - 1 ) )];
    }
    static constexpr size_t places = 32;

private:
    mutable std::mutex mutex_;
    pb::Ref<struct inUdpAddress> addresses_[places];
};

TEST( UdpStress, ChannelsComeTalkAndGo )
{
    constexpr int threadCount = 8;
    const char *soak = std::getenv( "IN_SOAK_SECONDS" );
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds( soak ? std::atoi( soak ) : 3600 );
    const int limit = soak ? INT_MAX : 20000;
    const int before = descriptorCount();
    std::atomic<int> creations = 0;
    std::atomic<int> received = 0;
    {
        UdpBackend backend;
        Directory directory;
        const auto churn = [&]( size_t thread ) {
            UdpChannel channels[Directory::places / threadCount];
            while ( creations < limit && std::chrono::steady_clock::now() < end )
                for ( size_t index = 0; index < std::size( channels ); ++index ) {
                    UdpChannel &channel = channels[index];
                    while ( channel && channel.receive() )
                        ++received;
                    channel = UdpChannel();
                    channel = UdpChannel( "127.3.0.1", IN_UDP_PORT_INVALID );
                    ASSERT_TRUE( channel );
                    directory.publish( index * threadCount + thread, channel.local() );
                    for ( int datagram = 0; datagram < 8; ++datagram )
                        if ( const auto remote = directory.any() )
                            channel.send( remote.get(), "hello" );
                    ++creations;
                }
        };
        std::vector<std::thread> threads;
        for ( size_t thread = 0; thread < threadCount; ++thread )
            threads.emplace_back( churn, thread );
        for ( auto &thread : threads )
            thread.join();
    }
    EXPECT_GT( received, 0 );
    EXPECT_EQ( descriptorCount(), before );
    std::printf( "creations: %d, packets received: %d\n", creations.load(), received.load() );
}

// Without the port selection above, which serialises creation and destruction: a descriptor number goes to another thread
// the moment it is closed.
TEST( UdpStress, SocketsChangeHandsBelowThePortSelection )
{
    constexpr int threadCount = 8, rounds = 4000;
    UdpBackend backend;
    const auto address = pb::adopt( inAddressTryCreateFromCstr( "127.3.0.2", -1 ) );
    std::vector<std::thread> threads;
    for ( int thread = 0; thread < threadCount; ++thread )
        threads.emplace_back( [&] {
            for ( int round = 0; round < rounds; ++round ) {
                const pbInt chan = in___ImpUdpChannelTryAllocate( address.get(), IN_UDP_PORT_INVALID, 0, nullptr, nullptr );
                ASSERT_NE( chan, IN___IMP_UDP_CHANNEL_INVALID );
                const auto local = pb::adopt( in___ImpUdpChannelLocalAddress( chan ) );
                in___ImpUdpChannelSendBytes( chan, local.get(), "self", 4 ); // an event for whoever holds the number
                in___ImpUdpChannelRelease( chan ).reset();
            }
        } );
    for ( auto &thread : threads )
        thread.join();
}

TEST( UdpStress, TheTableIsFullAtItsSize )
{
    constexpr size_t size = 16384;
    const DescriptorLimit limit;
    if ( limit.hard() < size + 100 )
        GTEST_SKIP() << "only " << limit.hard() << " descriptors are permitted here";
    limit.set( limit.hard() );
    const int before = descriptorCount();
    {
        UdpBackend backend;
        std::vector<UdpChannel> channels;
        while ( channels.size() < size )
            ASSERT_TRUE( channels.emplace_back( "127.3.0.2", IN_UDP_PORT_INVALID ) ) << channels.size();
        EXPECT_FALSE( UdpChannel( "127.3.0.2", IN_UDP_PORT_INVALID ) );
        const pbInt freed = channels[size / 3].get();
        channels[size / 3] = UdpChannel();
        channels[size / 3] = UdpChannel( "127.3.0.2", IN_UDP_PORT_INVALID );
        EXPECT_EQ( channels[size / 3].get(), freed );
        channels.front().send( channels.back().local().get(), "through the crowd" );
        EXPECT_EQ( payload( channels.back().await() ), "through the crowd" );
    }
    EXPECT_EQ( descriptorCount(), before );
}

} // namespace
