// What a stack decides, apart from the object that runs.
#include "in/base/in_stack_decisions.hpp"

#include "in/base/in_options.h"
#include "in/nw/in_nw_interface.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/tcp/in_tcp_address.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

namespace in {

bool anyInterfaceUp( const struct pbVector *interfaces )
{
    for ( pbInt index = 0; index < pbVectorLength( interfaces ); ++index ) {
        const auto iface = pb::adopt( inNwInterfaceFrom( pbVectorObjAt( interfaces, index ) ) );
        const auto state = pb::adopt( inNwInterfaceState( iface.get() ) );
        if ( inNwInterfaceStateStatus( state.get() ) == IN_NW_INTERFACE_STATUS_UP )
            return true;
    }
    return false;
}

std::string stackReason( const struct inOptions *options, const struct inAddress *optionalAddress,
                         const struct inNwInterface *optionalPrimaryInterface, bool up )
{
    const auto wanted = pb::adopt( inOptionsInterface( options ) );
    std::string text;
    if ( !optionalAddress && wanted && !optionalPrimaryInterface )
        return "no address: no interface " + pb::utf8( wanted );
    if ( !optionalAddress )
        text = "no address: no interface has one that the options allow";
    if ( optionalPrimaryInterface && !up )
        text += ( text.empty() ? "interface " : "; interface " ) +
                pb::utf8( pb::adopt( inNwInterfaceIdentifier( optionalPrimaryInterface ) ) ) + " is down";
    return text;
}

void TcpBlacklist::set( const struct inTcpAddress *address, pbInt expiry )
{
    const struct pbObj *key = inTcpAddressObj( address );
    pbDictSetObjKey( addresses_.address(), key, key );
    pbPriorityMapSet( expiries_.address(), key, expiry );
}

bool TcpBlacklist::contains( const struct inTcpAddress *address ) const
{
    return pbDictHasObjKey( addresses_.get(), inTcpAddressObj( address ) );
}

void TcpBlacklist::expire( pbInt now )
{
    while ( pbPriorityMapLength( expiries_.get() ) > 0 && pbPriorityMapPriorityAt( expiries_.get(), 0 ) <= now ) {
        const auto key = pb::adopt( pbPriorityMapKeyAt( expiries_.get(), 0 ) );
        pbPriorityMapDel( expiries_.address(), key.get() );
        pbDictDelObjKey( addresses_.address(), key.get() );
    }
}

std::optional<pbInt> TcpBlacklist::earliestExpiry() const
{
    if ( pbPriorityMapLength( expiries_.get() ) == 0 )
        return std::nullopt;
    return pbPriorityMapPriorityAt( expiries_.get(), 0 );
}

} // namespace in
