// Opening of UDP sockets, a function per step.
#include "in/imp/in_imp_udp_unix_socket.hpp"

#include "in/base/in_address.h"
#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "in/nw/in_nw_interface_name.hpp"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_flags.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_string.hpp"

#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace {

struct SocketAddress {
    sockaddr_storage storage{};
    pbInt length = sizeof( sockaddr_storage );

    sockaddr *get() { return reinterpret_cast<sockaddr *>( &storage ); }
};

bool trySet( int fd, int level, int option, int value )
{
    return setsockopt( fd, level, option, &value, sizeof value ) == 0;
}

bool trySetUnicastOptions( int fd, uint64_t flags )
{
    // Neither changes whether the channel works; the second only insists on the default, that nobody shares the port.
    (void)trySet( fd, SOL_SOCKET, SO_BROADCAST, 1 );
    (void)trySet( fd, SOL_SOCKET, SO_REUSEADDR, 0 );
    // The system takes 0 as the smallest buffer that it allows.
    return !( flags & IN_UDP_FLAG_NO_RECEIVE ) || trySet( fd, SOL_SOCKET, SO_RCVBUF, 0 );
}

// Best effort: a channel without its marking still works. IP_TOS alone leaves IPv6 packets unmarked.
void mark( int fd, bool ipv6, const struct inQosStack *qosStack )
{
    const auto options = pb::adopt( inQosStackOptions( qosStack ) );
    const int trafficClass = static_cast<int>( inQosOptionsLayer3Tos( options.get() ) & 0xff );
    (void)trySet( fd, IPPROTO_IP, IP_TOS, trafficClass );
    if ( ipv6 )
        (void)trySet( fd, IPPROTO_IPV6, IPV6_TCLASS, trafficClass );
    (void)trySet( fd, SOL_SOCKET, SO_PRIORITY, static_cast<int>( inQosOptionsLayer2Pcp( options.get() ) ) );
}

// 0 for none and for one that does not exist, which means any. The socket itself is asked, where if_nametoindex would
// need another descriptor and could not tell "no such interface" from "no descriptor left".
unsigned int interfaceIndex( int fd, const struct pbString *optionalName )
{
    if ( !optionalName )
        return 0;
    const std::string name = in::interfaceNameOf( optionalName );
    ifreq request{};
    if ( name.size() >= sizeof request.ifr_name || name.find( '\0' ) != name.npos )
        return 0;
    std::memcpy( request.ifr_name, name.data(), name.size() );
    return ioctl( fd, SIOCGIFINDEX, &request ) == 0 ? static_cast<unsigned int>( request.ifr_ifindex ) : 0;
}

bool tryJoin( int fd, bool ipv6, unsigned int interface, SocketAddress &group )
{
    const pbInt sockaddrLength = group.length;
    group_req req{};
    PB_ASSERT( ((unsigned int)sockaddrLength) <= sizeof(req.gr_group) );
    req.gr_interface = interface;
    std::memcpy( &req.gr_group, &group.storage, static_cast<size_t>( sockaddrLength ) );
    return setsockopt( fd, ipv6 ? IPPROTO_IPV6 : IPPROTO_IP, MCAST_JOIN_GROUP, &req, sizeof req ) == 0;
}

bool tryBind( int fd, SocketAddress &address )
{
    return bind( fd, address.get(), static_cast<socklen_t>( address.length ) ) == 0;
}

// Shares the address that was asked for, unless the system reports another: all channels of a stack then have one.
pb::Ref<struct inUdpAddress> boundAddress( int fd, const struct inAddress *asked )
{
    SocketAddress address;
    socklen_t length = sizeof address.storage;
    if ( getsockname( fd, address.get(), &length ) != 0 )
        return {};
    auto udpAddress = pb::adopt( inUdpAddressCreate( asked, 1 ) );
    in___ImpSockaddrUpdateUdpAddress( address.get(), length, udpAddress.address() ); // leaves it empty on failure
    return udpAddress;
}

} // namespace

std::optional<in___ImpUdpUnixSocket> in___ImpUdpUnixSocketTryOpen( const struct inAddress *localAddress,
                                                                   pbInt optionalLocalPort, uint64_t flags,
                                                                   const struct inQosStack *optionalQosStack,
                                                                   const struct pbString *optionalInterface )
{
    const bool ipv6 = inAddressIsV6( localAddress );
    const bool multicast = inAddressIsMulticast( localAddress );
    const bool portGiven = optionalLocalPort != IN_UDP_PORT_INVALID;
    SocketAddress address;
    in___ImpSockaddrFromAddressAndPort( address.get(), &address.length, localAddress,
                                        portGiven ? optionalLocalPort : 0 );

    pb::Fd descriptor( socket( ipv6 ? AF_INET6 : AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_UDP ) );
    const int fd = descriptor.get();
    if ( !descriptor || ( !multicast && !trySetUnicastOptions( fd, flags ) ) )
        return std::nullopt;
    if ( optionalQosStack )
        mark( fd, ipv6, optionalQosStack );
    if ( !multicast ) {
        if ( !tryBind( fd, address ) )
            return std::nullopt;
    } else if ( !portGiven || !trySet( fd, SOL_SOCKET, SO_REUSEADDR, 1 ) || !tryBind( fd, address )
                || !tryJoin( fd, ipv6, interfaceIndex( fd, optionalInterface ), address ) )
        return std::nullopt;

    auto udpAddress = boundAddress( fd, localAddress );
    if ( !udpAddress )
        return std::nullopt;
    return in___ImpUdpUnixSocket{ std::move( descriptor ), std::move( udpAddress ) };
}
