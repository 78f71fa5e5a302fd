// UDP between two hosts: RTP pairs that talk and whose marking is seen on the other side; groups heard on one
// interface.
#include "in/base/in_address_version.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/in_imp_udp_support.hpp"
#include "in/qos/in_qos_defaults.h"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_channel.h"
#include "in/udp/in_udp_channels_vector.h"
#include "in/udp/in_udp_multicast_receiver.h"
#include "in/udp/in_udp_options.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "support/net_namespace.hpp"

#include <gmock/gmock.h>
#include <net/if.h>
#include <poll.h>

namespace {

using support::Child;
using support::NetNamespace;

constexpr int patience = 20'000;                   // milliseconds, for what comes at once if it comes
constexpr const char *interfaces[] = { "v", "w" }; // of either host; a cable joins each with its namesake

struct Family {
    pbInt version;
    const char *prefixes[2]; // of the addresses on v and w, before the host's number
    const char *group;
    const char *marking; // as the capture prints that of voice

    std::string address( int host, int interface = 0 ) const
    {
        return prefixes[interface] + std::to_string( host + 1 );
    }
};
constexpr Family families[] = {
    { IN_ADDRESS_VERSION_4, { "10.7.0.", "10.8.0." }, "239.83.7.1", "tos 0xb8," },
    { IN_ADDRESS_VERSION_6, { "fd00:7::", "fd00:8::" }, "ff15::8307", "class 0xb8," },
};

struct Network {
    Network()
    {
        for ( const int interface : { 0, 1 } ) {
            const std::string name = interfaces[interface];
            hosts[0].connect( name, hosts[1], name );
            for ( const int host : { 0, 1 } )
                hosts[host].run( "ip addr add " + families[0].address( host, interface ) + "/24 dev " + name
                                 + "; ip addr add " + families[1].address( host, interface ) + "/64 dev " + name
                                 + " nodad; ip link set " + name + " up" );
        }
        // The kernel takes note of a link in its own time, and has no use for IPv6 multicast before.
        for ( const NetNamespace &host : hosts )
            for ( const std::string name : interfaces )
                host.run( "for i in $( seq 10000 ); do ip -6 route show table local | grep -q '^multicast ff00::/8 dev "
                          + name + " ' && exit; done; exit 1" );
    }
    NetNamespace hosts[2];
};

// Where either host waits until the other has come.
class Meeting {
public:
    Meeting()
    {
        int ends[2];
        if ( socketpair( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends ) != 0 )
            throw std::runtime_error( "socketpair failed" );
        for ( const int host : { 0, 1 } )
            ends_[host] = pb::Fd( ends[host] );
    }
    bool join( int host ) const
    {
        char token = 0;
        pollfd other{ ends_[host].get(), POLLIN, 0 };
        return write( other.fd, &token, 1 ) == 1 && poll( &other, 1, patience ) == 1
               && read( other.fd, &token, 1 ) == 1;
    }

private:
    pb::Fd ends_[2];
};

// A capture of the datagrams that arrive on a host's v. It ends by itself after two.
class Capture {
public:
    explicit Capture( const NetNamespace &host )
    {
        int ends[2];
        if ( pipe2( ends, O_CLOEXEC ) != 0 )
            throw std::runtime_error( "pipe2 failed" );
        output_ = pb::Fd( ends[0] );
        const pb::Fd writing( ends[1] );
        process_.emplace( host.start( [&writing] {
            dup2( writing.get(), STDOUT_FILENO );
            dup2( writing.get(), STDERR_FILENO );
            // Another user than root would lose the signal that ends it with the test.
            execlp( "tcpdump", "tcpdump", "-Z", "root", "--immediate-mode", "-lnv", "-i", interfaces[0], "-Q", "in",
                    "-c", "2", "udp", nullptr );
            _exit( 127 );
        } ) );
        EXPECT_THAT( read( "listening on" ), testing::HasSubstr( "listening on" ) );
    }
    // All that it has printed so far; waits for the part to be there.
    std::string read( const std::string &part )
    {
        pollfd output{ output_.get(), POLLIN, 0 };
        char bytes[1024];
        while ( text_.find( part ) == text_.npos ) {
            const ssize_t count = poll( &output, 1, patience ) == 1 ? ::read( output.fd, bytes, sizeof bytes ) : 0;
            if ( count <= 0 )
                break;
            text_.append( bytes, static_cast<size_t>( count ) );
        }
        return text_;
    }

private:
    pb::Fd output_;
    std::optional<Child> process_;
    std::string text_;
};

// The next packet with its sender.
template <typename Receiver>
std::string next( Receiver *receiver, void ( *add )( Receiver *, struct pbAlertable * ),
                  void ( *del )( Receiver *, struct pbAlertable * ), struct inUdpPacket *( *receive )(Receiver *))
{
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    add( receiver, alertable.get() );
    (void)pbBarrierPassTimed( barrier.get(), patience ); // without a packet the result says so
    del( receiver, alertable.get() );
    const auto packet = pb::adopt( receive( receiver ) );
    if ( !packet )
        return "nothing";
    const auto sender = pb::adopt( inUdpPacketRemoteAddress( packet.get() ) );
    const auto senderAddress = pb::adopt( inUdpAddressAddress( sender.get() ) );
    return support::payload( packet ) + " from " + pb::utf8( pb::adopt( inAddressToString( senderAddress.get() ) ) );
}

// One host's part: opens the pair on the address that the stack finds, tells the other one and listens to it.
void talk( const Family &family, int host, const Meeting &meeting )
{
    const support::ModuleHost modules;
    auto udpOptions = pb::adopt( inUdpOptionsCreate() );
    inUdpOptionsSetPortRange( udpOptions.address(), pb::adopt( inUdpPortRangeCreate( 5004, 2 ) ).get() );
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetInterface( options.address(), pb::string( interfaces[0] ).get() );
    inOptionsSetAddressVersion( options.address(), family.version );
    inOptionsSetUdpOptions( options.address(), udpOptions.get() );
    const auto stack = pb::adopt( inStackCreate( options.get(), nullptr ) );
    auto qosOptions = pb::adopt( inQosOptionsCreate() );
    inQosOptionsSetDefaults( qosOptions.address(), IN_QOS_DEFAULTS_VOICE );
    const auto qos = pb::adopt( inQosStackCreate( qosOptions.get(), nullptr ) );
    const auto pair =
        pb::adopt( inUdpChannelsVectorTryCreateRtp( stack.get(), qos.get(), nullptr, nullptr, 0, nullptr ) );
    ASSERT_TRUE( pair );
    ASSERT_TRUE( meeting.join( host ) );

    const std::string texts[] = { "RTP", "RTCP" }, other = family.address( 1 - host );
    for ( const bool sending : { true, false } )
        for ( const int index : { 0, 1 } ) {
            const auto channel = pb::adopt( inUdpChannelFrom( pbVectorObjAt( pair.get(), index ) ) );
            const auto remote = pb::adopt( inUdpAddressCreate( support::address( other ).get(), 5004 + index ) );
            if ( sending )
                inUdpChannelSendBytes( channel.get(), remote.get(), texts[index].data(), std::ssize( texts[index] ) );
            else
                EXPECT_EQ( next( channel.get(), inUdpChannelReceiveAddAlertable, inUdpChannelReceiveDelAlertable,
                                 inUdpChannelReceive ),
                           texts[index] + " from " + other );
        }
}

TEST( UdpBetweenHosts, TalkInRtpPairsThatAreMarked )
{
    SKIP_WITHOUT_NAMESPACES();
    const Network network;
    for ( const Family &family : families ) {
        SCOPED_TRACE( family.marking );
        Capture captures[] = { Capture( network.hosts[0] ), Capture( network.hosts[1] ) };
        const Meeting meeting;
        Child talks[] = { network.hosts[0].start( [&] { talk( family, 0, meeting ); } ),
                          network.hosts[1].start( [&] { talk( family, 1, meeting ); } ) };
        for ( Child &talk : talks )
            EXPECT_TRUE( talk.wait() );
        for ( const int host : { 0, 1 } ) {
            const std::string captured = captures[host].read( "packets captured" );
            for ( const char *port : { ".5004", ".5005" } )
                EXPECT_THAT( captured, testing::ContainsRegex( family.marking + std::string( "[^>]* " )
                                                               + family.address( 1 - host ) + port + " > " ) );
        }
    }
}

void sendToGroup( const Family &family, const struct inUdpAddress *group, int interface, const std::string &text )
{
    const support::PlainSocket sender( family.address( 0, interface ) );
    const int index = static_cast<int>( if_nametoindex( interfaces[interface] ) );
    const ip_mreqn through{ {}, {}, index };
    EXPECT_EQ( family.version == IN_ADDRESS_VERSION_6
                   ? setsockopt( sender.fd(), IPPROTO_IPV6, IPV6_MULTICAST_IF, &index, sizeof index )
                   : setsockopt( sender.fd(), IPPROTO_IP, IP_MULTICAST_IF, &through, sizeof through ),
               0 );
    EXPECT_TRUE( sender.send( group, text ) );
}

TEST( UdpBetweenHosts, ReceiveAGroupOnTheNamedInterfaceAlone )
{
    SKIP_WITHOUT_NAMESPACES();
    const Network network;
    for ( const Family &family : families )
        for ( const int interface : { 0, 1 } ) {
            SCOPED_TRACE( family.address( 0, interface ) );
            const Meeting meeting;
            Child receiving = network.hosts[1].start( [&] {
                const support::ModuleHost modules;
                const auto receiver = pb::adopt(
                    inUdpMulticastReceiverTryCreate( support::address( family.group ).get(),
                                                     pb::string( interfaces[interface] ).get(), 5010, nullptr ) );
                ASSERT_TRUE( receiver );
                ASSERT_TRUE( meeting.join( 1 ) );
                // What comes through the other interface would stand between these.
                for ( const char *text : { "first", "second" } )
                    EXPECT_EQ( next( receiver.get(), inUdpMulticastReceiverReceiveAddAlertable,
                                     inUdpMulticastReceiverReceiveDelAlertable, inUdpMulticastReceiverReceive ),
                               text + ( " from " + family.address( 0, interface ) ) );
            } );
            network.hosts[0].scenario( [&] {
                const auto group = pb::adopt( inUdpAddressCreate( support::address( family.group ).get(), 5010 ) );
                ASSERT_TRUE( meeting.join( 0 ) );
                for ( const char *text : { "first", "second" } )
                    for ( const int through : { 1 - interface, interface } )
                        sendToGroup( family, group.get(), through, text );
            } );
            EXPECT_TRUE( receiving.wait() );
        }
}

} // namespace
