// Any store into every function that restores: none ends the process, and what comes out is a value whose own store
// restores to an equal one. The input is lines, see store_lines.hpp.
#include "in/base/in_options.h"
#include "in/dns/in_dns_options.h"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/qos/in_qos_options.h"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_options.h"
#include "in/tcp/in_tcp_port_range.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_assert.hpp"
#include "store_lines.hpp"
#include "support/in_tables.hpp"

#include <algorithm>

namespace {

using Store = pb::Ref<struct pbStore>;

// Restores, stores, restores again: the second store is the first.
template <class T>
void check( const Store &source, T *( *restore )(const struct pbStore *), Store ( *store )( const T * ) )
{
    const auto value = pb::adopt( restore( source.get() ) );
    if ( !value )
        return;
    const auto stored = store( value.get() );
    const auto again = pb::adopt( restore( stored.get() ) );
    PB_ASSERT( again );
    PB_ASSERT( pbStoreEquals( store( again.get() ).get(), stored.get() ) );
}

// Addresses whose text cannot be read back (a lone zero group at either end) come back as absent: such values are
// restored without a fault, but not compared.
bool hasUnreadableText( const Store &store )
{
    const std::string text = support::json( pb::share( store.get() ).release() );
    for ( size_t i = 0; i < text.size(); ++i ) {
        const size_t end = std::min( text.find_first_not_of( "0123456789abcdef:", i ), text.size() );
        if ( std::count( text.begin() + static_cast<ptrdiff_t>( i ), text.begin() + static_cast<ptrdiff_t>( end ), ':' )
             == 8 )
            return true;
        i = end;
    }
    return false;
}

template <class T> Store stored( struct pbStore *( *store )(const T *), const T *value )
{
    return pb::adopt( store( value ) );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    static const support::InTables tables;
    std::string_view text( reinterpret_cast<const char *>( data ), size );
    const auto source = fuzz::takeStore( text );

    check<struct inUdpPortRange>( source, inUdpPortRangeTryRestore,
                                  []( auto *v ) { return stored( inUdpPortRangeStore, v ); } );
    check<struct inTcpPortRange>( source, inTcpPortRangeTryRestore,
                                  []( auto *v ) { return stored( inTcpPortRangeStore, v ); } );
    check<struct inUdpOptions>( source, inUdpOptionsRestore, []( auto *v ) { return stored( inUdpOptionsStore, v ); } );
    check<struct inTcpOptions>( source, inTcpOptionsRestore,
                                []( auto *v ) { return pb::adopt( inTcpOptionsStore( v, 0 ) ); } );
    check<struct inDnsOptions>( source, inDnsOptionsRestore,
                                []( auto *v ) { return pb::adopt( inDnsOptionsStore( v, 0 ) ); } );
    check<struct inQosOptions>( source, inQosOptionsRestore,
                                []( auto *v ) { return pb::adopt( inQosOptionsStore( v, 1 ) ); } );
    check<struct inNwAddress>( source, inNwAddressTryRestore, []( auto *v ) { return stored( inNwAddressStore, v ); } );

    const auto options = pb::adopt( inOptionsRestore( source.get() ) );
    const auto state = pb::adopt( inNwInterfaceStateRestore( source.get() ) );
    const auto udpAddress = pb::adopt( inUdpAddressTryRestore( source.get() ) );
    const auto tcpAddress = pb::adopt( inTcpAddressTryRestore( source.get() ) );
    PB_ASSERT( static_cast<bool>( udpAddress ) == static_cast<bool>( tcpAddress ) );
    if ( !hasUnreadableText( pb::adopt( inOptionsStore( options.get(), 1 ) ) ) )
        check<struct inOptions>( source, inOptionsRestore,
                                 []( auto *v ) { return pb::adopt( inOptionsStore( v, 0 ) ); } );
    if ( !hasUnreadableText( pb::adopt( inNwInterfaceStateStore( state.get() ) ) ) )
        check<struct inNwInterfaceState>( source, inNwInterfaceStateRestore,
                                          []( auto *v ) { return stored( inNwInterfaceStateStore, v ); } );
    if ( udpAddress && !hasUnreadableText( pb::adopt( inUdpAddressStore( udpAddress.get() ) ) ) )
        check<struct inUdpAddress>( source, inUdpAddressTryRestore,
                                    []( auto *v ) { return stored( inUdpAddressStore, v ); } );
    return 0;
}
