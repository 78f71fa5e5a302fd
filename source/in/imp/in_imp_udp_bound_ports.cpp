// Which UDP ports this process holds, by local address.
#include "in/imp/in_imp_udp_bound_ports.hpp"

#include "in/base/in_address.h"
#include "pb/pb_dict.h"
#include "pb/pb_object.hpp"

#include <bitset>

PB_SORT_DECLARE( in___sort_IN___IMP_UDP_BOUND_PORTS )

struct in___ImpUdpBoundPorts final
    : pb::Object<struct in___ImpUdpBoundPorts, in___sort_IN___IMP_UDP_BOUND_PORTS> {
    std::bitset<65536> ports;
    pbInt count = 0;
};

constinit const struct pbSort in___sort_IN___IMP_UDP_BOUND_PORTS =
    pb::detail::makeSort<struct in___ImpUdpBoundPorts>( "IN___IMP_UDP_BOUND_PORTS" );

namespace {

// Null when none is held on the address.
pb::Ref<struct in___ImpUdpBoundPorts> find( const struct pbDict *addresses, const struct inAddress *address )
{
    return pb::adopt(
        static_cast<struct in___ImpUdpBoundPorts *>( pbDictObjKey( addresses, inAddressObj( address ) ) ) );
}

} // namespace

bool in___ImpUdpBoundPortsHas( const struct pbDict *addresses, const struct inAddress *address, pbInt port )
{
    const auto bound = find( addresses, address );
    return bound && bound->ports[static_cast<size_t>( port )];
}

void in___ImpUdpBoundPortsAdd( struct pbDict **addresses, const struct inAddress *address, pbInt port )
{
    auto bound = find( *addresses, address );
    if ( !bound ) {
        bound = pb::make<struct in___ImpUdpBoundPorts>();
        pbDictSetObjKey( addresses, inAddressObj( address ), bound.get() );
    }
    bound->count += !bound->ports[static_cast<size_t>( port )];
    bound->ports.set( static_cast<size_t>( port ) );
}

void in___ImpUdpBoundPortsRemove( struct pbDict **addresses, const struct inAddress *address, pbInt port )
{
    const auto bound = find( *addresses, address );
    if ( !bound )
        return;
    bound->count -= bound->ports[static_cast<size_t>( port )];
    bound->ports.reset( static_cast<size_t>( port ) );
    if ( bound->count == 0 )
        pbDictDelObjKey( addresses, inAddressObj( address ) );
}
