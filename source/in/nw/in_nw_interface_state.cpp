// inNwInterfaceState: what is known of a network interface at one moment.
#include "in/nw/in_nw_interface_state.h"

#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/base/in_store_form.hpp"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_interface_flags.h"
#include "in/nw/in_nw_interface_flags_internal.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/nw/in_nw_interface_status_internal.h"

PB_SORT_DECLARE( in___sort_IN_NW_INTERFACE_STATE )

struct inNwInterfaceState final : pb::Object<struct inNwInterfaceState, in___sort_IN_NW_INTERFACE_STATE> {
    pbBool end = 0;
    pb::String displayName;
    pbInt status = -1;
    uint64_t flags = 0; // normalised
    // The sets are dictionaries in which each object is its own value.
    pb::Ref<struct pbDict> layer2Addresses = pb::adopt( pbDictCreate() );
    pbInt layer2Mtu = -1;           // bytes
    pbInt layer2SpeedReceive = -1;  // bits per second
    pbInt layer2SpeedTransmit = -1; // bits per second
    pb::Ref<struct pbDict> layer3UnicastAddresses = pb::adopt( pbDictCreate() );
    pb::Ref<struct pbDict> layer3Networks = pb::adopt( pbDictCreate() );

    auto operator<=>( const inNwInterfaceState & ) const = default;
};

PB_OBJECT_DEFINE( inNwInterfaceState, in___sort_IN_NW_INTERFACE_STATE )

namespace {

using in::form::Row;

struct pbStore *storeAddress( const struct inNwAddress *address, pbBool )
{
    return inNwAddressStore( address );
}

constexpr in::form::Integer notNegative{ 0, PB_INT_MAX, "0 or greater" };
constexpr in::form::StoreOf<struct inNwAddress> layer2Address{ storeAddress, inNwAddressTryRestore };
constexpr in::form::TextOf<struct inAddress> unicastAddress{ inAddressToString, inAddressTryCreateFromString,
                                                             "a unicast IP address", inAddressIsUnicast };
constexpr in::form::TextOf<struct inNetwork> network{ inNetworkToString, inNetworkTryCreateFromString,
                                                      "an IP address with a prefix length" };

constexpr auto form = std::tuple{
    Row{ "end", &inNwInterfaceState::end, in::form::Boolean{}, in::form::always },
    Row{ "displayName", &inNwInterfaceState::displayName, in::form::Text{}, in::form::whenPresent },
    Row{ "status", &inNwInterfaceState::status,
         in::form::Enumeration{ inNwInterfaceStatusToString, inNwInterfaceStatusFromString,
                                in___NwInterfaceStatusNames },
         in::form::whenPresent },
    Row{ "flags", &inNwInterfaceState::flags,
         in::form::Flags{ inNwInterfaceFlagsToString, inNwInterfaceFlagsFromString, in___NwInterfaceFlagsNames },
         in::form::always },
    Row{ "layer2Addresses", &inNwInterfaceState::layer2Addresses,
         in::form::SetOf<struct inNwAddress, decltype( layer2Address )>{ layer2Address }, in::form::always },
    Row{ "layer2Mtu", &inNwInterfaceState::layer2Mtu, notNegative, in::form::whenPresent },
    Row{ "layer2SpeedReceive", &inNwInterfaceState::layer2SpeedReceive, notNegative, in::form::whenPresent },
    Row{ "layer2SpeedTransmit", &inNwInterfaceState::layer2SpeedTransmit, notNegative, in::form::whenPresent },
    Row{ "layer3UnicastAddresses", &inNwInterfaceState::layer3UnicastAddresses,
         in::form::SetOf<struct inAddress, decltype( unicastAddress )>{ unicastAddress }, in::form::always },
    Row{ "layer3Networks", &inNwInterfaceState::layer3Networks,
         in::form::SetOf<struct inNetwork, decltype( network )>{ network }, in::form::always },
};

} // namespace

