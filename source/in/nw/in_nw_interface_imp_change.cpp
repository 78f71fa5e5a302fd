// in___NwInterfaceImp: changing the status and the addresses of an interface.
#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/nw/in_nw_interface_imp_arp.hpp"
#include "in/nw/in_nw_interface_imp_linux.hpp"
#include "in/nw/in_nw_interface_imp_rtnetlink.hpp"
#include "in/nw/in_nw_interface_status.h"

#include <linux/rtnetlink.h>
#include <sys/ioctl.h>

namespace {

// What a change came to: no error, or the number that says why it was not made (0 where nothing says so).
using Outcome = std::optional<int>;
constexpr Outcome done = std::nullopt;

pbBool report( const Outcome &failure, pbInt *optionalError )
{
    if ( failure && optionalError )
        *optionalError = *failure;
    return !failure;
}

bool isUp( const ifreq &request ) { return request.ifr_flags & IFF_UP; }

// Only the flags read back tell whether the kernel did it.
Outcome changeStatus( int socket, ifreq request, bool up, bool &changed )
{
    if ( ioctl( socket, SIOCGIFFLAGS, &request ) != 0 )
        return errno;
    if ( isUp( request ) == up )
        return done;
    request.ifr_flags = static_cast<short>( request.ifr_flags ^ IFF_UP );
    const int error = ioctl( socket, SIOCSIFFLAGS, &request ) != 0 ? errno : 0;
    if ( ioctl( socket, SIOCGIFFLAGS, &request ) != 0 )
        return errno;
    changed = isUp( request ) == up;
    return changed ? done : error;
}

Outcome setStatus( struct in___NwInterfaceImp *imp, pbInt status ) PB_REQUIRES( imp->monitor )
{
    const auto request = imp->request();
    if ( imp->ended() )
        return ENODEV;
    if ( !imp->controlSocket.fd )
        return imp->controlSocket.error;
    if ( !request )
        return ENAMETOOLONG;
    bool changed = false;
    const Outcome failure =
        changeStatus( imp->controlSocket.fd.get(), *request, status == IN_NW_INTERFACE_STATUS_UP, changed );
    if ( changed )
        imp->refresh();
    return failure;
}

Outcome setAddress( struct in___NwInterfaceImp *imp, const struct inAddress *address, pbInt prefixLength )
    PB_REQUIRES( imp->monitor )
{
    if ( imp->ended() )
        return ENODEV;
    const Outcome failure = in___NwInterfaceImpRtnetlinkTryModifyAddress( imp, address, prefixLength, RTM_NEWADDR,
                                                                          NLM_F_REPLACE | NLM_F_CREATE );
    if ( failure )
        return failure;
    if ( inAddressIsV4( address ) )
        in___NwInterfaceImpTrySendGratuitousArp( imp, address );
    imp->refresh();
    return done;
}

Outcome delAddress( struct in___NwInterfaceImp *imp, const struct inAddress *address ) PB_REQUIRES( imp->monitor )
{
    if ( imp->ended() )
        return ENODEV;
    if ( !inNwInterfaceStateLayer3HasUnicastAddress( imp->extState.get(), address ) ) {
        tr::text( imp->trace.get(), "[in___NwInterfaceImpTryDelLayer3UnicastAddress()] "
                                    "inNwInterfaceStateLayer3HasUnicastAddress(): false" );
        return done;
    }
    const Outcome failure = in___NwInterfaceImpRtnetlinkTryModifyAddress( imp, address, inAddressLength( address ) * 8,
                                                                          RTM_DELADDR, 0 );
    if ( !failure )
        imp->refresh();
    return failure;
}

} // namespace

pbBool in___NwInterfaceImpTrySetStatus( struct in___NwInterfaceImp *imp, pbInt status, pbInt *optionalError )
{
    PB_ASSERT( imp );
    PB_ASSERT( IN_NW_INTERFACE_STATUS_OK( status ) );
    tr::text( imp->trace.get(), "[in___NwInterfaceImpTrySetStatus()] %~o",
              pb::adopt( inNwInterfaceStatusToString( status ) ) );
    pb::Guard guard( imp->monitor ); // held over the system calls on purpose
    return report( setStatus( imp, status ), optionalError );
}

pbBool in___NwInterfaceImpTrySetLayer3UnicastAddress( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress,
                                                      const struct inNetwork *optionalInNetwork, pbInt *optionalError )
{
    PB_ASSERT( imp );
    PB_ASSERT( inAddress );
    PB_ASSERT( !optionalInNetwork || inNetworkContainsAddress( optionalInNetwork, inAddress ) );
    tr::text( imp->trace.get(), "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] inAddress: %o", inAddress );
    tr::text( imp->trace.get(), "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] optionalInNetwork: %o",
              optionalInNetwork );
    const pbInt prefixLength = optionalInNetwork && inNetworkHasPrefixLength( optionalInNetwork )
                                   ? inNetworkPrefixLength( optionalInNetwork )
                                   : inAddressLength( inAddress ) * 8;
    pb::Guard guard( imp->monitor ); // held over the request and the announcement on purpose
    return report( setAddress( imp, inAddress, prefixLength ), optionalError );
}

pbBool in___NwInterfaceImpTryDelLayer3UnicastAddress( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress,
                                                      pbInt *optionalError )
{
    PB_ASSERT( imp );
    PB_ASSERT( inAddress );
    tr::text( imp->trace.get(), "[in___NwInterfaceImpTryDelLayer3UnicastAddress()] inAddress: %o", inAddress );
    pb::Guard guard( imp->monitor ); // held over the request on purpose
    return report( delAddress( imp, inAddress ), optionalError );
}
