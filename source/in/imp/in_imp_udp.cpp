// Port selection for UDP channels: ports of a range, and RTP/RTCP pairs.
#include "in/imp/in_imp_udp_internal.h"

#include "in/imp/in_imp_udp_bound_ports.hpp"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_dict.h"
#include "pb/pb_global.hpp"
#include "pb/pb_monitor.hpp"
#include "pb/pb_random.h"

#include <algorithm>
#include <vector>

namespace {

constexpr pbInt portMax = 65535;
constexpr size_t rejectedMax = 100; // bounds the search for a pair

// Held over bind and the like on purpose: what a search finds free stays free until it has taken it.
pb::Monitor in___ImpUdpMonitor{ 70 };
// What unicast channels of this process are bound to: the addresses with their ports.
constinit pb::Global<struct pbDict> in___ImpUdpAddressesDict PB_GUARDED_BY( in___ImpUdpMonitor );

// What the channels of one creation have in common.
struct Request {
    const struct inAddress *localAddress;
    const struct inUdpPortRange *optionalPortRange;
    uint64_t flags;
    struct inQosStack *optionalQosStack;
    const struct pbString *optionalInterface;
};

pbInt tryAllocate( const Request &request, pbInt optionalPort )
{
    return in___ImpUdpChannelTryAllocate( request.localAddress, optionalPort, request.flags, request.optionalQosStack,
                                          request.optionalInterface );
}

pbInt tryAllocateFromRange( const Request &request ) PB_REQUIRES( in___ImpUdpMonitor )
{
    const pbInt count = inUdpPortRangeCount( request.optionalPortRange );
    if ( count == 0 )
        return IN___IMP_UDP_CHANNEL_INVALID;
    const pbInt first = inUdpPortRangeFirstPort( request.optionalPortRange );
    const pbInt last = std::min( first + count - 1, portMax );
    pbInt port = pbRandomNonNegativeIntRange( first, last );
    for ( pbInt attempt = 0; attempt < count; ++attempt ) {
        if ( !in___ImpUdpBoundPortsHas( in___ImpUdpAddressesDict.get(), request.localAddress, port ) ) {
            const pbInt chan = tryAllocate( request, port );
            if ( IN___IMP_UDP_CHANNEL_OK( chan ) )
                return chan;
        }
        port = port < last ? port + 1 : first;
    }
    return IN___IMP_UDP_CHANNEL_INVALID;
}

// The dictionary's operation on the address that a channel is bound to.
void applyToBound( void ( *operation )( struct pbDict **addresses, const struct inAddress *address, pbInt port ),
                   pbInt chan ) PB_REQUIRES( in___ImpUdpMonitor )
{
    const auto bound = pb::adopt( in___ImpUdpChannelLocalAddress( chan ) );
    operation( in___ImpUdpAddressesDict.address(), pb::adopt( inUdpAddressAddress( bound.get() ) ).get(),
               inUdpAddressPort( bound.get() ) );
}

pbInt tryCreate( const Request &request, pbInt optionalPort ) PB_REQUIRES( in___ImpUdpMonitor )
{
    const bool fromRange = request.optionalPortRange && optionalPort == IN_UDP_PORT_INVALID;
    const pbInt chan = fromRange ? tryAllocateFromRange( request ) : tryAllocate( request, optionalPort );
    if ( IN___IMP_UDP_CHANNEL_OK( chan ) && !in___ImpUdpChannelIsMulticast( chan ) )
        applyToBound( in___ImpUdpBoundPortsAdd, chan );
    return chan;
}

pbInt localPort( pbInt chan )
{
    return inUdpAddressPort( pb::adopt( in___ImpUdpChannelLocalAddress( chan ) ).get() );
}

// The whole range counts here, also what lies above the last port.
bool partnerPortOk( const struct inUdpPortRange *optionalRange, pbInt port )
{
    if ( !IN_UDP_PORT_OK( port ) )
        return false;
    if ( !optionalRange )
        return true;
    const pbInt first = inUdpPortRangeFirstPort( optionalRange );
    return port >= first && port <= first + inUdpPortRangeCount( optionalRange ) - 1;
}

struct Pair {
    pbInt rtp = IN___IMP_UDP_CHANNEL_INVALID;
    pbInt rtcp = IN___IMP_UDP_CHANNEL_INVALID;
};

// Channels without a partner stay open in rejected, so that the next choice cannot be the same port again.
Pair tryCreatePair( const Request &request, std::vector<pbInt> &rejected ) PB_REQUIRES( in___ImpUdpMonitor )
{
    while ( rejected.size() <= rejectedMax ) {
        const pbInt chan = tryCreate( request, IN_UDP_PORT_INVALID );
        if ( !IN___IMP_UDP_CHANNEL_OK( chan ) )
            break;
        const pbInt port = localPort( chan );
        const bool even = port % 2 == 0;
        const pbInt partnerPort = even ? port + 1 : port - 1;
        if ( partnerPortOk( request.optionalPortRange, partnerPort ) ) {
            const pbInt partner = tryCreate( request, partnerPort );
            if ( IN___IMP_UDP_CHANNEL_OK( partner ) )
                return even ? Pair{ chan, partner } : Pair{ partner, chan };
        }
        rejected.push_back( chan );
    }
    return {};
}

} // namespace

extern "C" {

void in___ImpUdpStartup( void )
{
    const pb::Guard guard( in___ImpUdpMonitor );
    in___ImpUdpAddressesDict.set( pb::adopt( pbDictCreate() ) );
}

void in___ImpUdpShutdown( void )
{
    const pb::Guard guard( in___ImpUdpMonitor );
    in___ImpUdpAddressesDict.invalidate();
}

pbInt in___ImpUdpChannelTryCreate( const struct inAddress *localAddress, pbInt optionalLocalPort,
                                   const struct inUdpPortRange *optionalPortRange, uint64_t flags,
                                   struct inQosStack *optionalQosStack, const struct pbString *optionalInterface )
{
    PB_ASSERT( localAddress );
    PB_ASSERT( optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort ) );
    const pb::Guard guard( in___ImpUdpMonitor );
    return tryCreate( { localAddress, optionalPortRange, flags, optionalQosStack, optionalInterface },
                      optionalLocalPort );
}

void in___ImpUdpChannelTryCreateRtp( pbInt *rtpChannel, pbInt *rtcpChannel, const struct inAddress *localAddress,
                                     const struct inUdpPortRange *optionalPortRange, uint64_t flags,
                                     struct inQosStack *optionalQosStack )
{
    PB_ASSERT( rtpChannel );
    PB_ASSERT( rtcpChannel );
    PB_ASSERT( localAddress );
    *rtpChannel = *rtcpChannel = IN___IMP_UDP_CHANNEL_INVALID;
    std::vector<pbInt> rejected;
    Pair pair;
    {
        const pb::Guard guard( in___ImpUdpMonitor );
        pair = tryCreatePair( { localAddress, optionalPortRange, flags, optionalQosStack, nullptr }, rejected );
    }
    for ( const pbInt chan : rejected )
        in___ImpUdpChannelDestroy( chan );
    *rtpChannel = pair.rtp;
    *rtcpChannel = pair.rtcp;
}

void in___ImpUdpChannelDestroy( pbInt chan )
{
    in___ImpUdpUnixChannelRecord record; // goes after the monitor has been left: it may end foreign objects
    const pb::Guard guard( in___ImpUdpMonitor );
    if ( !in___ImpUdpChannelIsMulticast( chan ) )
        applyToBound( in___ImpUdpBoundPortsRemove, chan );
    record = in___ImpUdpChannelRelease( chan );
}

} // extern "C"
