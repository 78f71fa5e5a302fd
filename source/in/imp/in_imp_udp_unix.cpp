// The table of UDP channels, the I/O thread that serves them, and the operations on a channel.
#include "in/imp/in_imp_udp_unix_internal.h"

#include "in/base/in_address.h"
#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "in/imp/in_imp_udp_unix_channel.hpp"
#include "in/imp/in_imp_udp_unix_rest.hpp"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_flags.h"
#include "pb/pb_alert.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_global.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_thread.h"
#include "pb/pb_wake.hpp"
#include "unix/unix_fd_observer.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

PB_SORT_DECLARE( in___sort_IN___IMP_UDP_UNIX_REMAP )

// The channel identifier of each descriptor number, -1 for none. Descriptor numbers are small and dense, so that this
// is an array: the thread asks it for every event.
struct in___ImpUdpUnixRemap final : pb::Object<struct in___ImpUdpUnixRemap, in___sort_IN___IMP_UDP_UNIX_REMAP> {
    std::vector<int32_t> identifiers;

    pbInt at( size_t descriptor ) const { return descriptor < identifiers.size() ? identifiers[descriptor] : -1; }
    void set( size_t descriptor, pbInt chan )
    {
        if ( descriptor >= identifiers.size() )
            identifiers.resize( std::max( descriptor + 1, 2 * identifiers.size() ), -1 );
        identifiers[descriptor] = static_cast<int32_t>( chan );
    }
    void remove( size_t descriptor ) { identifiers[descriptor] = -1; }
};

constinit const struct pbSort in___sort_IN___IMP_UDP_UNIX_REMAP =
    pb::detail::makeSort<struct in___ImpUdpUnixRemap>( "IN___IMP_UDP_UNIX_REMAP" );

namespace {

pb::Monitor allocateReleaseMonitor{ 85 };
// Written with the monitor held. Who uses a channel keeps it from being released, so that reading needs no monitor.
constinit std::atomic<in___ImpUdpUnixChannel *> channelArray[16384];
pbInt channelArrayIndex PB_GUARDED_BY( allocateReleaseMonitor ) = 0; // the slot that was allocated last
constinit pb::Global<struct in___ImpUdpUnixRemap> channelObserverRemap PB_GUARDED_BY( allocateReleaseMonitor );

constinit pb::Global<struct unixFdObserver> channelObserver;
constinit pb::Global<struct pbSignal> channelThreadAbortSignal;
constinit pb::Global<struct pbThread> channelThread;

in___ImpUdpUnixChannel &channelOf( pbInt chan )
{
    PB_ASSERT( IN___IMP_UDP_CHANNEL_OK( chan ) );
    PB_ASSERT( chan < PB_SIZEOF_ARRAY( channelArray ) );
    in___ImpUdpUnixChannel *channel = channelArray[chan].load( std::memory_order_acquire );
    PB_ASSERT_TEXT( channel, "CHAN" );
    return *channel;
}

// -1 when the table is full. The last slot is tried first, so that the identifier of a channel that was destroyed right
// after its creation is given out again.
pbInt freeSlot() PB_REQUIRES( allocateReleaseMonitor )
{
    pbInt slot = channelArrayIndex;
    for ( pbInt probe = 0; probe < PB_SIZEOF_ARRAY( channelArray ); ++probe ) {
        if ( !channelArray[slot].load( std::memory_order_relaxed ) )
            return slot;
        slot = slot + 1 < PB_SIZEOF_ARRAY( channelArray ) ? slot + 1 : 0;
    }
    return IN___IMP_UDP_CHANNEL_INVALID;
}

pbInt tryEnter( std::unique_ptr<in___ImpUdpUnixChannel> &channel ) PB_EXCLUDES( allocateReleaseMonitor )
{
    const pb::Guard guard( allocateReleaseMonitor );
    const pbInt chan = freeSlot();
    if ( !IN___IMP_UDP_CHANNEL_OK( chan ) )
        return chan;
    channelArrayIndex = chan;
    channelObserverRemap.get()->set( static_cast<size_t>( channel->descriptor.get() ), chan );
    channelArray[chan].store( channel.release(), std::memory_order_release );
    return chan;
}

// A descriptor that was reported has a channel: its release waits until the report is over.
in___ImpUdpUnixChannel &channelOfDescriptor( pbInt descriptor ) PB_EXCLUDES( allocateReleaseMonitor )
{
    const pb::Guard guard( allocateReleaseMonitor );
    const pbInt chan = channelObserverRemap.get()->at( static_cast<size_t>( descriptor ) );
    PB_ASSERT_TEXT( IN___IMP_UDP_CHANNEL_OK( chan ), "bi" );
    return *channelArray[chan].load( std::memory_order_relaxed );
}

// Between the report and its end the channel cannot go away; after that its blocked barrier keeps it.
void in___ImpUdpUnixChannelThreadFunc( struct pbObj * )
{
    in___ImpUdpUnixArena arena;
    in___ImpUdpUnixRest rest;
    uint64_t received = 0;
    pb___WakesHoldBegin(); // the observer flushes them before it sleeps
    pbInt descriptor, conditions;
    while ( unixFdObserverWait( channelObserver.get(), channelThreadAbortSignal.get(), &descriptor, &conditions ) ) {
        in___ImpUdpUnixChannel &channel = channelOfDescriptor( descriptor );
        pbBarrierBlock( channel.barrier.get() );
        unixFdObserverUnblock( channelObserver.get() );
        received += in___ImpUdpUnixChannelServe( channel, channelObserver.get(), conditions, arena );
        pbBarrierUnblock( channel.barrier.get() );
        if ( unixFdObserverPending( channelObserver.get() ) )
            continue;
        if ( rest.roundEnds( std::exchange( received, 0 ) ) ) {
            pb___WakesFlush();
            rest.take();
        }
    }
    pb___WakesHoldEnd();
}

} // namespace

