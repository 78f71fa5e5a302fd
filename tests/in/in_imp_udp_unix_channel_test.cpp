// The record of a UDP channel, served step by step without the I/O thread: options of the socket, the limit of the
// queue, what is watched, and what is dropped.
#include "in/imp/in_imp_udp_unix_channel.hpp"
#include "in/in_imp_udp_support.hpp"
#include "in/qos/in_qos_defaults_internal.h"
#include "in/qos/in_qos_layer2_pcp_internal.h"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack.h"
#include "in/qos/in_qos_windows_traffic_type_internal.h"
#include "in/udp/in_udp_flags.h"
#include "pb/pb_alert.h"
#include "pb/pb_signal.h"
#include "unix/unix_fd_observer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/udp.h>

using namespace support;

namespace {

constexpr pbInt any = IN_UDP_PORT_INVALID;
constexpr pbInt watched = UNIX_FD_CONDITION_READABLE | UNIX_FD_CONDITION_ERROR;

class ImpUdpUnixChannel : public testing::Test {
protected:
    ~ImpUdpUnixChannel() override
    {
        if ( channel_ )
            setError();
    }

    void open( const std::string &ip, uint64_t flags = 0 )
    {
        auto socket = in___ImpUdpUnixSocketTryOpen( address( ip ).get(), any, flags, qos_.get(), nullptr );
        ASSERT_TRUE( socket );
        channel_.emplace( std::move( *socket ), flags, false, qos_.get(), nullptr );
        const pb::Guard guard( channel_->monitor );
        in___ImpUdpUnixChannelUpdateObserver( *channel_, observer_.get() );
    }
    void setError()
    {
        const pb::Guard guard( channel_->monitor );
        in___ImpUdpUnixChannelSetError( *channel_, observer_.get() );
    }
    void serve() { in___ImpUdpUnixChannelServe( *channel_, observer_.get(), UNIX_FD_CONDITION_READABLE, *arena_ ); }
    pb::Ref<struct inUdpPacket> take() { return in___ImpUdpUnixChannelTake( *channel_, observer_.get() ); }
    void sendAndServe( const PlainSocket &peer, int count )
    {
        ASSERT_TRUE( peer.send( channel_->localAddress.get(), "x", count ) );
        serve();
    }
    size_t queued()
    {
        const pb::Guard guard( channel_->monitor );
        return channel_->queue.size();
    }
    pbInt conditions()
    {
        const pb::Guard guard( channel_->monitor );
        return channel_->observedConditions;
    }
    bool alerted() { return pbAlertIsSet( channel_->receiveAlert.get() ); }
    int option( int level, int name )
    {
        int value = -1;
        socklen_t length = sizeof value;
        EXPECT_EQ( getsockopt( channel_->descriptor.get(), level, name, &value, &length ), 0 );
        return value;
    }

