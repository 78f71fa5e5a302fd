// Conversion between values and socket addresses: sockaddr_in and sockaddr_in6, <netinet/in.h>.
#include "in/imp/in_imp_sockaddr_unix_internal.h"

#include "in/base/in_address.hpp"
#include "in/raw/in_raw_address.h"
#include "in/raw/in_raw_address_internal.h"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_address_internal.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_address_internal.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace {

union LocalSockaddr {
    struct sockaddr_in in;
    struct sockaddr_in6 in6;
};
static_assert( sizeof( LocalSockaddr ) == 28 && sizeof( struct sockaddr_in ) == 16 );

// What a usable socket address says; the bytes stay where they are.
struct Parts {
    pbInt version;
    const uint8_t *bytes;
    pbInt port;

    bool isOf( const struct inAddress *ina ) const
    {
        return ina && ina->version == version
               && memcmp( ina->bytes, bytes, version == IN_ADDRESS_VERSION_4 ? 4 : 16 ) == 0;
    }
    pb::Ref<struct inAddress> address() const
    {
        return version == IN_ADDRESS_VERSION_4 ? inAddress::fromV4( bytes ) : inAddress::fromV6( bytes );
    }
};

bool readParts( const void *sockaddr, pbInt length, Parts &parts )
{
    PB_ASSERT( sockaddr );
    const uint8_t *const bytes = static_cast<const uint8_t *>( sockaddr );
    sa_family_t family;
    in_port_t port;
    if ( length < static_cast<pbInt>( sizeof( struct sockaddr_in ) ) )
        return false;
    memcpy( &family, bytes + offsetof( struct sockaddr_in, sin_family ), sizeof family );
    static_assert( offsetof( struct sockaddr_in, sin_port ) == offsetof( struct sockaddr_in6, sin6_port ) );
    memcpy( &port, bytes + offsetof( struct sockaddr_in, sin_port ), sizeof port );
    if ( family == AF_INET )
        parts = { IN_ADDRESS_VERSION_4, bytes + offsetof( struct sockaddr_in, sin_addr ), ntohs( port ) };
    else if ( family == AF_INET6 && length >= static_cast<pbInt>( sizeof( struct sockaddr_in6 ) ) )
        parts = { IN_ADDRESS_VERSION_6, bytes + offsetof( struct sockaddr_in6, sin6_addr ), ntohs( port ) };
    else
        return false;
    return true;
}

// How a value that joins an address and a number is made, read and changed.
template <class T> struct Kind;

template <> struct Kind<struct inTcpAddress> {
    static constexpr auto create = inTcpAddressCreate;
    static constexpr auto borrow = in___TcpAddressAddressBorrowed;
    static constexpr auto update = in___TcpAddressUpdate;
};
template <> struct Kind<struct inUdpAddress> {
    static constexpr auto create = inUdpAddressCreate;
    static constexpr auto borrow = in___UdpAddressAddressBorrowed;
    static constexpr auto update = in___UdpAddressUpdate;
};
template <> struct Kind<struct inRawAddress> {
    static constexpr auto create = inRawAddressCreate;
    static constexpr auto borrow = in___RawAddressAddressBorrowed;
    static constexpr auto update = in___RawAddressUpdate;
};

template <class T> void clear( T **slot )
{
    PB_ASSERT( slot );
    pb::adopt( std::exchange( *slot, nullptr ) ).reset();
}

template <class T> bool put( T **slot, const Parts &parts, pbInt number )
{
    *slot = Kind<T>::create( parts.address().get(), number );
    return true;
}

template <class T> bool update( T **slot, const Parts &parts, pbInt number )
{
    if ( !*slot )
        return put( slot, parts, number );
    const struct inAddress *const current = Kind<T>::borrow( *slot );
    if ( parts.isOf( current ) )
        Kind<T>::update( slot, current, number );
    else
        Kind<T>::update( slot, parts.address().get(), number );
    return true;
}

template <class T> bool toPort( const void *sockaddr, pbInt length, T **slot )
{
    clear( slot );
    Parts parts;
    return readParts( sockaddr, length, parts ) && parts.port && put( slot, parts, parts.port );
}

template <class T> bool updatePort( const void *sockaddr, pbInt length, T **slot )
{
    PB_ASSERT( slot );
    Parts parts;
    if ( readParts( sockaddr, length, parts ) && parts.port )
        return update( slot, parts, parts.port );
    clear( slot );
    return false;
}

// The hint decides when it is a protocol number; else the port slot must hold one.
bool chooseProtocol( pbInt port, pbInt protocolHint, pbInt &protocol )
{
    if ( port >= 256 && protocolHint > 255 )
        return false;
    protocol = protocolHint <= 255 ? protocolHint : port;
    return true;
}

} // namespace

pbInt in___ImpSockaddrSize( void )
{
    return sizeof( LocalSockaddr );
}