struct inNwInterfaceState *inNwInterfaceStateCreate( void )
{
    return pb::make<struct inNwInterfaceState>().release();
}

struct inNwInterfaceState *inNwInterfaceStateCreateFrom( const struct inNwInterfaceState *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNwInterfaceState>( *source ).release();
}

pbBool inNwInterfaceStateEnd( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->end;
}

void inNwInterfaceStateSetEnd( struct inNwInterfaceState **state, pbBool end )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).end = PB_BOOL_FROM( end );
}

struct pbString *inNwInterfaceStateDisplayName( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->displayName.share();
}

pbBool inNwInterfaceStateHasDisplayName( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return PB_BOOL_FROM( state->displayName );
}

void inNwInterfaceStateSetDisplayName( struct inNwInterfaceState **state, const struct pbString *displayName )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( displayName );
    pb::edit( state ).displayName = pb::share( displayName );
}

void inNwInterfaceStateDelDisplayName( struct inNwInterfaceState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).displayName.reset();
}

pbInt inNwInterfaceStateStatus( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->status;
}

pbBool inNwInterfaceStateHasStatus( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->status != -1;
}

void inNwInterfaceStateSetStatus( struct inNwInterfaceState **state, pbInt status )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( IN_NW_INTERFACE_STATUS_OK( status ) );
    pb::edit( state ).status = status;
}

void inNwInterfaceStateDelStatus( struct inNwInterfaceState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).status = -1;
}

uint64_t inNwInterfaceStateFlags( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->flags;
}

void inNwInterfaceStateSetFlags( struct inNwInterfaceState **state, uint64_t flags )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).flags = inNwInterfaceFlagsNormalize( flags );
}

struct pbVector *inNwInterfaceStateLayer2AddressesVector( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictKeysVector( state->layer2Addresses.get() );
}

pbInt inNwInterfaceStateLayer2AddressesLength( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictLength( state->layer2Addresses.get() );
}

struct inNwAddress *inNwInterfaceStateLayer2AddressAt( const struct inNwInterfaceState *state, pbInt index )
{
    PB_ASSERT( state );
    return inNwAddressFrom( pbDictKeyAt( state->layer2Addresses.get(), index ) );
}

pbBool inNwInterfaceStateLayer2HasAddress( const struct inNwInterfaceState *state, const struct inNwAddress *address )
{
    PB_ASSERT( state );
    PB_ASSERT( address );
    return pbDictHasObjKey( state->layer2Addresses.get(), inNwAddressObj( address ) );
}

void inNwInterfaceStateLayer2SetAddress( struct inNwInterfaceState **state, const struct inNwAddress *address )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( address );
    pbDictSetObjKey( pb::edit( state ).layer2Addresses.address(), inNwAddressObj( address ),
                     inNwAddressObj( address ) );
}

void inNwInterfaceStateLayer2DelAddress( struct inNwInterfaceState **state, const struct inNwAddress *address )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( address );
    pbDictDelObjKey( pb::edit( state ).layer2Addresses.address(), inNwAddressObj( address ) );
}

pbInt inNwInterfaceStateLayer2Mtu( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2Mtu;
}

pbBool inNwInterfaceStateLayer2HasMtu( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2Mtu != -1;
}

void inNwInterfaceStateLayer2SetMtu( struct inNwInterfaceState **state, pbInt mtu )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( mtu >= 0 );
    pb::edit( state ).layer2Mtu = mtu;
}

void inNwInterfaceStateLayer2DelMtu( struct inNwInterfaceState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).layer2Mtu = -1;
}

pbInt inNwInterfaceStateLayer2SpeedReceive( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2SpeedReceive;
}

pbBool inNwInterfaceStateLayer2HasSpeedReceive( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2SpeedReceive != -1;
}

void inNwInterfaceStateLayer2SetSpeedReceive( struct inNwInterfaceState **state, pbInt bitsPerSecond )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( bitsPerSecond >= 0 );
    pb::edit( state ).layer2SpeedReceive = bitsPerSecond;
}

