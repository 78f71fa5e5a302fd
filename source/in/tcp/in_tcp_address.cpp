// inTcpAddress: a TCP endpoint.
#include "in/tcp/in_tcp_address.h"

#include "in/base/in_address.h"
#include "in/base/in_store_form.hpp"
#include "in/tcp/in_tcp_address_internal.h"
#include "pb/pb_format.hpp"

PB_SORT_DECLARE( in___sort_IN_TCP_ADDRESS )

struct inTcpAddress final : pb::Object<struct inTcpAddress, in___sort_IN_TCP_ADDRESS> {
    pb::Ref<struct inAddress> address; // never null
    pbInt port = 1;                    // 1..65535

    auto operator<=>( const inTcpAddress & ) const = default;

    pb::String toString() const { return pb::format( "%~s:%i", pb::adopt( inAddressToHost( address.get() ) ), port ); }
};

PB_OBJECT_DEFINE( inTcpAddress, in___sort_IN_TCP_ADDRESS )

namespace {

constexpr auto form = std::tuple{
    in::form::Row{
        "address", &inTcpAddress::address,
        in::form::TextOf<struct inAddress>{ inAddressToString, inAddressTryCreateFromString, "an IP address" },
        in::form::always },
    in::form::Row{ "port", &inTcpAddress::port, in::form::Integer{ 1, 65535 }, in::form::always },
};

} // namespace

struct inTcpAddress *inTcpAddressCreate( const struct inAddress *address, pbInt port )
{
    PB_ASSERT( address );
    PB_ASSERT( IN_TCP_PORT_OK( port ) );
    auto tcpAddress = pb::make<struct inTcpAddress>();
    tcpAddress->address = pb::share( address );
    tcpAddress->port = port;
    return tcpAddress.release();
}

struct inTcpAddress *inTcpAddressCreateFrom( const struct inTcpAddress *source )
{
    PB_ASSERT( source );
    return pb::make<struct inTcpAddress>( *source ).release();
}

struct inAddress *inTcpAddressAddress( const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return tcpAddress->address.share();
}

void inTcpAddressSetAddress( struct inTcpAddress **tcpAddress, const struct inAddress *address )
{
    PB_ASSERT( tcpAddress );
    PB_ASSERT( *tcpAddress );
    PB_ASSERT( address );
    pb::edit( tcpAddress ).address = pb::share( address );
}

pbInt inTcpAddressPort( const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return tcpAddress->port;
}

void inTcpAddressSetPort( struct inTcpAddress **tcpAddress, pbInt port )
{
    PB_ASSERT( tcpAddress );
    PB_ASSERT( *tcpAddress );
    PB_ASSERT( IN_TCP_PORT_OK( port ) );
    pb::edit( tcpAddress ).port = port;
}

struct pbStore *inTcpAddressStore( const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return in::form::store( *tcpAddress, form ).release();
}

struct inTcpAddress *inTcpAddressTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto tcpAddress = pb::make<struct inTcpAddress>();
    return in::form::restore( *tcpAddress, form, store ) ? tcpAddress.release() : nullptr;
}

void in___TcpAddressUpdate( struct inTcpAddress **tcpAddress, const struct inAddress *address, pbInt port )
{
    PB_ASSERT( tcpAddress );
    PB_ASSERT( *tcpAddress );
    PB_ASSERT( address );
    PB_ASSERT( IN_TCP_PORT_OK( port ) );
    const struct inTcpAddress &current = **tcpAddress;
    if ( current.port == port && inAddressEquals( current.address.get(), address ) )
        return;
    struct inTcpAddress &edited = pb::edit( tcpAddress );
    edited.address = pb::share( address );
    edited.port = port;
}

const struct inAddress *in___TcpAddressAddressBorrowed( const struct inTcpAddress *tcpAddress )
{
    PB_ASSERT( tcpAddress );
    return tcpAddress->address.get();
}
