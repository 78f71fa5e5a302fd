// inUdpMatch: a set of UDP addresses.
#include "in/udp/in_udp_match.h"

#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_packet.h"
#include "pb/pb_dict.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_MATCH )

struct inUdpMatch final : pb::Object<struct inUdpMatch, in___sort_IN_UDP_MATCH> {
    pb::Ref<struct pbDict> addresses = pb::adopt( pbDictCreate() ); // each address is its own value

    auto operator<=>( const inUdpMatch & ) const = default;
};

PB_OBJECT_DEFINE( inUdpMatch, in___sort_IN_UDP_MATCH )

struct inUdpMatch *inUdpMatchCreate( void )
{
    return pb::make<struct inUdpMatch>().release();
}

struct inUdpMatch *inUdpMatchCreateFrom( const struct inUdpMatch *source )
{
    PB_ASSERT( source );
    return pb::make<struct inUdpMatch>( *source ).release();
}

pbBool inUdpMatchHas( const struct inUdpMatch *match, const struct inUdpAddress *address )
{
    PB_ASSERT( match );
    PB_ASSERT( address );
    return pbDictHasObjKey( match->addresses.get(), inUdpAddressObj( address ) );
}

void inUdpMatchSet( struct inUdpMatch **match, const struct inUdpAddress *address )
{
    PB_ASSERT( match );
    PB_ASSERT( *match );
    PB_ASSERT( address );
    pbDictSetObjKey( pb::edit( match ).addresses.address(), inUdpAddressObj( address ), inUdpAddressObj( address ) );
}

void inUdpMatchDel( struct inUdpMatch **match, const struct inUdpAddress *address )
{
    PB_ASSERT( match );
    PB_ASSERT( *match );
    PB_ASSERT( address );
    pbDictDelObjKey( pb::edit( match ).addresses.address(), inUdpAddressObj( address ) );
}

pbBool inUdpMatchMatchPacket( const struct inUdpMatch *match, const struct inUdpPacket *packet )
{
    PB_ASSERT( match );
    PB_ASSERT( packet );
    return inUdpMatchHas( match, pb::adopt( inUdpPacketRemoteAddress( packet ) ).get() );
}
