// Reads back how the datagrams of a channel are marked. A channel keeps its descriptor to itself, but it is one of this
// process: the one whose socket is bound to the channel's address and port.
#include "inctl/marking.hpp"

#include "inctl/socket_address.hpp"

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

std::optional<int> option( int descriptor, int level, int name )
{
    int value = 0;
    socklen_t length = sizeof value;
    if ( getsockopt( descriptor, level, name, &value, &length ) != 0 )
        return std::nullopt;
    return value;
}

std::optional<int> descriptorOf( const SocketAddress &address )
{
    std::error_code error;
    for ( const auto &entry : std::filesystem::directory_iterator( "/proc/self/fd", error ) ) {
        const std::string name = entry.path().filename();
        int descriptor = -1; // stays so where the name is no number, and has no options then
        (void)std::from_chars( name.data(), name.data() + name.size(), descriptor );
        sockaddr_storage bound{};
        socklen_t length = sizeof bound;
        if ( option( descriptor, SOL_SOCKET, SO_TYPE ) == SOCK_DGRAM &&
             getsockname( descriptor, reinterpret_cast<sockaddr *>( &bound ), &length ) == 0 &&
             length == address.length && std::memcmp( &bound, &address.storage, length ) == 0 )
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
    // A datagram that poll has seen may be dropped for its checksum when it is read (poll(2)).
    if ( recvmsg( descriptor, &message, MSG_DONTWAIT ) < 0 )
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

// A plain socket on the channel's address receives one datagram of it and looks at the header.
std::optional<int> receivedTos( struct inUdpChannel *channel, const struct inAddress *address )
{
    SocketAddress beside( address, 0 );
    const PlainSocket receiver( beside );
    const int on = 1;
    // Where the system refuses it the datagram comes without the byte, which is then unknown.
    (void)setsockopt( receiver.descriptor(), beside.isV4() ? IPPROTO_IP : IPPROTO_IPV6,
                      beside.isV4() ? IP_RECVTOS : IPV6_RECVTCLASS, &on, sizeof on );
    if ( bind( receiver.descriptor(), beside.get(), beside.length ) != 0 ||
         getsockname( receiver.descriptor(), beside.get(), &beside.length ) != 0 )
        return std::nullopt;
    const auto target = pb::adopt( inUdpAddressCreate( address, beside.port() ) );
    inUdpChannelSendBytes( channel, target.get(), "marked", 6 );
    return tosOfNext( receiver.descriptor() );
}

} // namespace

Marking readMarking( struct inUdpChannel *channel )
{
    const auto local = pb::adopt( inUdpChannelLocalAddress( channel ) );
    const auto address = pb::adopt( inUdpAddressAddress( local.get() ) );
    const SocketAddress bound( address.get(), inUdpAddressPort( local.get() ) );
    Marking marking;
    if ( const auto descriptor = descriptorOf( bound ) ) {
        marking.socketTos =
            bound.isV4() ? option( *descriptor, IPPROTO_IP, IP_TOS ) : option( *descriptor, IPPROTO_IPV6, IPV6_TCLASS );
        marking.socketPriority = option( *descriptor, SOL_SOCKET, SO_PRIORITY );
    }
    marking.receivedTos = receivedTos( channel, address.get() );
    return marking;
}

} // namespace inctl
