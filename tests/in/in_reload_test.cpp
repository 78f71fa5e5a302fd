// Re-loads while datagrams travel: a stack whose record stays the same keeps its channels, and nothing piles up.
#include "cs/cs_configuration.h"
#include "in/base/in_stack.h"
#include "in/in_imp_udp_support.hpp"
#include "in/udp/in_udp_channel.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "tr/tr_system.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr const char *kept = R"("kept": {"sort": "IN_STACK", "config": {"address": "127.0.0.1"}})";

// Two states of the file with nothing in common but the kept record, as somebody's editing may leave them, and one that
// is refused.
const std::string states[] = {
    std::string( "{\"objects\": {" ) + kept + R"(,
        "changed": {"sort": "IN_STACK", "config": {"interface": "lo"}},
        "replaced": {"sort": "IN_QOS_STACK"}, "gone": {"sort": "CS_CONDITION", "config": {"value": true}},
        "wire": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "none0"}}}})",
    std::string( R"({"objects": {"changed": {"sort": "IN_STACK", "config": {"interface": "lo", "address": "127.0.0.9"}},
        "replaced": {"sort": "CS_CONDITION"}, "new": {"sort": "IN_QOS_STACK"},
        "wire": {"sort": "IN_NW_STACK",
                 "config": {"interfaceIdentifier": "none1", "csConditionName": "replaced"}},)" ) +
        kept + "}}",
    std::string( "{\"objects\": {" ) + kept + R"(, "changed": {"sort": "IN_STACK", "config": {"adress": 1}}}})" };

// What must not grow.
struct Counts {
    size_t threads, descriptors, streams;
    bool operator==( const Counts & ) const = default;
};
std::ostream &operator<<( std::ostream &out, const Counts &counts )
{
    return out << counts.threads << " threads, " << counts.descriptors << " descriptors, " << counts.streams
               << " trace streams";
}

struct StreamCounter {
    StreamCounter() { trSystemAddListener( listen, this, false ); }
    ~StreamCounter() { trSystemDelListener( listen, this ); }
    static void listen( const struct trEvent *event, void *context )
    {
        auto &live = static_cast<StreamCounter *>( context )->live;
        live += ( event->kind == TR_EVENT_CREATED ) - ( event->kind == TR_EVENT_RELEASED );
    }
    std::atomic<int64_t> live = 0;
};

size_t entries( const char *directory )
{
    return static_cast<size_t>( std::distance( fs::directory_iterator( directory ), fs::directory_iterator() ) );
}

Counts counts( const StreamCounter &streams )
{
    pr___Quiesce();
    return { entries( "/proc/self/task" ), entries( "/proc/self/fd" ), static_cast<size_t>( streams.live ) };
}

// Two channels on one stack, a datagram at a time there and back, from a thread of its own.
class Traffic {
public:
    explicit Traffic( struct inStack *stack )
        : channels_{ channelOn( stack ), channelOn( stack ) }, thread_( [this] { work(); } )
    {
    }
    ~Traffic()
    {
        stop_ = true;
        thread_.join();
    }
    // Of exchanges that went well. False when one was lost.
    bool waitFor( int64_t count ) const
    {
        for ( ; exchanged < count && !lost; std::this_thread::yield() )
            ;
        return !lost;
    }

    std::atomic<int64_t> exchanged = 0;
    std::atomic<bool> lost = false;

private:
    using Channel = pb::Ref<struct inUdpChannel>;

    static Channel channelOn( struct inStack *stack )
    {
        return pb::adopt(
            inUdpChannelTryCreate( stack, nullptr, nullptr, nullptr, IN_UDP_PORT_INVALID, 0, nullptr ) );
    }
    void work()
    {
        for ( int64_t number = 0; !stop_ && !lost; ++number ) {
            lost = !travels( channels_[0], channels_[1], number ) || !travels( channels_[1], channels_[0], ~number );
            exchanged += lost ? 0 : 1;
        }
    }
    static bool travels( const Channel &from, const Channel &to, int64_t number )
    {
        const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
        const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
        inUdpChannelReceiveAddAlertable( to.get(), alertable.get() );
        inUdpChannelSendBytes( from.get(), pb::adopt( inUdpChannelLocalAddress( to.get() ) ).get(), &number,
                               sizeof number );
        const bool came = pbBarrierPassTimed( barrier.get(), 20'000 );
        inUdpChannelReceiveDelAlertable( to.get(), alertable.get() );
        const auto packet = pb::adopt( inUdpChannelReceive( to.get() ) );
        if ( !came || !packet )
            return false;
        const auto payload = pb::adopt( inUdpPacketPayload( packet.get() ) );
        int64_t got = 0;
        std::memcpy( &got, pbBufferBacking( payload.get() ), sizeof got );
        return got == number;
    }

    const Channel channels_[2];
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

TEST( Reload, TwoHundredUnderTrafficLoseNothingAndLeaveNothing )
{
    const StreamCounter streams;
    const support::ModuleHost host;
    const fs::path path = fs::path( testing::TempDir() ) / ( "in_reload_test-" + std::to_string( getpid() ) );
    const auto name = pb::string( path.string() );
    struct pbVector *problems = nullptr;
    std::ofstream( path ) << states[0];
    const auto configuration = pb::adopt( csConfigurationTryLoad( name.get(), &problems ) );
    ASSERT_TRUE( configuration );
    csConfigurationStart( configuration.get() );
    const auto reloads = [&]( const std::string &text ) {
        std::ofstream( path ) << text;
        return csConfigurationTryReload( configuration.get(), name.get(), &problems, nullptr );
    };
    {
        const auto find = [&] {
            return pb::adopt( inStackFrom(
                csConfigurationObject( configuration.get(), pb::string( "kept" ).get(), inStackSort() ) ) );
        };
        const pb::Ref<struct inStack> stack = find();
        ASSERT_TRUE( stack );
        Traffic traffic( stack.get() );
        ASSERT_TRUE( traffic.waitFor( 1 ) );
        const Counts before = counts( streams );
        for ( int reload = 1; reload <= 200; ++reload ) {
            SCOPED_TRACE( reload );
            if ( reload % 8 == 0 )
                EXPECT_FALSE( reloads( states[2] ) );
            ASSERT_TRUE( reloads( states[reload % 2] ) );
            ASSERT_TRUE( traffic.waitFor( traffic.exchanged + 5 ) ) << "a datagram was lost";
        }
        EXPECT_TRUE( find().is( stack ) );
        EXPECT_EQ( counts( streams ), before );
        std::cout << "200 re-loads, " << traffic.exchanged << " exchanges, " << before << ", as many after\n";
    }
    csConfigurationStop( configuration.get() );
    pbVectorRelease( problems );
    fs::remove( path );
}

} // namespace
