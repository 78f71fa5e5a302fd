// To 13.0: an address with matching bits is the network that it was meant for, and what is stored of the interfaces of
// the host has the form of their states.
#include "in/csupdate/in_csupdate.hpp"

#include "in/base/in_module.h"
#include "in/base/in_stack.h"
#include "pb/pb_format.hpp"
#include "pb/pb_module.h"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20200219Backend;

void in___Csupdate20200219Startup( void )
{
    in::csupdate::start( in___Csupdate20200219Backend, "2020-02-19", in___Csupdate20200219Func );
}

void in___Csupdate20200219Shutdown( void )
{
    in___Csupdate20200219Backend.invalidate();
}

namespace {

bool nameNetwork( Store &config )
{
    const pb::String address = value( config, "address" ), bits = value( config, "addressMatchingBits" );
    if ( !address || !bits || value( config, "network" ) )
        return false;
    setValue( config, "network", pb::format( "%s/%s", address, bits ) );
    remove( config, "address" );
    remove( config, "addressMatchingBits" );
    return true;
}

// Steps of the rewriting of one state. What an old key held goes on under the new one; the old key is gone afterwards
// also where it held nothing that goes on.

bool renameStatus( Store &state )
{
    const pb::String old = value( state, "state" );
    if ( old && pbStringEqualsCstr( old.get(), "IN_SYSTEM_INTERFACE_STATE_DOWN", -1 ) )
        setValue( state, "status", pb::string( "IN_NW_INTERFACE_STATUS_DOWN" ) );
    if ( old && pbStringEqualsCstr( old.get(), "IN_SYSTEM_INTERFACE_STATE_UP", -1 ) )
        setValue( state, "status", pb::string( "IN_NW_INTERFACE_STATUS_UP" ) );
    return remove( state, "state" );
}

bool wrapLayer2Address( Store &state )
{
    if ( const pb::String mac = value( state, "eui48Address" ) ) {
        Store address = pb::adopt( pbStoreCreate() ), addresses = pb::adopt( pbStoreCreate() );
        setValue( address, "mac", mac );
        setValue( address, "type", pb::string( "IN_NW_ADDRESS_TYPE_MAC" ) );
        pbStoreArrayAppendStore( addresses.address(), address.get() );
        setMember( state, "layer2Addresses", addresses );
    }
    return remove( state, "eui48Address" );
}

bool renameNumber( Store &state, const char *oldKey, const char *newKey )
{
    if ( const pb::String number = value( state, oldKey ) )
        setValue( state, newKey, number );
    return remove( state, oldKey );
}

bool renameLayer3Addresses( Store &state )
{
    if ( const Store addresses = member( state, "unicastAddresses" ) ) {
        Store networks = pb::adopt( pbStoreCreate() );
        for ( pbInt index = 0; index < pbStoreArrayLength( addresses.get() ); ++index )
            if ( const pb::String address = pb::adopt( pbStoreArrayValueAt( addresses.get(), index ) ) )
                pbStoreArrayAppendValue( networks.address(), address.get() ); // of the prefix nothing is known
        setMember( state, "layer3UnicastAddresses", addresses );
        setMember( state, "layer3Networks", networks );
    }
    return remove( state, "unicastAddresses" );
}

bool rewriteState( Store &entry )
{
    Store state = member( entry, "state" );
    if ( !state )
        return false;
    bool changed = renameStatus( state );
    changed |= wrapLayer2Address( state );
    changed |= renameNumber( state, "mtu", "layer2Mtu" );
    changed |= renameNumber( state, "linkSpeedReceive", "layer2SpeedReceive" );
    changed |= renameNumber( state, "linkSpeedTransmit", "layer2SpeedTransmit" );
    changed |= renameLayer3Addresses( state );
    if ( changed )
        setMember( entry, "state", state );
    return changed;
}

// Rewrites what a store holds under a key. Whether there was something to be changed.
template <class Rewrite> bool rewriteMember( Store &store, const char *key, Rewrite rewrite )
{
    Store old = member( store, key );
    if ( !old || !rewrite( old ) )
        return false;
    setMember( store, key, old );
    return true;
}

void rewriteInterfaces( struct csUpdate **update )
{
    const auto interfaces = []( Store &store ) { return rewriteMembers( store, rewriteState ); };
    const auto info = [&]( Store &store ) { return rewriteMember( store, "interfaces", interfaces ); };
    const auto module = [&]( Store &store ) { return rewriteMember( store, "info", info ); };
    const auto modules = [&]( Store &store ) { return rewriteMember( store, inModule()->record->name, module ); };
    Store tree = pb::adopt( csUpdateCurrent( *update ) );
    if ( rewriteMember( tree, "modules", modules ) )
        csUpdateSetCurrent( update, tree.get() );
}

} // namespace

void in___Csupdate20200219Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 12 ) )
        return;
    rewriteObjects( update, pb::adopt( csUpdateObjectsBySort( *update, inStackSort() ) ), nameNetwork );
    rewriteInterfaces( update ); // on the tree with the stacks as they are now
    setVersion( update, "13.0" );
}
