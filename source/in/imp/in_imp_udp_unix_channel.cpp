// What happens to the record of a UDP channel: serving its events, taking packets, watching its descriptor.
#include "in/imp/in_imp_udp_unix_channel.hpp"

#include "in/imp/in_imp_sockaddr_unix_internal.h"
#include "in/udp/in_udp_flags.h"
#include "in/udp/in_udp_packet.h"
#include "pb/pb_alert.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_signal.h"
#include "unix/unix_fd_observer.h"

#include <algorithm>

namespace {

// Reading resumes at half the limit, not at each packet taken from a full queue.
constexpr size_t resumeBelow = in___ImpUdpUnixQueue::limit / 2 + 2; // packets queued before the one that is taken

// Enough to fill the queue. Datagrams that are dropped do not fill it, and the thread has other channels to serve.
constexpr int batchesPerEvent = in___ImpUdpUnixQueue::limit / in___ImpUdpUnixArena::slotCount;

// False for a source that no answer could reach: port 0.
bool enqueue( in___ImpUdpUnixChannel &channel, const in___ImpUdpUnixArena::Datagram &datagram )
    PB_REQUIRES( channel.monitor )
{
    if ( !in___ImpSockaddrUpdateUdpAddress( datagram.source, datagram.sourceLength, channel.remote.address() ) )
        return false;
    channel.queue.push( pb::adopt(
        inUdpPacketCreateWithPayloadBytes( channel.remote.get(), datagram.bytes, datagram.byteCount ) ) );
    return true;
}

struct Batch {
    size_t received;
    bool more; // may wait
};

// Never receives more than the queue can take.
Batch receiveBatch( in___ImpUdpUnixChannel &channel, in___ImpUdpUnixArena &arena, size_t wanted )
    PB_REQUIRES( channel.monitor )
{
    const size_t room = in___ImpUdpUnixQueue::limit - channel.queue.size();
    const size_t asked = std::min( wanted, room );
    const size_t received = arena.receive( channel.descriptor.get(), asked );
    bool more = received == asked;
    for ( size_t index = 0; index < received; ++index ) {
        const auto datagram = arena.at( index );
        if ( enqueue( channel, datagram ) && datagram.byteCount == 0 )
            more = false; // an empty datagram ends the drain
    }
    channel.queueFull = channel.queue.size() > in___ImpUdpUnixQueue::limit - 1;
    channel.pace.learn( received );
    return { received, more && !channel.queueFull };
}

// The number of datagrams. Whatever is left is reported again: the observer is level-triggered.
size_t drain( in___ImpUdpUnixChannel &channel, in___ImpUdpUnixArena &arena ) PB_REQUIRES( channel.monitor )
{
    if ( channel.queueFull )
        return 0;
    if ( channel.pace.oneByOne() )
        return receiveBatch( channel, arena, 1 ).received;
    size_t received = 0;
    for ( int batch = 0; batch < batchesPerEvent; ++batch ) {
        const Batch got = receiveBatch( channel, arena, in___ImpUdpUnixArena::slotCount );
        received += got.received;
        if ( !got.more )
            break;
    }
    return received;
}

} // namespace

in___ImpUdpUnixChannel::in___ImpUdpUnixChannel( in___ImpUdpUnixSocket socket, uint64_t flags, bool multicast,
                                                struct inQosStack *optionalQosStack,
                                                const struct pbString *optionalInterface )
    : localAddress( std::move( socket.localAddress ) ), flags( flags ), qosStack( pb::share( optionalQosStack ) ),
      interface( pb::share( optionalInterface ) ), multicast( multicast ), barrier( pb::adopt( pbBarrierCreate( 0 ) ) ),
      errorSignal( pb::adopt( pbSignalCreate() ) ), receiveAlert( pb::adopt( pbAlertCreate() ) ),
      descriptor( std::move( socket.descriptor ) )
{}

void in___ImpUdpUnixChannelUpdateObserver( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver )
{
    const int fd = channel.descriptor.get();
    if ( !pbSignalAsserted( channel.errorSignal.get() ) ) {
        const bool reads = !channel.queueFull && !( channel.flags & IN_UDP_FLAG_NO_RECEIVE );
        const pbInt wanted = UNIX_FD_CONDITION_ERROR | ( reads ? UNIX_FD_CONDITION_READABLE : 0 );
        if ( wanted == channel.observedConditions )
            return;
        if ( unixFdObserverTrySetConditions( channelObserver, fd, wanted ) ) {
            channel.observedConditions = wanted;
            return;
        }
        pbSignalAssert( channel.errorSignal.get() );
    }
    if ( !channel.observedConditions )
        return;
    if ( !unixFdObserverTrySetConditions( channelObserver, fd, 0 ) )
        PB_ASSERT( unixFdObserverError( channelObserver ) );
    channel.observedConditions = 0;
}

void in___ImpUdpUnixChannelUpdateAlert( in___ImpUdpUnixChannel &channel )
{
    const bool waiting = !channel.queue.empty();
    if ( waiting == channel.alerted )
        return;
    channel.alerted = waiting;
    if ( waiting )
        pbAlertSet( channel.receiveAlert.get() );
    else
        pbAlertUnset( channel.receiveAlert.get() );
}

void in___ImpUdpUnixChannelSetError( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver )
{
    pbSignalAssert( channel.errorSignal.get() );
    in___ImpUdpUnixChannelUpdateObserver( channel, channelObserver );
    in___ImpUdpUnixChannelUpdateAlert( channel );
}

size_t in___ImpUdpUnixChannelServe( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver,
                                    pbInt conditions, in___ImpUdpUnixArena &arena )
{
    const pb::Guard guard( channel.monitor );
    const size_t received = conditions & UNIX_FD_CONDITION_READABLE ? drain( channel, arena ) : 0;
    if ( conditions & UNIX_FD_CONDITION_ERROR )
        pbSignalAssert( channel.errorSignal.get() );
    in___ImpUdpUnixChannelUpdateObserver( channel, channelObserver );
    in___ImpUdpUnixChannelUpdateAlert( channel );
    return received;
}

pb::Ref<struct inUdpPacket> in___ImpUdpUnixChannelTake( in___ImpUdpUnixChannel &channel,
                                                        struct unixFdObserver *channelObserver )
{
    const pb::Guard guard( channel.monitor );
    if ( channel.queue.empty() || pbSignalAsserted( channel.errorSignal.get() ) )
        return nullptr;
    if ( channel.queue.size() < resumeBelow )
        channel.queueFull = false;
    auto packet = channel.queue.pop();
    in___ImpUdpUnixChannelUpdateObserver( channel, channelObserver );
    in___ImpUdpUnixChannelUpdateAlert( channel );
    return packet;
}
