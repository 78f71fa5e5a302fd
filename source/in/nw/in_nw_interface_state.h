// inNwInterfaceState: what is known of a network interface at one moment, a value. Sets have no duplicates and are in
// ascending order. Orders field by field in the order below, absent first.
#ifndef IN_NW_INTERFACE_STATE_H
#define IN_NW_INTERFACE_STATE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inNetwork;
struct inNwAddress;
struct inNwInterfaceState;
struct pbStore;
struct pbString;
struct pbVector;

IN_API const struct pbSort *inNwInterfaceStateSort( void );
IN_API struct inNwInterfaceState *inNwInterfaceStateRetain( const struct inNwInterfaceState *obj );
IN_API void inNwInterfaceStateRelease( const struct inNwInterfaceState *obj );
IN_API struct pbObj *inNwInterfaceStateObj( const struct inNwInterfaceState *obj );
IN_API struct inNwInterfaceState *inNwInterfaceStateFrom( struct pbObj *obj );
IN_API struct pbString *inNwInterfaceStateToString( const struct inNwInterfaceState *obj );
IN_API pbInt inNwInterfaceStateCompare( const struct inNwInterfaceState *a, const struct inNwInterfaceState *b );
IN_API pbBool inNwInterfaceStateEquals( const struct inNwInterfaceState *a, const struct inNwInterfaceState *b );

// Nothing known.
IN_API struct inNwInterfaceState *inNwInterfaceStateCreate( void );
IN_API struct inNwInterfaceState *inNwInterfaceStateCreateFrom( const struct inNwInterfaceState *source );

// True when the interface is gone for good.
IN_API pbBool inNwInterfaceStateEnd( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateSetEnd( struct inNwInterfaceState **state, pbBool end );

// Null when absent.
IN_API struct pbString *inNwInterfaceStateDisplayName( const struct inNwInterfaceState *state );
IN_API pbBool inNwInterfaceStateHasDisplayName( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateSetDisplayName( struct inNwInterfaceState **state, const struct pbString *displayName );
IN_API void inNwInterfaceStateDelDisplayName( struct inNwInterfaceState **state );

// IN_NW_INTERFACE_STATUS_..., -1 when unknown.
IN_API pbInt inNwInterfaceStateStatus( const struct inNwInterfaceState *state );
IN_API pbBool inNwInterfaceStateHasStatus( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateSetStatus( struct inNwInterfaceState **state, pbInt status );
IN_API void inNwInterfaceStateDelStatus( struct inNwInterfaceState **state );

// IN_NW_INTERFACE_FLAG_...; unknown bits are dropped.
IN_API uint64_t inNwInterfaceStateFlags( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateSetFlags( struct inNwInterfaceState **state, uint64_t flags );

// Hardware addresses; index 0..length - 1.
IN_API struct pbVector *inNwInterfaceStateLayer2AddressesVector( const struct inNwInterfaceState *state );
IN_API pbInt inNwInterfaceStateLayer2AddressesLength( const struct inNwInterfaceState *state );
IN_API struct inNwAddress *inNwInterfaceStateLayer2AddressAt( const struct inNwInterfaceState *state, pbInt index );
IN_API pbBool inNwInterfaceStateLayer2HasAddress( const struct inNwInterfaceState *state,
                                                  const struct inNwAddress *address );
IN_API void inNwInterfaceStateLayer2SetAddress( struct inNwInterfaceState **state, const struct inNwAddress *address );
IN_API void inNwInterfaceStateLayer2DelAddress( struct inNwInterfaceState **state, const struct inNwAddress *address );

// Bytes; -1 when unknown.
IN_API pbInt inNwInterfaceStateLayer2Mtu( const struct inNwInterfaceState *state );
IN_API pbBool inNwInterfaceStateLayer2HasMtu( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateLayer2SetMtu( struct inNwInterfaceState **state, pbInt mtu );
IN_API void inNwInterfaceStateLayer2DelMtu( struct inNwInterfaceState **state );

// Bits per second; -1 when unknown. A driver that does not know its speed may give 4294967295000000.
IN_API pbInt inNwInterfaceStateLayer2SpeedReceive( const struct inNwInterfaceState *state );
IN_API pbBool inNwInterfaceStateLayer2HasSpeedReceive( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateLayer2SetSpeedReceive( struct inNwInterfaceState **state, pbInt bitsPerSecond );
IN_API void inNwInterfaceStateLayer2DelSpeedReceive( struct inNwInterfaceState **state );
IN_API pbInt inNwInterfaceStateLayer2SpeedTransmit( const struct inNwInterfaceState *state );
IN_API pbBool inNwInterfaceStateLayer2HasSpeedTransmit( const struct inNwInterfaceState *state );
IN_API void inNwInterfaceStateLayer2SetSpeedTransmit( struct inNwInterfaceState **state, pbInt bitsPerSecond );
IN_API void inNwInterfaceStateLayer2DelSpeedTransmit( struct inNwInterfaceState **state );

// Unicast addresses; others abort the setter.
IN_API struct pbVector *inNwInterfaceStateLayer3UnicastAddressesVector( const struct inNwInterfaceState *state );
IN_API pbInt inNwInterfaceStateLayer3UnicastAddressesLength( const struct inNwInterfaceState *state );
IN_API struct inAddress *inNwInterfaceStateLayer3UnicastAddressAt( const struct inNwInterfaceState *state,
                                                                   pbInt index );
IN_API pbBool inNwInterfaceStateLayer3HasUnicastAddress( const struct inNwInterfaceState *state,
                                                         const struct inAddress *ina );
IN_API void inNwInterfaceStateLayer3SetUnicastAddress( struct inNwInterfaceState **state, const struct inAddress *ina );
IN_API void inNwInterfaceStateLayer3DelUnicastAddress( struct inNwInterfaceState **state, const struct inAddress *ina );

// The networks that the addresses are in.
IN_API struct pbVector *inNwInterfaceStateLayer3NetworksVector( const struct inNwInterfaceState *state );
IN_API pbInt inNwInterfaceStateLayer3NetworksLength( const struct inNwInterfaceState *state );
IN_API struct inNetwork *inNwInterfaceStateLayer3NetworkAt( const struct inNwInterfaceState *state, pbInt index );
IN_API pbBool inNwInterfaceStateLayer3HasNetwork( const struct inNwInterfaceState *state,
                                                  const struct inNetwork *network );
IN_API void inNwInterfaceStateLayer3SetNetwork( struct inNwInterfaceState **state, const struct inNetwork *network );
IN_API void inNwInterfaceStateLayer3DelNetwork( struct inNwInterfaceState **state, const struct inNetwork *network );

// Keys "end", "flags", "layer2Addresses", "layer3UnicastAddresses" and "layer3Networks" always, "displayName",
// "status", "layer2Mtu", "layer2SpeedReceive" and "layer2SpeedTransmit" when known.
IN_API struct pbStore *inNwInterfaceStateStore( const struct inNwInterfaceState *state );
// Bad values are ignored.
IN_API struct inNwInterfaceState *inNwInterfaceStateRestore( const struct pbStore *store );

PB_DECLS_END

#endif
