// Opens UDP sockets of the library. The library answers a refusal with null and a trace; a plain socket that tries the
// same afterwards learns the system's reason.
#include "inctl/udp_opening.hpp"

#include "inctl/endpoint.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/items.hpp"
#include "inctl/socket_address.hpp"

#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_network.h"
#include "in/base/in_options.h"
#include "in/udp/in_udp_channels_vector.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_string.hpp"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <net/if.h>
#include <netinet/in.h>

namespace inctl {
namespace {

constexpr pbInt channelLimit = 16384;

// The error of binding, or of joining where interface is not null; 0 when the system has nothing against it.
int probe( const struct inAddress *address, pbInt port, const std::string *interface )
{
    const SocketAddress local( address, port );
    const PlainSocket probed( local );
    if ( probed.descriptor() < 0 )
        return errno;
    const int on = 1;
    if ( interface ) // should it fail, bind says why
        (void)setsockopt( probed.descriptor(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on );
    if ( bind( probed.descriptor(), local.get(), local.length ) != 0 )
        return errno;
    if ( !interface )
        return 0;
    group_req request{};
    request.gr_interface = interface->empty() ? 0 : if_nametoindex( interface->c_str() );
    request.gr_group = local.storage;
    const int level = local.isV4() ? IPPROTO_IP : IPPROTO_IPV6;
    return setsockopt( probed.descriptor(), level, MCAST_JOIN_GROUP, &request, sizeof request ) == 0 ? 0 : errno;
}

Failure systemRefusal( int error, const std::string &address, pbInt port )
{
    switch ( error ) {
    case EADDRINUSE:
        return { Exit::System, fmt::format( "port {} on {} is in use", port, address ) };
    case EADDRNOTAVAIL:
        return { Exit::System, fmt::format( "the address {} is not on this host any more", address ) };
    case EACCES:
    case EPERM:
        return { Exit::Permission,
                 fmt::format( "port {} needs the capability CAP_NET_BIND_SERVICE (ports below the system's "
                              "ip_unprivileged_port_start are kept for it)",
                              port ) };
    case EMFILE:
    case ENFILE:
        return { Exit::System, fmt::format( "no more descriptors: {}; see ulimit -n", std::strerror( error ) ) };
    case 0:
        return { Exit::System, fmt::format( "the system has nothing against it, so the table of {} channels is full",
                                            channelLimit ) };
    default:
        return { Exit::System, fmt::format( "port {} on {}: {}", port, address, std::strerror( error ) ) };
    }
}

// What the options ask of an address, for a stack that has found none.
Failure noAddress( const struct inStack *stack )
{
    const auto options = pb::adopt( inStackOptions( stack ) );
    std::string wanted;
    if ( const auto address = pb::adopt( inOptionsAddress( options.get() ) ) )
        wanted += " " + text( address );
    if ( const auto network = pb::adopt( inOptionsNetwork( options.get() ) ) )
        wanted += " in the network " + pb::utf8( pb::adopt( inNetworkToString( network.get() ) ) );
    if ( const auto interface = pb::adopt( inOptionsInterface( options.get() ) ) )
        wanted += " on the interface " + pb::utf8( interface );
    if ( inOptionsHasAddressVersion( options.get() ) )
        wanted += inOptionsAddressVersion( options.get() ) == IN_ADDRESS_VERSION_4 ? " of IPv4" : " of IPv6";
    if ( inOptionsFlags( options.get() ) & IN_FLAG_LOOPBACK_ONLY )
        wanted += " for loopback";
    return { Exit::System, fmt::format( "the host has no address{}; see: inctl interfaces", wanted ) };
}

// Why the stack gives no channel, or, with pair, no two on neighbouring ports.
Failure channelRefusal( const struct inStack *stack, pbInt port, bool pair )
{
    const auto address = pb::adopt( inStackAddress( stack ) );
    if ( !address )
        return noAddress( stack );
    if ( port != IN_UDP_PORT_INVALID )
        return systemRefusal( probe( address.get(), port, nullptr ), text( address ), port );
    const auto options = pb::adopt( inStackOptions( stack ) );
    const auto udpOptions = pb::adopt( inOptionsUdpOptions( options.get() ) );
    const auto range = pb::adopt( inUdpOptionsPortRange( udpOptions.get() ) );
    if ( !range )
        return systemRefusal( probe( address.get(), 0, nullptr ), text( address ), 0 );
    const pbInt first = inUdpPortRangeFirstPort( range.get() );
    const pbInt last = std::min<pbInt>( first + inUdpPortRangeCount( range.get() ) - 1, 65535 );
    if ( last < first )
        return { Exit::System, "the stack's port range is empty" };
    // A reason other than "in use" is the same for every port, and says more.
    if ( const int error = probe( address.get(), first, nullptr ); error != 0 && error != EADDRINUSE )
        return systemRefusal( error, text( address ), first );
    return { Exit::System, fmt::format( "the ports {}..{} on {} {}", first, last, text( address ),
                                        pair ? "hold no free even port with its odd neighbour" : "are all in use" ) };
}

} // namespace

pb::Ref<struct inUdpChannel> openChannel( struct inStack *stack, struct inQosStack *optionalQos, pbInt port,
                                          uint64_t flags )
{
    if ( auto channel =
             pb::adopt( inUdpChannelTryCreate( stack, optionalQos, nullptr, nullptr, port, flags, nullptr ) ) )
        return channel;
    throw channelRefusal( stack, port, false );
}

std::pair<pb::Ref<struct inUdpChannel>, pb::Ref<struct inUdpChannel>> openRtpPair( struct inStack *stack,
                                                                                   struct inQosStack *optionalQos )
{
    const auto pair = pb::adopt( inUdpChannelsVectorTryCreateRtp( stack, optionalQos, nullptr, nullptr, 0, nullptr ) );
    if ( !pair )
        throw channelRefusal( stack, IN_UDP_PORT_INVALID, true );
    const auto channels = items( pair, inUdpChannelFrom );
    return { channels.at( 0 ), channels.at( 1 ) };
}

pb::Ref<struct inUdpMulticastReceiver> openGroup( const struct inAddress *group, const std::string &interface,
                                                  pbInt port )
{
    const pb::String name = interface.empty() ? pb::String() : pb::string( interface );
    if ( auto receiver = pb::adopt( inUdpMulticastReceiverTryCreate( group, name.get(), port, nullptr ) ) )
        return receiver;
    const int error = probe( group, port, &interface );
    const std::string groupText = pb::utf8( pb::adopt( inAddressToString( group ) ) );
    // Joining is refused so when no interface has a route for multicast.
    if ( error == ENODEV || error == EADDRNOTAVAIL )
        throw Failure{ Exit::System,
                       fmt::format( "no interface takes the group {}; name one with --interface", groupText ) };
    throw systemRefusal( error, groupText, port );
}

} // namespace inctl