void inNwInterfaceStateLayer2DelSpeedReceive( struct inNwInterfaceState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).layer2SpeedReceive = -1;
}

pbInt inNwInterfaceStateLayer2SpeedTransmit( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2SpeedTransmit;
}

pbBool inNwInterfaceStateLayer2HasSpeedTransmit( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return state->layer2SpeedTransmit != -1;
}

void inNwInterfaceStateLayer2SetSpeedTransmit( struct inNwInterfaceState **state, pbInt bitsPerSecond )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( bitsPerSecond >= 0 );
    pb::edit( state ).layer2SpeedTransmit = bitsPerSecond;
}

void inNwInterfaceStateLayer2DelSpeedTransmit( struct inNwInterfaceState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).layer2SpeedTransmit = -1;
}

struct pbVector *inNwInterfaceStateLayer3UnicastAddressesVector( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictKeysVector( state->layer3UnicastAddresses.get() );
}

pbInt inNwInterfaceStateLayer3UnicastAddressesLength( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictLength( state->layer3UnicastAddresses.get() );
}

struct inAddress *inNwInterfaceStateLayer3UnicastAddressAt( const struct inNwInterfaceState *state, pbInt index )
{
    PB_ASSERT( state );
    return inAddressFrom( pbDictKeyAt( state->layer3UnicastAddresses.get(), index ) );
}

pbBool inNwInterfaceStateLayer3HasUnicastAddress( const struct inNwInterfaceState *state, const struct inAddress *ina )
{
    PB_ASSERT( state );
    PB_ASSERT( ina );
    return pbDictHasObjKey( state->layer3UnicastAddresses.get(), inAddressObj( ina ) );
}

void inNwInterfaceStateLayer3SetUnicastAddress( struct inNwInterfaceState **state, const struct inAddress *ina )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( ina );
    PB_ASSERT( inAddressIsUnicast( ina ) );
    pbDictSetObjKey( pb::edit( state ).layer3UnicastAddresses.address(), inAddressObj( ina ), inAddressObj( ina ) );
}

void inNwInterfaceStateLayer3DelUnicastAddress( struct inNwInterfaceState **state, const struct inAddress *ina )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( ina );
    pbDictDelObjKey( pb::edit( state ).layer3UnicastAddresses.address(), inAddressObj( ina ) );
}

struct pbVector *inNwInterfaceStateLayer3NetworksVector( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictKeysVector( state->layer3Networks.get() );
}

pbInt inNwInterfaceStateLayer3NetworksLength( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return pbDictLength( state->layer3Networks.get() );
}

struct inNetwork *inNwInterfaceStateLayer3NetworkAt( const struct inNwInterfaceState *state, pbInt index )
{
    PB_ASSERT( state );
    return inNetworkFrom( pbDictKeyAt( state->layer3Networks.get(), index ) );
}

pbBool inNwInterfaceStateLayer3HasNetwork( const struct inNwInterfaceState *state, const struct inNetwork *network )
{
    PB_ASSERT( state );
    PB_ASSERT( network );
    return pbDictHasObjKey( state->layer3Networks.get(), inNetworkObj( network ) );
}

void inNwInterfaceStateLayer3SetNetwork( struct inNwInterfaceState **state, const struct inNetwork *network )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( network );
    pbDictSetObjKey( pb::edit( state ).layer3Networks.address(), inNetworkObj( network ), inNetworkObj( network ) );
}

void inNwInterfaceStateLayer3DelNetwork( struct inNwInterfaceState **state, const struct inNetwork *network )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( network );
    pbDictDelObjKey( pb::edit( state ).layer3Networks.address(), inNetworkObj( network ) );
}

struct pbStore *inNwInterfaceStateStore( const struct inNwInterfaceState *state )
{
    PB_ASSERT( state );
    return in::form::store( *state, form ).release();
}

struct inNwInterfaceState *inNwInterfaceStateRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto state = pb::make<struct inNwInterfaceState>();
    in::form::restore( *state, form, store );
    return state.release();
}
