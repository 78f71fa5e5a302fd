// in___NwInterfaceImp: reading one interface of a Linux host and publishing what changed.
#include "in/nw/in_nw_interface_imp_linux.hpp"

#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_interface_name.hpp"
#include "in/nw/in_nw_interface_status.h"
#include "in/nw/in_nw_mac_address.h"
#include "pb/pb_store.h"
#include "unix/unix_error.h"

#include <ifaddrs.h>
#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>

namespace {

constexpr pbInt refreshIntervalMilliseconds = 5000;

using State = pb::Ref<struct inNwInterfaceState>;

void readStatus( int socket, ifreq request, State &state )
{
    if ( ioctl( socket, SIOCGIFFLAGS, &request ) == 0 )
        inNwInterfaceStateSetStatus( state.address(), request.ifr_flags & IFF_UP ? IN_NW_INTERFACE_STATUS_UP
                                                                                 : IN_NW_INTERFACE_STATUS_DOWN );
}

void readHardwareAddress( int socket, ifreq request, State &state )
{
    if ( ioctl( socket, SIOCGIFHWADDR, &request ) != 0 || request.ifr_hwaddr.sa_family != ARPHRD_ETHER )
        return;
    const auto *bytes = reinterpret_cast<const uint8_t *>( request.ifr_hwaddr.sa_data );
    const auto mac = pb::adopt( inNwMacAddressCreateFromBytes( bytes ) );
    const auto address = pb::adopt( inNwAddressCreateMac( mac.get() ) );
    inNwInterfaceStateLayer2SetAddress( state.address(), address.get() );
}

void readMtu( int socket, ifreq request, State &state )
{
    if ( ioctl( socket, SIOCGIFMTU, &request ) == 0 && request.ifr_mtu > 0 )
        inNwInterfaceStateLayer2SetMtu( state.address(), request.ifr_mtu );
}

void readSpeed( int socket, ifreq request, State &state )
{
    ethtool_cmd command = {};
    command.cmd = ETHTOOL_GSET;
    request.ifr_data = reinterpret_cast<char *>( &command );
    if ( ioctl( socket, SIOCETHTOOL, &request ) != 0 )
        return;
    // Drivers say all ones when they do not know: as 32 bits that times a million would overflow.
    const pbInt megabitsPerSecond = PB_INT_FROM( uint32_t{ command.speed_hi } << 16 | command.speed );
    inNwInterfaceStateLayer2SetSpeedReceive( state.address(), megabitsPerSecond * 1'000'000 );
    inNwInterfaceStateLayer2SetSpeedTransmit( state.address(), megabitsPerSecond * 1'000'000 );
}

pb::Ref<struct inAddress> addressFrom( const sockaddr *socketAddress )
{
    pb::Ref<struct inAddress> address;
    if ( !socketAddress )
        return address;
    // getifaddrs says no lengths; other families (AF_PACKET) do not convert whatever the length.
    const pbInt length = socketAddress->sa_family == AF_INET6 ? sizeof( sockaddr_in6 ) : sizeof( sockaddr_in );
    if ( !in___ImpSockaddrToAddress( socketAddress, length, address.address() ) )
        address.reset();
    return address;
}

void addLayer3( const ifaddrs &entry, State &state )
{
    const auto address = addressFrom( entry.ifa_addr );
    if ( !address || !inAddressIsUnicast( address.get() ) )
        return;
    inNwInterfaceStateLayer3SetUnicastAddress( state.address(), address.get() );

    const auto netmask = addressFrom( entry.ifa_netmask );
    const pbInt prefixLength = netmask ? in___NwInterfaceImpPrefixLength( netmask.get() ) : -1;
    // A mask of the other family would be longer than the address.
    if ( prefixLength < 0 || prefixLength > inAddressLength( address.get() ) * 8 )
        return;
    const auto network = pb::adopt( inNetworkCreate( address.get(), prefixLength ) );
    inNwInterfaceStateLayer3SetNetwork( state.address(), network.get() );
}

} // namespace

PB_OBJECT_DEFINE( in___NwInterfaceImp, in___sort_IN___NW_INTERFACE_IMP )

in___NwInterfaceImp::in___NwInterfaceImp( const struct pbString *ident )
    : trace( pb::adopt( trStreamCreateCstr( "IN_NW_INTERFACE", -1 ) ) ), identifier( pb::share( ident ) ),
      name( in::interfaceNameOf( ident ) ),
      controlSocket{}
{
    trStreamSetPropertyCstrString( trace.get(), "inNwIdentifier", -1, ident );
    if ( !controlSocket.fd ) {
        trStreamSetNotable( trace.get() );
        tr::text( trace.get(), "[in___NwInterfaceImpCreate()] socket(): -1 (%~s)",
                  pb::adopt( unixErrorToString( controlSocket.error ) ) );
    }
}

void in___NwInterfaceImp::start( struct trAnchor *optionalAnchor )
{
    process = pb::adopt( prProcessCreateWithPriorityCstr( 1, in___NwInterfaceImpProcessFunc, this,
                                                          "in___NwInterfaceImpProcessFunc", -1 ) );
    signalable = pb::adopt( prProcessCreateSignalable( process.get() ) );
    timer = pb::adopt( prProcessCreateTimer( process.get() ) );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, trace.get() );
    run();
}