    pb::Ref<struct unixFdObserver> observer_ = pb::adopt( unixFdObserverTryCreate() );
    std::unique_ptr<in___ImpUdpUnixArena> arena_ = std::make_unique<in___ImpUdpUnixArena>();
    pb::Ref<struct inQosStack> qos_;
    std::optional<in___ImpUdpUnixChannel> channel_;
};

// A QoS stack writes its options to its trace, with these names.
struct QosNames {
    QosNames()
    {
        in___QosDefaultsStartup();
        in___QosLayer2PcpStartup();
        in___QosWindowsTrafficTypeStartup();
    }
    ~QosNames()
    {
        in___QosWindowsTrafficTypeShutdown();
        in___QosLayer2PcpShutdown();
        in___QosDefaultsShutdown();
    }
};

TEST_F( ImpUdpUnixChannel, SetsTheOptionsOfItsSocket )
{
    const QosNames names;
    auto options = pb::adopt( inQosOptionsCreate() );
    inQosOptionsSetLayer3Tos( options.address(), 0xb8 );
    inQosOptionsSetLayer2Pcp( options.address(), 5 );
    qos_ = pb::adopt( inQosStackCreate( options.get(), nullptr ) );
    for ( const char *ip : { "127.2.0.1", "::1" } ) {
        SCOPED_TRACE( ip );
        open( ip, IN_UDP_FLAG_NO_RECEIVE );
        EXPECT_EQ( option( SOL_SOCKET, SO_BROADCAST ), 1 );
        EXPECT_EQ( option( SOL_SOCKET, SO_REUSEADDR ), 0 );
        EXPECT_LT( option( SOL_SOCKET, SO_RCVBUF ), 4096 );
        EXPECT_EQ( option( IPPROTO_IP, IP_TOS ), 0xb8 );
        if ( ip[0] == ':' ) {
            EXPECT_EQ( option( IPPROTO_IPV6, IPV6_TCLASS ), 0xb8 );
        }
        EXPECT_EQ( option( SOL_SOCKET, SO_PRIORITY ), 5 );
        const int fd = channel_->descriptor.get();
        EXPECT_TRUE( fcntl( fd, F_GETFL ) & O_NONBLOCK );
        EXPECT_EQ( fcntl( fd, F_GETFD ), FD_CLOEXEC );
        EXPECT_EQ( conditions(), UNIX_FD_CONDITION_ERROR ); // only sends
        setError();
    }
    qos_.reset();
    open( "127.2.0.1" );
    EXPECT_EQ( option( IPPROTO_IP, IP_TOS ), 0 );
    EXPECT_GT( option( SOL_SOCKET, SO_RCVBUF ), 4096 );
}

TEST_F( ImpUdpUnixChannel, StopsReadingAtTheLimitAndResumesAtHalf )
{
    open( "127.2.0.2" );
    const PlainSocket peer( "127.2.0.2" );
    // Waves that fit into the socket's buffer.
    for ( int wave = 0; wave < 5; ++wave )
        sendAndServe( peer, 100 );
    sendAndServe( peer, 11 );
    EXPECT_EQ( queued(), 511 );
    EXPECT_EQ( conditions(), watched );
    sendAndServe( peer, 3 );
    EXPECT_EQ( queued(), 512 );
    EXPECT_EQ( conditions(), UNIX_FD_CONDITION_ERROR );
    serve(); // an event from before
    EXPECT_EQ( queued(), 512 );
    while ( queued() > 257 )
        EXPECT_TRUE( take() );
    EXPECT_EQ( conditions(), UNIX_FD_CONDITION_ERROR );
    EXPECT_TRUE( take() );
    EXPECT_EQ( conditions(), watched );
    serve(); // what had waited in the socket
    EXPECT_EQ( queued(), 258 );
    while ( take() )
        continue;
    EXPECT_EQ( queued(), 0 );
    EXPECT_FALSE( alerted() );
}

// One event takes one datagram or many; together they take all, in order, with one state of the alert.
TEST_F( ImpUdpUnixChannel, KeepsTheOrderWhateverComesTogether )
{
    open( "127.2.0.3" );
    const PlainSocket peer( "127.2.0.3" );
    int sent = 0, received = 0;
    const auto wave = [&]( int count ) {
        for ( const int end = sent + count; sent < end; ++sent )
            ASSERT_TRUE( peer.send( channel_->localAddress.get(), sent % 7 ? std::to_string( sent ) : "" ) );
        while ( received < sent ) {
            serve();
            EXPECT_TRUE( alerted() );
            while ( const auto packet = take() ) {
                EXPECT_EQ( payload( packet ), received % 7 ? std::to_string( received ) : "" );
                ++received;
            }
            EXPECT_FALSE( alerted() );
        }
    };
    for ( const int count : { 1, 2, 64, 65, 130 } )
        wave( count );
    for ( int quiet = 0; quiet < 20; ++quiet )
        wave( 1 );
    for ( const int count : { 64, 1, 3, 130 } )
        wave( count );
}

TEST_F( ImpUdpUnixChannel, KeepsPacketsToItselfAfterAnError )
{
    open( "127.2.0.4" );
    sendAndServe( PlainSocket( "127.2.0.4" ), 2 );
    EXPECT_TRUE( take() );
    in___ImpUdpUnixChannelServe( *channel_, observer_.get(), UNIX_FD_CONDITION_ERROR, *arena_ );
    EXPECT_TRUE( pbSignalAsserted( channel_->errorSignal.get() ) );
    EXPECT_EQ( conditions(), 0 );
    EXPECT_FALSE( take() );
    EXPECT_EQ( queued(), 1 );
    EXPECT_TRUE( alerted() ); // the state of the queue, for good
}

TEST_F( ImpUdpUnixChannel, FailsWhenItsDescriptorCannotBeWatched )
{
    auto socket = in___ImpUdpUnixSocketTryOpen( address( "127.2.0.5" ).get(), any, 0, nullptr, nullptr );
    ASSERT_TRUE( socket );
    socket->descriptor = pb::Fd( ::open( "/proc/self/exe", O_RDONLY | O_CLOEXEC ) ); // epoll refuses files
    channel_.emplace( std::move( *socket ), 0, false, nullptr, nullptr );
    const pb::Guard guard( channel_->monitor );
    in___ImpUdpUnixChannelUpdateObserver( *channel_, observer_.get() );
    EXPECT_TRUE( pbSignalAsserted( channel_->errorSignal.get() ) );
    EXPECT_EQ( channel_->observedConditions, 0 );
}

TEST_F( ImpUdpUnixChannel, DropsWhatCannotBeAnswered )
{
    const pb::Fd raw( socket( AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_UDP ) );
    if ( !raw )
        GTEST_SKIP() << "raw sockets are not permitted here";
    open( "127.2.0.6" );
    const PlainSocket peer( "127.2.0.6" );
    sockaddr_storage to;
    pbInt length;
    in___ImpSockaddrFromUdpAddress( &to, &length, channel_->localAddress.get() );
    udphdr fromPortZero{};
    fromPortZero.dest = reinterpret_cast<sockaddr_in &>( to ).sin_port;
    fromPortZero.len = htons( sizeof fromPortZero );
    const auto sendFromPortZero = [&] {
        ASSERT_EQ( sendto( raw.get(), &fromPortZero, sizeof fromPortZero, 0, reinterpret_cast<sockaddr *>( &to ),
                           static_cast<socklen_t>( length ) ),
                   static_cast<ssize_t>( sizeof fromPortZero ) );
    };
    sendFromPortZero();
    ASSERT_TRUE( peer.send( channel_->localAddress.get(), "between" ) );
    sendFromPortZero();
    ASSERT_TRUE( peer.send( channel_->localAddress.get(), "behind" ) );
    serve();
    EXPECT_EQ( queued(), 2 );
    EXPECT_EQ( payload( take() ), "between" );
    EXPECT_EQ( payload( take() ), "behind" );
}

} // namespace