pbBool in___ImpSockaddrFromAddressAndPort( void *optionalSockaddr, pbInt *optionalLength, const struct inAddress *ina,
                                           pbInt port )
{
    PB_ASSERT( ina );
    PB_ASSERT( PB___INT_TO_UNSIGNED_TYPE_CONV_OK( port, in_port_t ) );
    LocalSockaddr lsa;
    memset( &lsa, 0, sizeof lsa );
    pbInt length;
    if ( ina->isV4() ) {
        lsa.in.sin_family = AF_INET;
        lsa.in.sin_port = htons( static_cast<in_port_t>( port ) );
        memcpy( &lsa.in.sin_addr, ina->bytes, 4 );
        length = sizeof lsa.in;
    }
    else {
        PB_ASSERT( PB_SIZEOF_ARRAY( lsa.in6.sin6_addr.s6_addr ) == inAddressLength( ina ) );
        lsa.in6.sin6_family = AF_INET6;
        lsa.in6.sin6_port = htons( static_cast<in_port_t>( port ) );
        memcpy( lsa.in6.sin6_addr.s6_addr, ina->bytes, 16 );
        length = sizeof lsa.in6;
    }
    if ( optionalSockaddr )
        memcpy( optionalSockaddr, &lsa, static_cast<size_t>( length ) );
    if ( optionalLength )
        *optionalLength = length;
    return 1;
}

pbBool in___ImpSockaddrFromAddress( void *optionalSockaddr, pbInt *optionalLength, const struct inAddress *ina )
{
    return in___ImpSockaddrFromAddressAndPort( optionalSockaddr, optionalLength, ina, 0 );
}

pbBool in___ImpSockaddrFromAddressAndTcpPort( void *optionalSockaddr, pbInt *optionalLength,
                                              const struct inAddress *ina, pbInt tcpPort )
{
    PB_ASSERT( IN_TCP_PORT_OK( tcpPort ) );
    return in___ImpSockaddrFromAddressAndPort( optionalSockaddr, optionalLength, ina, tcpPort );
}

pbBool in___ImpSockaddrFromAddressAndUdpPort( void *optionalSockaddr, pbInt *optionalLength,
                                              const struct inAddress *ina, pbInt udpPort )
{
    PB_ASSERT( IN_UDP_PORT_OK( udpPort ) );
    return in___ImpSockaddrFromAddressAndPort( optionalSockaddr, optionalLength, ina, udpPort );
}

pbBool in___ImpSockaddrFromTcpAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return in___ImpSockaddrFromAddressAndTcpPort( optionalSockaddr, optionalLength,
                                                  in___TcpAddressAddressBorrowed( tcpAddress ),
                                                  inTcpAddressPort( tcpAddress ) );
}

pbBool in___ImpSockaddrFromUdpAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return in___ImpSockaddrFromAddressAndUdpPort( optionalSockaddr, optionalLength,
                                                  in___UdpAddressAddressBorrowed( udpAddress ),
                                                  inUdpAddressPort( udpAddress ) );
}

pbBool in___ImpSockaddrFromRawAddress( void *optionalSockaddr, pbInt *optionalLength,
                                       const struct inRawAddress *rawAddress )
{
    PB_ASSERT( rawAddress );
    return in___ImpSockaddrFromAddressAndPort( optionalSockaddr, optionalLength,
                                               in___RawAddressAddressBorrowed( rawAddress ),
                                               inRawAddressProtocol( rawAddress ) );
}

pbBool in___ImpSockaddrToAddress( const void *sockaddr, pbInt length, struct inAddress **ina )
{
    clear( ina );
    Parts parts;
    if ( !readParts( sockaddr, length, parts ) )
        return 0;
    *ina = parts.address().release();
    return 1;
}

pbBool in___ImpSockaddrToTcpAddress( const void *sockaddr, pbInt length, struct inTcpAddress **tcpAddress )
{
    return toPort( sockaddr, length, tcpAddress );
}

pbBool in___ImpSockaddrToUdpAddress( const void *sockaddr, pbInt length, struct inUdpAddress **udpAddress )
{
    return toPort( sockaddr, length, udpAddress );
}

pbBool in___ImpSockaddrToRawAddress( const void *sockaddr, pbInt length, struct inRawAddress **rawAddress,
                                     pbInt protocolHint )
{
    PB_ASSERT( protocolHint >= 0 );
    clear( rawAddress );
    Parts parts;
    pbInt protocol;
    return readParts( sockaddr, length, parts ) && chooseProtocol( parts.port, protocolHint, protocol )
           && put( rawAddress, parts, protocol );
}

pbBool in___ImpSockaddrUpdateAddress( const void *sockaddr, pbInt length, struct inAddress **ina )
{
    PB_ASSERT( ina );
    Parts parts;
    const bool usable = readParts( sockaddr, length, parts );
    if ( usable && parts.isOf( *ina ) )
        return 1;
    clear( ina );
    if ( usable )
        *ina = parts.address().release();
    return usable;
}

pbBool in___ImpSockaddrUpdateTcpAddress( const void *sockaddr, pbInt length, struct inTcpAddress **tcpAddress )
{
    return updatePort( sockaddr, length, tcpAddress );
}

pbBool in___ImpSockaddrUpdateUdpAddress( const void *sockaddr, pbInt length, struct inUdpAddress **udpAddress )
{
    return updatePort( sockaddr, length, udpAddress );
}

pbBool in___ImpSockaddrUpdateRawAddress( const void *sockaddr, pbInt length, struct inRawAddress **rawAddress,
                                         pbInt protocolHint )
{
    PB_ASSERT( protocolHint >= 0 );
    PB_ASSERT( rawAddress );
    Parts parts;
    pbInt protocol;
    if ( readParts( sockaddr, length, parts ) && chooseProtocol( parts.port, protocolHint, protocol ) )
        return update( rawAddress, parts, protocol );
    clear( rawAddress );
    return 0;
}