extern "C" {

void in___ImpUdpChannelStartup( void )
{
    {
        const pb::Guard guard( allocateReleaseMonitor );
        channelArrayIndex = 0;
        channelObserverRemap.set( pb::make<struct in___ImpUdpUnixRemap>() );
    }
    channelThreadAbortSignal.set( pb::adopt( pbSignalCreate() ) );
    channelObserver.set( pb::adopt( unixFdObserverTryCreate() ) );
    PB_ASSERT_TEXT( channelObserver.get(), "channelObserver" );
    channelThread.set( pb::adopt( pbThreadTrySpawnCstr( "in___ImpUdpUnixChannelThreadFunc()", -1,
                                                        in___ImpUdpUnixChannelThreadFunc, nullptr, 0 ) ) );
    PB_ASSERT_TEXT( channelThread.get(), "channelThread" );
}

void in___ImpUdpChannelShutdown( void )
{
    pbSignalAssert( channelThreadAbortSignal.get() );
    pbThreadJoin( channelThread.get() );
    channelThread.invalidate();
    channelObserver.invalidate();
    channelThreadAbortSignal.invalidate();
    const pb::Guard guard( allocateReleaseMonitor );
    channelObserverRemap.invalidate();
    for ( pbInt i = 0; i < PB_SIZEOF_ARRAY( channelArray ); ++i )
        PB_ASSERT( channelArray[i] == NULL );
}

pbInt in___ImpUdpChannelTryAllocate( const struct inAddress *localAddress, pbInt optionalLocalPort, uint64_t flags,
                                     struct inQosStack *optionalQosStack, const struct pbString *optionalInterface )
{
    PB_ASSERT( localAddress );
    PB_ASSERT( optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort ) );
    flags = inUdpFlagsNormalize( flags );
    auto socket = in___ImpUdpUnixSocketTryOpen( localAddress, optionalLocalPort, flags, optionalQosStack,
                                                optionalInterface );
    if ( !socket )
        return IN___IMP_UDP_CHANNEL_INVALID;
    auto record = std::make_unique<in___ImpUdpUnixChannel>( std::move( *socket ), flags,
                                                            inAddressIsMulticast( localAddress ), optionalQosStack,
                                                            optionalInterface );
    const pbInt chan = tryEnter( record );
    if ( !IN___IMP_UDP_CHANNEL_OK( chan ) )
        return chan;

    in___ImpUdpUnixChannel &channel = channelOf( chan );
    const pb::Guard guard( channel.monitor ); // the thread may serve the first event already
    in___ImpUdpUnixChannelUpdateObserver( channel, channelObserver.get() );
    in___ImpUdpUnixChannelUpdateAlert( channel );
    return chan;
}

