// Reads back how the datagrams of a channel are marked. A channel keeps its descriptor to itself, but it is one of this
// process: the one whose socket is bound to the channel's address and port.
#include "inctl/marking.hpp"

#include "in/base/in_address.h"
#include "in/udp/in_udp_address.h"
#include "pb/pb_object.hpp"

#include <charconv>
#include <cstring>
#include <filesystem>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace inctl {
namespace {

constexpr int patience = 1000; // milliseconds for a datagram to cross this host

// An address and port in the system's form, to be compared byte by byte.
struct Endpoint {
    sockaddr_storage storage{};
    socklen_t length = 0;

    explicit Endpoint( const struct inUdpAddress *udpAddress )
    {
        const auto address = pb::adopt( inUdpAddressAddress( udpAddress ) );
        const uint16_t port = htons( static_cast<uint16_t>( inUdpAddressPort( udpAddress ) ) );
        if ( inAddressIsV4( address.get() ) ) {
            auto &in4 = reinterpret_cast<sockaddr_in &>( storage );
            in4.sin_family = AF_INET;
            in4.sin_port = port;
            std::memcpy( &in4.sin_addr, inAddressBacking( address.get() ), sizeof in4.sin_addr );
            length = sizeof in4;
        }
        else {
            auto &in6 = reinterpret_cast<sockaddr_in6 &>( storage );
            in6.sin6_family = AF_INET6;
            in6.sin6_port = port;
            std::memcpy( &in6.sin6_addr, inAddressBacking( address.get() ), sizeof in6.sin6_addr );
            length = sizeof in6;
        }
    }

    bool isV4() const { return storage.ss_family == AF_INET; }
};

std::optional<int> option( int descriptor, int level, int name )
{
    int value = 0;
    socklen_t length = sizeof value;
    if ( getsockopt( descriptor, level, name, &value, &length ) != 0 )
        return std::nullopt;
    return value;
}

std::optional<int> descriptorOf( const Endpoint &endpoint )
{
    std::error_code error;
    for ( const auto &entry : std::filesystem::directory_iterator( "/proc/self/fd", error ) ) {
        const std::string name = entry.path().filename();
        int descriptor = -1;
        std::from_chars( name.data(), name.data() + name.size(), descriptor );
        sockaddr_storage bound{};
        socklen_t length = sizeof bound;
        if ( option( descriptor, SOL_SOCKET, SO_TYPE ) == SOCK_DGRAM &&
             getsockname( descriptor, reinterpret_cast<sockaddr *>( &bound ), &length ) == 0 &&
             length == endpoint.length && std::memcmp( &bound, &endpoint.storage, length ) == 0 )
            return descriptor;
    }
    return std::nullopt;
}

std::optional<int> tosOfNext( int descriptor )
{
    pollfd polled{ descriptor, POLLIN, 0 };
    if ( poll( &polled, 1, patience ) <= 0 )
        return std::nullopt;
    char payload[16];
    alignas( cmsghdr ) char control[256];
    iovec part{ payload, sizeof payload };
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    if ( recvmsg( descriptor, &message, 0 ) < 0 )
        return std::nullopt;
    for ( cmsghdr *header = CMSG_FIRSTHDR( &message ); header; header = CMSG_NXTHDR( &message, header ) ) {
        if ( header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_TOS ) // one byte, ip(7)
            return *CMSG_DATA( header );
        if ( header->cmsg_level == IPPROTO_IPV6 && header->cmsg_type == IPV6_TCLASS ) {
            int value;
            std::memcpy( &value, CMSG_DATA( header ), sizeof value );
            return value;
        }
    }
    return std::nullopt;
}

// A plain socket beside the channel's receives one datagram and looks at its header.
std::optional<int> receivedTos( struct inUdpChannel *channel, Endpoint beside )
{
    const int descriptor = socket( beside.storage.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0 );
    if ( descriptor < 0 )
        return std::nullopt;
    const int on = 1;
    setsockopt( descriptor, beside.isV4() ? IPPROTO_IP : IPPROTO_IPV6, beside.isV4() ? IP_RECVTOS : IPV6_RECVTCLASS,
                &on, sizeof on );
    // The port lies at the same place in both forms of an address.
    auto &in4 = reinterpret_cast<sockaddr_in &>( beside.storage );
    in4.sin_port = 0;
    std::optional<int> tos;
    if ( bind( descriptor, reinterpret_cast<const sockaddr *>( &beside.storage ), beside.length ) == 0 &&
         getsockname( descriptor, reinterpret_cast<sockaddr *>( &beside.storage ), &beside.length ) == 0 ) {
        const auto local = pb::adopt( inUdpChannelLocalAddress( channel ) );
        const auto address = pb::adopt( inUdpAddressAddress( local.get() ) );
        const auto target = pb::adopt( inUdpAddressCreate( address.get(), ntohs( in4.sin_port ) ) );
        inUdpChannelSendBytes( channel, target.get(), "marked", 6 );
        tos = tosOfNext( descriptor );
    }
    close( descriptor );
    return tos;
}

} // namespace

Marking readMarking( struct inUdpChannel *channel )
{
    const Endpoint endpoint( pb::adopt( inUdpChannelLocalAddress( channel ) ).get() );
    Marking marking;
    if ( const auto descriptor = descriptorOf( endpoint ) ) {
        marking.socketTos = endpoint.isV4() ? option( *descriptor, IPPROTO_IP, IP_TOS )
                                            : option( *descriptor, IPPROTO_IPV6, IPV6_TCLASS );
        marking.socketPriority = option( *descriptor, SOL_SOCKET, SO_PRIORITY );
    }
    marking.receivedTos = receivedTos( channel, endpoint );
    return marking;
}

} // namespace inctl