void in___NwInterfaceImp::run()
{
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( monitor ); // held over the reading on purpose: changes to the interface must not fall between
    PB_ASSERT_TEXT( !ended(), "!inNwInterfaceStateEnd( imp->extState )" );
    if ( endRequested ) {
        inNwInterfaceStateSetEnd( extState.address(), true );
        over = assertUpdate();
        prProcessHalt( process.get() );
        return;
    }
    if ( pbTimerScheduled( timer.get() ) )
        return;
    publish( read() );
    if ( unannounced_ )
        over = assertUpdate();
    pbTimerSchedule( timer.get(), refreshIntervalMilliseconds );
}

void in___NwInterfaceImp::publish( State state )
{
    if ( state == extState )
        return;
    const auto store = pb::adopt( inNwInterfaceStateStore( state.get() ) );
    trStreamSetPropertyCstrStore( trace.get(), "inNwInterfaceState", -1, store.get() );
    extState = std::move( state );
    unannounced_ = true;
}

pb::Ref<struct pbSignal> in___NwInterfaceImp::assertUpdate()
{
    unannounced_ = false;
    pbSignalAssert( update.get() );
    return std::exchange( update, pb::adopt( pbSignalCreate() ) );
}

void in___NwInterfaceImp::refresh()
{
    publish( read() );
    pbTimerUnschedule( timer.get() );
    prProcessSchedule( process.get() );
}

std::optional<ifreq> in___NwInterfaceImp::request() const
{
    ifreq request = {};
    if ( name.size() >= sizeof( request.ifr_name ) || name.find( '\0' ) != name.npos )
        return std::nullopt;
    memcpy( request.ifr_name, name.data(), name.size() );
    return request;
}

State in___NwInterfaceImp::read() const
{
    State state = pb::adopt( inNwInterfaceStateCreate() );
    inNwInterfaceStateSetDisplayName( state.address(), identifier.get() );
    readLink( state );
    readLayer3( state );
    return state;
}

// Each query that fails leaves its fields unset.
void in___NwInterfaceImp::readLink( State &state ) const
{
    const auto named = request();
    if ( !controlSocket.fd || !named )
        return;
    readStatus( controlSocket.fd.get(), *named, state );
    readHardwareAddress( controlSocket.fd.get(), *named, state );
    readMtu( controlSocket.fd.get(), *named, state );
    readSpeed( controlSocket.fd.get(), *named, state );
}

void in___NwInterfaceImp::readLayer3( State &state ) const
{
    ifaddrs *list = nullptr;
    if ( getifaddrs( &list ) != 0 )
        return;
    const std::unique_ptr<ifaddrs, void ( * )( ifaddrs * )> owner( list, freeifaddrs );
    for ( const ifaddrs *entry = list; entry; entry = entry->ifa_next )
        if ( entry->ifa_name && name == entry->ifa_name )
            addLayer3( *entry, state );
}

pbInt in___NwInterfaceImpPrefixLength( const struct inAddress *netmask )
{
    PB_ASSERT( netmask );
    const uint8_t *bytes = inAddressBacking( netmask );
    const pbInt bits = inAddressLength( netmask ) * 8;
    const auto isOne = [bytes]( pbInt bit ) { return bytes[bit / 8] >> ( 7 - bit % 8 ) & 1; };
    pbInt prefixLength = 0;
    while ( prefixLength < bits && isOne( prefixLength ) )
        ++prefixLength;
    if ( prefixLength == bits )
        return -1;
    for ( pbInt bit = prefixLength; bit < bits; ++bit )
        if ( isOne( bit ) )
            return -1;
    return prefixLength;
}

struct in___NwInterfaceImp *in___NwInterfaceImpCreate( const struct pbString *identifier, pbBool canSetStatus,
                                                       struct trAnchor *optionalAnchor )
{
    PB_ASSERT( identifier );
    PB_ASSERT( canSetStatus );
    auto imp = pb::make<struct in___NwInterfaceImp>( identifier );
    imp->start( optionalAnchor );
    return imp.release();
}

void in___NwInterfaceImpProcessFunc( struct pbObj *argument )
{
    PB_ASSERT( argument );
    in___NwInterfaceImpFrom( argument )->run();
}

void in___NwInterfaceImpSetEnd( struct in___NwInterfaceImp *imp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    imp->endRequested = true;
    prProcessSchedule( imp->process.get() );
}

void in___NwInterfaceImpEndWait( struct in___NwInterfaceImp *imp )
{
    PB_ASSERT( imp );
    prProcessEndWait( imp->process.get() );
}

struct pbString *in___NwInterfaceImpIdentifier( const struct in___NwInterfaceImp *imp )
{
    PB_ASSERT( imp );
    return imp->identifier.share();
}

struct inNwInterfaceState *in___NwInterfaceImpState( const struct in___NwInterfaceImp *imp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    return imp->extState.share();
}

void in___NwInterfaceImpUpdateAddSignalable( struct in___NwInterfaceImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalAddSignalable( imp->update.get(), signalable );
}

void in___NwInterfaceImpUpdateDelSignalable( struct in___NwInterfaceImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalDelSignalable( imp->update.get(), signalable );
}

void in___NwInterfaceImpTraceCompleteAnchor( struct in___NwInterfaceImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->trace.get() );
}
