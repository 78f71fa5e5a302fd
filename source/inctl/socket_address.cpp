// SocketAddress: an address and port in the system's form.
#include "inctl/socket_address.hpp"

#include "in/base/in_address.h"

#include <cstring>
#include <netinet/in.h>

namespace inctl {

SocketAddress::SocketAddress( const struct inAddress *address, pbInt port )
{
    const in_port_t networkPort = htons( static_cast<in_port_t>( port ) );
    if ( inAddressIsV4( address ) ) {
        auto &in4 = reinterpret_cast<sockaddr_in &>( storage );
        in4.sin_family = AF_INET;
        in4.sin_port = networkPort;
        std::memcpy( &in4.sin_addr, inAddressBacking( address ), sizeof in4.sin_addr );
        length = sizeof in4;
    }
    else {
        auto &in6 = reinterpret_cast<sockaddr_in6 &>( storage );
        in6.sin6_family = AF_INET6;
        in6.sin6_port = networkPort;
        std::memcpy( &in6.sin6_addr, inAddressBacking( address ), sizeof in6.sin6_addr );
        length = sizeof in6;
    }
}

pbInt SocketAddress::port() const
{
    return ntohs( isV4() ? reinterpret_cast<const sockaddr_in &>( storage ).sin_port
                         : reinterpret_cast<const sockaddr_in6 &>( storage ).sin6_port );
}

PlainSocket::PlainSocket( const SocketAddress &address )
    : descriptor_( socket( address.storage.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) )
{
}

} // namespace inctl
