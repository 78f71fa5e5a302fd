// inUdpChannel: a UDP socket on the address of a stack, served by the UDP I/O thread.
// Threads:   any; calls on one channel may run concurrently. None blocks but two: creation waits for other creations,
//            as the choice of a port is serialised, and the last release until the I/O thread has left the channel.
//            Neither may happen with a monitor of rank 70 or more held (docs/threads.md).
// Ownership: retains its stacks; getters return a new reference or null. The last release closes the socket; it must
//            happen before the module's shut-down enters phase two.
// Failures:  TryCreate returns null and traces the failed step. A failed socket shows in Error for good; after that
//            Receive returns null, also when packets had been queued. Send never fails visibly: a datagram that the
//            system refuses is lost, and so is one to a peer that the filter refuses.
#ifndef IN_UDP_CHANNEL_H
#define IN_UDP_CHANNEL_H

#include "in/base/in_api.h"
#include "in/filter/in_filter.h"
#include "in/map/in_map_stack.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inQosStack;
struct inStack;
struct inUdpAddress;
struct inUdpChannel;
struct inUdpPacket;
struct pbAlertable;
struct pbBuffer;
struct pbSignalable;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inUdpChannelSort( void );
IN_API struct inUdpChannel *inUdpChannelRetain( const struct inUdpChannel *obj );
IN_API void inUdpChannelRelease( const struct inUdpChannel *obj );
IN_API struct pbObj *inUdpChannelObj( const struct inUdpChannel *obj );
IN_API struct inUdpChannel *inUdpChannelFrom( struct pbObj *obj );
IN_API struct pbString *inUdpChannelToString( const struct inUdpChannel *obj );
IN_API pbInt inUdpChannelCompare( const struct inUdpChannel *a, const struct inUdpChannel *b );
IN_API pbBool inUdpChannelEquals( const struct inUdpChannel *a, const struct inUdpChannel *b );

// optionalLocalPort: 1..65535, or IN_UDP_PORT_INVALID for one of the port range of the stack's UDP options, else,
// without a range, one that the system chooses. flags: IN_UDP_FLAG_. The map stack must be null until there are any.
// Null when the stack has no address, the port or every port of the range is in use, or the system refuses a socket.
IN_API struct inUdpChannel *inUdpChannelTryCreate( struct inStack *stack, struct inQosStack *optionalQosStack,
                                                   struct inMapStack *optionalMapStack, struct inFilter *optionalFilter,
                                                   pbInt optionalLocalPort, uint64_t flags,
                                                   struct trAnchor *optionalAnchor );

IN_API struct inStack *inUdpChannelStack( const struct inUdpChannel *chan );
IN_API struct inQosStack *inUdpChannelQosStack( const struct inUdpChannel *chan ); // or null
IN_API pbBool inUdpChannelHasQosStack( const struct inUdpChannel *chan );
IN_API struct inMapStack *inUdpChannelMapStack( const struct inUdpChannel *chan ); // or null
IN_API pbBool inUdpChannelHasMapStack( const struct inUdpChannel *chan );
IN_API struct inFilter *inUdpChannelFilter( const struct inUdpChannel *chan ); // or null
IN_API pbBool inUdpChannelHasFilter( const struct inUdpChannel *chan );

// As bound: an unspecified address stays unspecified.
IN_API struct inUdpAddress *inUdpChannelLocalAddress( const struct inUdpChannel *chan );
IN_API uint64_t inUdpChannelFlags( const struct inUdpChannel *chan );
IN_API pbBool inUdpChannelError( const struct inUdpChannel *chan );
IN_API void inUdpChannelErrorAddSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable );
IN_API void inUdpChannelErrorDelSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable );

// Whether the address under which peers reach the channel is known. A channel without a map stack is mapped from the
// start, to its local address.
IN_API pbBool inUdpChannelMapped( const struct inUdpChannel *chan );
IN_API void inUdpChannelMappedAddSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable );
IN_API void inUdpChannelMappedDelSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable );
IN_API struct inUdpAddress *inUdpChannelMappedLocalAddress( const struct inUdpChannel *chan );

// One datagram; byteCount may be 0.
IN_API void inUdpChannelSendBytes( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                   const void *bytes, pbInt byteCount );
IN_API void inUdpChannelSend( struct inUdpChannel *chan, const struct inUdpPacket *packet );
// The whole buffer and parts of it; here the buffer must not be empty and byteCount not 0. Outer sends what remains
// without the bytes byteOffset..byteOffset + byteCount - 1, which may be nothing.
IN_API void inUdpChannelSendBuffer( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                    const struct pbBuffer *buffer );
IN_API void inUdpChannelSendBufferLeading( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                           const struct pbBuffer *buffer, pbInt byteCount );
IN_API void inUdpChannelSendBufferTrailing( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                            const struct pbBuffer *buffer, pbInt byteCount );
IN_API void inUdpChannelSendBufferInner( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                         const struct pbBuffer *buffer, pbInt byteOffset, pbInt byteCount );
IN_API void inUdpChannelSendBufferOuter( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                         const struct pbBuffer *buffer, pbInt byteOffset, pbInt byteCount );

// The oldest packet that has arrived, or null. Packets of peers that the filter refuses are dropped on the way, so that
// a set alert may lead to none.
IN_API struct inUdpPacket *inUdpChannelReceive( struct inUdpChannel *chan );
// The alert is set while packets wait, also after an error: look at Error before waiting for it.
IN_API void inUdpChannelReceiveAddAlertable( struct inUdpChannel *chan, struct pbAlertable *alertable );
IN_API void inUdpChannelReceiveDelAlertable( struct inUdpChannel *chan, struct pbAlertable *alertable );

IN_API void inUdpChannelTraceCompleteAnchor( struct inUdpChannel *chan, struct trAnchor *anchor );

PB_DECLS_END

#endif