struct inUdpAddress *in___ImpUdpChannelLocalAddress( pbInt chan ) { return channelOf( chan ).localAddress.share(); }

uint64_t in___ImpUdpChannelFlags( pbInt chan ) { return channelOf( chan ).flags; }

struct inQosStack *in___ImpUdpChannelQosStack( pbInt chan ) { return channelOf( chan ).qosStack.share(); }

pbBool in___ImpUdpChannelHasQosStack( pbInt chan ) { return PB_BOOL_FROM( channelOf( chan ).qosStack ); }

struct pbString *in___ImpUdpChannelInterface( pbInt chan ) { return channelOf( chan ).interface.share(); }

pbBool in___ImpUdpChannelHasInterface( pbInt chan ) { return PB_BOOL_FROM( channelOf( chan ).interface ); }

pbBool in___ImpUdpChannelIsMulticast( pbInt chan ) { return channelOf( chan ).multicast; }

pbBool in___ImpUdpChannelError( pbInt chan ) { return pbSignalAsserted( channelOf( chan ).errorSignal.get() ); }

void in___ImpUdpChannelErrorAddSignalable( pbInt chan, struct pbSignalable *signalable )
{
    pbSignalAddSignalable( channelOf( chan ).errorSignal.get(), signalable );
}

void in___ImpUdpChannelErrorDelSignalable( pbInt chan, struct pbSignalable *signalable )
{
    pbSignalDelSignalable( channelOf( chan ).errorSignal.get(), signalable );
}

void in___ImpUdpChannelSendBytes( pbInt chan, const struct inUdpAddress *remoteAddress, const void *bytes,
                                  pbInt byteCount )
{
    in___ImpUdpUnixChannel &channel = channelOf( chan );
    PB_ASSERT( remoteAddress );
    PB_ASSERT( bytes || !byteCount );
    PB_ASSERT( byteCount >= 0 );
    sockaddr_storage remote;
    pbInt remoteLength = sizeof remote;
    const bool converted = in___ImpSockaddrFromUdpAddress( &remote, &remoteLength, remoteAddress );

    const pb::Guard guard( channel.monitor );
    if ( converted && !pbSignalAsserted( channel.errorSignal.get() ) )
        // What the system refuses is lost, as any datagram may be.
        (void)sendto( channel.descriptor.get(), bytes, static_cast<size_t>( byteCount ), 0,
                      reinterpret_cast<const sockaddr *>( &remote ), static_cast<socklen_t>( remoteLength ) );
    else
        in___ImpUdpUnixChannelSetError( channel, channelObserver.get() );
}

struct inUdpPacket *in___ImpUdpChannelReceive( pbInt chan )
{
    return in___ImpUdpUnixChannelTake( channelOf( chan ), channelObserver.get() ).release();
}

// With the monitor held, so that an alertable that is added sees the state of the queue and then every change of it.
void in___ImpUdpChannelReceiveAddAlertable( pbInt chan, struct pbAlertable *alertable )
{
    in___ImpUdpUnixChannel &channel = channelOf( chan );
    const pb::Guard guard( channel.monitor );
    pbAlertAddAlertable( channel.receiveAlert.get(), alertable );
}

void in___ImpUdpChannelReceiveDelAlertable( pbInt chan, struct pbAlertable *alertable )
{
    in___ImpUdpUnixChannel &channel = channelOf( chan );
    const pb::Guard guard( channel.monitor );
    pbAlertDelAlertable( channel.receiveAlert.get(), alertable );
}

} // extern "C"

in___ImpUdpUnixChannelRecord in___ImpUdpChannelRelease( pbInt chan )
{
    in___ImpUdpUnixChannelRecord channel( &channelOf( chan ) );
    {
        const pb::Guard guard( channel->monitor );
        in___ImpUdpUnixChannelSetError( *channel, channelObserver.get() );
    }
    pbBarrierPass( channel->barrier.get() );

    const pb::Guard guard( allocateReleaseMonitor );
    channelObserverRemap.get()->remove( static_cast<size_t>( channel->descriptor.get() ) );
    channel->descriptor.reset();
    channelArray[chan].store( nullptr, std::memory_order_relaxed );
    return channel;
}

void in___ImpUdpUnixChannelFree::operator()( struct in___ImpUdpUnixChannel *channel ) const noexcept
{
    delete channel;
}
