// UDP sockets and the thread that serves them. A channel is known by its identifier, a slot of a fixed table; using an
// identifier that is not given out aborts. docs/udp-backend.md tells how callers, thread and release meet.
// Threads: any, concurrently also on one channel; the caller sees to it that nothing is under way on a channel when it
//          is released. No operation blocks, except that Release waits until the thread is not inside the channel.
#ifndef IN_IMP_UDP_UNIX_INTERNAL_H
#define IN_IMP_UDP_UNIX_INTERNAL_H

#include "pb/pb_obj.h"

#include <memory>

PB_DECLS_BEGIN

struct inAddress;
struct inQosStack;
struct inUdpAddress;
struct inUdpPacket;
struct pbAlertable;
struct pbSignalable;
struct pbString;

#define IN___IMP_UDP_CHANNEL_INVALID PB_INT_FROM( -1 )
#define IN___IMP_UDP_CHANNEL_OK( chan ) ( ( chan ) >= 0 )

// Start the I/O thread; stop it, when no channel is left.
void in___ImpUdpChannelStartup( void );
void in___ImpUdpChannelShutdown( void );

// For in___ImpUdpChannelTryCreate and TryCreateRtp alone. Port IN_UDP_PORT_INVALID: as the system chooses.
// IN___IMP_UDP_CHANNEL_INVALID, and nothing left behind, when the system refuses or the table is full.
pbInt in___ImpUdpChannelTryAllocate( const struct inAddress *localAddress, pbInt optionalLocalPort, uint64_t flags,
                                     struct inQosStack *optionalQosStack, const struct pbString *optionalInterface );

// As reported by the system after binding.
struct inUdpAddress *in___ImpUdpChannelLocalAddress( pbInt chan );
uint64_t in___ImpUdpChannelFlags( pbInt chan );
struct inQosStack *in___ImpUdpChannelQosStack( pbInt chan ); // or null
pbBool in___ImpUdpChannelHasQosStack( pbInt chan );
struct pbString *in___ImpUdpChannelInterface( pbInt chan ); // or null
pbBool in___ImpUdpChannelHasInterface( pbInt chan );
pbBool in___ImpUdpChannelIsMulticast( pbInt chan );

// The socket has failed, for good.
pbBool in___ImpUdpChannelError( pbInt chan );
void in___ImpUdpChannelErrorAddSignalable( pbInt chan, struct pbSignalable *signalable );
void in___ImpUdpChannelErrorDelSignalable( pbInt chan, struct pbSignalable *signalable );

// One datagram; what the system refuses is lost.
void in___ImpUdpChannelSendBytes( pbInt chan, const struct inUdpAddress *remoteAddress, const void *bytes,
                                  pbInt byteCount );
// The oldest queued packet; null when there is none, and always after an error.
struct inUdpPacket *in___ImpUdpChannelReceive( pbInt chan );
// The alert is set exactly while packets are queued, also after an error.
void in___ImpUdpChannelReceiveAddAlertable( pbInt chan, struct pbAlertable *alertable );
void in___ImpUdpChannelReceiveDelAlertable( pbInt chan, struct pbAlertable *alertable );

PB_DECLS_END

struct in___ImpUdpUnixChannel;
struct in___ImpUdpUnixChannelFree {
    void operator()( struct in___ImpUdpUnixChannel *channel ) const noexcept;
};
using in___ImpUdpUnixChannelRecord = std::unique_ptr<struct in___ImpUdpUnixChannel, in___ImpUdpUnixChannelFree>;

// For in___ImpUdpChannelDestroy alone. The channel is closed and its identifier free; what it referred to goes with the
// record, which the caller drops when it holds no monitor.
[[nodiscard]] in___ImpUdpUnixChannelRecord in___ImpUdpChannelRelease( pbInt chan );

#endif
