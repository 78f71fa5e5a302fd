// inUdpAddress: a UDP endpoint.
#include "in/udp/in_udp_address.h"

#include "in/base/in_address.h"
#include "in/base/in_store_form.hpp"
#include "in/udp/in_udp_address_internal.h"
#include "pb/pb_format.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_ADDRESS )

struct inUdpAddress final : pb::Object<struct inUdpAddress, in___sort_IN_UDP_ADDRESS> {
    pb::Ref<struct inAddress> address; // never null
    pbInt port = 1;                    // 1..65535

    auto operator<=>( const inUdpAddress & ) const = default;

    pb::String toString() const { return pb::format( "%~s:%i", pb::adopt( inAddressToHost( address.get() ) ), port ); }
};

PB_OBJECT_DEFINE( inUdpAddress, in___sort_IN_UDP_ADDRESS )

namespace {

constexpr auto form = std::tuple{
    in::form::Row{
        "address", &inUdpAddress::address,
        in::form::TextOf<struct inAddress>{ inAddressToString, inAddressTryCreateFromString, "an IP address" },
        in::form::always },
    in::form::Row{ "port", &inUdpAddress::port, in::form::Integer{ 1, 65535 }, in::form::always },
};

} // namespace

struct inUdpAddress *inUdpAddressCreate( const struct inAddress *address, pbInt port )
{
    PB_ASSERT( address );
    PB_ASSERT( IN_UDP_PORT_OK( port ) );
    auto udpAddress = pb::make<struct inUdpAddress>();
    udpAddress->address = pb::share( address );
    udpAddress->port = port;
    return udpAddress.release();
}

struct inUdpAddress *inUdpAddressCreateFrom( const struct inUdpAddress *source )
{
    PB_ASSERT( source );
    return pb::make<struct inUdpAddress>( *source ).release();
}

struct inAddress *inUdpAddressAddress( const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return udpAddress->address.share();
}

void inUdpAddressSetAddress( struct inUdpAddress **udpAddress, const struct inAddress *address )
{
    PB_ASSERT( udpAddress );
    PB_ASSERT( *udpAddress );
    PB_ASSERT( address );
    pb::edit( udpAddress ).address = pb::share( address );
}

pbInt inUdpAddressPort( const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return udpAddress->port;
}

void inUdpAddressSetPort( struct inUdpAddress **udpAddress, pbInt port )
{
    PB_ASSERT( udpAddress );
    PB_ASSERT( *udpAddress );
    PB_ASSERT( IN_UDP_PORT_OK( port ) );
    pb::edit( udpAddress ).port = port;
}

struct pbStore *inUdpAddressStore( const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return in::form::store( *udpAddress, form ).release();
}

struct inUdpAddress *inUdpAddressTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto udpAddress = pb::make<struct inUdpAddress>();
    return in::form::restore( *udpAddress, form, store ) ? udpAddress.release() : nullptr;
}

void in___UdpAddressUpdate( struct inUdpAddress **udpAddress, const struct inAddress *address, pbInt port )
{
    PB_ASSERT( udpAddress );
    PB_ASSERT( *udpAddress );
    PB_ASSERT( address );
    PB_ASSERT( IN_UDP_PORT_OK( port ) );
    const struct inUdpAddress &current = **udpAddress;
    if ( current.port == port && inAddressEquals( current.address.get(), address ) )
        return;
    struct inUdpAddress &edited = pb::edit( udpAddress );
    edited.address = pb::share( address );
    edited.port = port;
}

const struct inAddress *in___UdpAddressAddressBorrowed( const struct inUdpAddress *udpAddress )
{
    PB_ASSERT( udpAddress );
    return udpAddress->address.get();
}
