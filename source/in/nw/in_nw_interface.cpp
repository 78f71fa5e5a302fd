// inNwInterface: the public handle of an interface, over its imp.
#include "in/base/in_network.h"
#include "in/nw/in_nw_interface_imp_linux_internal.h"
#include "in/nw/in_nw_interface_internal.h"
#include "in/nw/in_nw_interface_status.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_NW_INTERFACE )

struct inNwInterface final : pb::Object<struct inNwInterface, in___sort_IN_NW_INTERFACE> {
    const pb::Ref<struct in___NwInterfaceImp> imp;

    explicit inNwInterface( struct in___NwInterfaceImp *imp ) : imp( pb::share( imp ) ) {}
};

PB_OBJECT_DEFINE( inNwInterface, in___sort_IN_NW_INTERFACE )

struct inNwInterface *in___NwInterfaceCreate( struct in___NwInterfaceImp *imp )
{
    PB_ASSERT( imp );
    return pb::make<struct inNwInterface>( imp ).release();
}

struct pbString *inNwInterfaceIdentifier( const struct inNwInterface *iface )
{
    PB_ASSERT( iface );
    return in___NwInterfaceImpIdentifier( iface->imp.get() );
}

struct inNwInterfaceState *inNwInterfaceState( const struct inNwInterface *iface )
{
    PB_ASSERT( iface );
    return in___NwInterfaceImpState( iface->imp.get() );
}

void inNwInterfaceUpdateAddSignalable( struct inNwInterface *iface, struct pbSignalable *signalable )
{
    PB_ASSERT( iface );
    in___NwInterfaceImpUpdateAddSignalable( iface->imp.get(), signalable );
}

void inNwInterfaceUpdateDelSignalable( struct inNwInterface *iface, struct pbSignalable *signalable )
{
    PB_ASSERT( iface );
    in___NwInterfaceImpUpdateDelSignalable( iface->imp.get(), signalable );
}

void inNwInterfaceTraceCompleteAnchor( struct inNwInterface *iface, struct trAnchor *anchor )
{
    PB_ASSERT( iface );
    in___NwInterfaceImpTraceCompleteAnchor( iface->imp.get(), anchor );
}

pbBool in___NwInterfaceTrySetStatus( struct inNwInterface *iface, pbInt status, pbInt *optionalError )
{
    PB_ASSERT( iface );
    PB_ASSERT( IN_NW_INTERFACE_STATUS_OK( status ) );
    return in___NwInterfaceImpTrySetStatus( iface->imp.get(), status, optionalError );
}

pbBool in___NwInterfaceTrySetLayer3UnicastAddress( struct inNwInterface *iface, const struct inAddress *inAddress,
                                                   const struct inNetwork *optionalInNetwork, pbInt *optionalError )
{
    PB_ASSERT( iface );
    PB_ASSERT( inAddress );
    PB_ASSERT( !optionalInNetwork || inNetworkContainsAddress( optionalInNetwork, inAddress ) );
    return in___NwInterfaceImpTrySetLayer3UnicastAddress( iface->imp.get(), inAddress, optionalInNetwork,
                                                          optionalError );
}

pbBool in___NwInterfaceTryDelLayer3UnicastAddress( struct inNwInterface *iface, const struct inAddress *inAddress,
                                                   pbInt *optionalError )
{
    PB_ASSERT( iface );
    PB_ASSERT( inAddress );
    return in___NwInterfaceImpTryDelLayer3UnicastAddress( iface->imp.get(), inAddress, optionalError );
}
