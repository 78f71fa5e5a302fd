// Announcing an IPv4 address to the link of an interface: gratuitous ARP (RFC 5227, section 3).
#include "in/nw/in_nw_interface_imp_arp.hpp"

#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_mac_address.h"
#include "pb/pb_time.h"
#include "unix/unix_error.h"

#include <algorithm>
#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>

namespace {

constexpr int announcements = 3;
constexpr pbInt pauseMilliseconds = 5;

pb::Ref<struct inNwMacAddress> macAddressOf( const struct inNwInterfaceState *state )
{
    for ( pbInt index = 0; index < inNwInterfaceStateLayer2AddressesLength( state ); ++index ) {
        const auto address = pb::adopt( inNwInterfaceStateLayer2AddressAt( state, index ) );
        if ( inNwAddressHasMac( address.get() ) )
            return pb::adopt( inNwAddressMac( address.get() ) );
    }
    return nullptr;
}

void traceError( struct trStream *trace, const char *format )
{
    tr::text( trace, format, pb::adopt( unixErrorToString( errno ) ) );
}

} // namespace

std::array<uint8_t, 42> in::gratuitousArpFrame( const struct inNwMacAddress *mac, const struct inAddress *address )
{
    std::array<uint8_t, 42> frame = {};
    auto end = frame.begin();
    const auto put = [&end]( const uint8_t *bytes, size_t count ) { end = std::copy_n( bytes, count, end ); };
    constexpr uint8_t everybody[] = { 0xff, 0xff, 0xff, 0xff, 0xff, 0xff };
    constexpr uint8_t nobody[6] = {};
    constexpr uint8_t requestOfIpv4OverEthernet[] = { 0x08, 0x06, 0, 1, 0x08, 0x00, 6, 4, 0, 1 };
    put( everybody, 6 );
    put( inNwMacAddressBacking( mac ), 6 );
    put( requestOfIpv4OverEthernet, sizeof requestOfIpv4OverEthernet );
    put( inNwMacAddressBacking( mac ), 6 );
    put( inAddressBacking( address ), 4 );
    put( nobody, 6 );
    put( inAddressBacking( address ), 4 );
    return frame;
}

void in___NwInterfaceImpTrySendGratuitousArp( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress )
{
    struct trStream *const trace = imp->trace.get();
    if ( !inAddressIsV4( inAddress ) ) {
        tr::text( trace, "[in___NwInterfaceImpTrySendGratuitousArp()] inAddressVersion(): %~s",
                  pb::adopt( inAddressVersionToString( inAddressVersion( inAddress ) ) ) );
        return;
    }
    const auto mac = macAddressOf( imp->extState.get() );
    if ( !mac ) {
        tr::text( trace, "[in___NwInterfaceImpTrySendGratuitousArp()] macAddress: null" );
        return;
    }
    const auto frame = in::gratuitousArpFrame( mac.get(), inAddress );
    sockaddr_ll link = {};
    link.sll_family = AF_PACKET;
    link.sll_ifindex = static_cast<int>( if_nametoindex( imp->name.c_str() ) );
    link.sll_halen = ETH_ALEN;
    if ( link.sll_ifindex == 0 ) {
        traceError( trace, "[in___NwInterfaceImpTrySendGratuitousArp()] if_nametoindex(): %~s" );
        return;
    }
    const pb::Fd socket( ::socket( AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons( ETH_P_ALL ) ) );
    if ( !socket ) {
        traceError( trace, "[in___NwInterfaceImpTrySendGratuitousArp()] socket(): %~s" );
        return;
    }
    for ( int announcement = 0; announcement < announcements; ++announcement ) {
        if ( announcement > 0 )
            pbSleep( pauseMilliseconds );
        if ( sendto( socket.get(), frame.data(), frame.size(), 0, reinterpret_cast<const sockaddr *>( &link ),
                     sizeof link ) < 0 )
            traceError( trace, "[in___NwInterfaceImpTrySendGratuitousArp()] sendto(): %~s" );
    }
}
