// Start, use and stop of the whole library, each time in a process of its own: no memory, descriptor or thread is left.
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/in_imp_udp_support.hpp"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_channel.h"
#include "in/udp/in_udp_channels_vector.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "support/net_namespace.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

Names sorted( Names names )
{
    std::sort( names.begin(), names.end() );
    return names;
}

Names threads()
{
    Names names;
    for ( const auto &task : fs::directory_iterator( "/proc/self/task" ) )
        std::getline( std::ifstream( task.path() / "comm" ), names.emplace_back() );
    return sorted( names );
}

// A thread takes its name a little after its start, and leaves the directory a little after it was joined.
void expectThreads( const Names &expected )
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds( 20 );
    while ( threads() != expected && std::chrono::steady_clock::now() < end )
        std::this_thread::yield();
    EXPECT_EQ( threads(), expected );
}

Names descriptors()
{
    Names names;
    for ( const auto &descriptor : fs::directory_iterator( "/proc/self/fd" ) )
        names.push_back( descriptor.path().filename().string() + " " + fs::read_symlink( descriptor ).string() );
    return sorted( names );
}

void use()
{
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    const auto stack = pb::adopt( inStackCreate( options.get(), nullptr ) );
    const auto qos = pb::adopt( inQosStackCreate( pb::adopt( inQosOptionsCreate() ).get(), nullptr ) );
    const auto channel =
        pb::adopt( inUdpChannelTryCreate( stack.get(), qos.get(), nullptr, nullptr, IN_UDP_PORT_INVALID, 0, nullptr ) );
    const auto pair =
        pb::adopt( inUdpChannelsVectorTryCreateRtp( stack.get(), qos.get(), nullptr, nullptr, 0, nullptr ) );
    ASSERT_TRUE( channel && pair );
    const auto rtp = pb::adopt( inUdpChannelFrom( pbVectorObjAt( pair.get(), 0 ) ) );

    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    inUdpChannelReceiveAddAlertable( rtp.get(), alertable.get() );
    inUdpChannelSendBytes( channel.get(), pb::adopt( inUdpChannelLocalAddress( rtp.get() ) ).get(), "hello", 5 );
    EXPECT_TRUE( pbBarrierPassTimed( barrier.get(), 20'000 ) );
    // Neither received nor detached: what waits goes with the channel.
}

TEST( Cycles, LeaveNothing )
{
    for ( int cycle = 0; cycle < ( std::getenv( "IN_SOAK" ) ? 200 : 10 ); ++cycle ) {
        support::Child child( [] {
            pid_t first = 0; // with it a sanitizer starts a thread of its own
            std::thread( [&first] { first = gettid(); } ).join();
            while ( fs::exists( "/proc/self/task/" + std::to_string( first ) ) )
                std::this_thread::yield();
            const Names threadsBefore = threads(), descriptorsBefore = descriptors();

            Names expected = threadsBefore;
            expected.insert( expected.end(), { "in___ImpUdpUnix", "pbTimer" } ); // the kernel keeps 15 characters
            expected.insert( expected.end(), std::clamp( std::thread::hardware_concurrency(), 2u, 4u ), "prScheduler" );
            expected.insert( expected.end(), 4, "prDomain" ); // for look-ups
            {
                const support::ModuleHost host;
                use();
                expectThreads( sorted( expected ) );
            }
            expectThreads( threadsBefore );
            EXPECT_EQ( descriptors(), descriptorsBefore );
        } ); // the leak check runs at its end
        ASSERT_TRUE( child.wait() ) << "in cycle " << cycle;
    }
}

} // namespace
