// inUdpPacket: a datagram with its peer: the sender of a received one, the destination of one to send. A value with
// copy on write that compares by identity: equal packets are still two.
#ifndef IN_UDP_PACKET_H
#define IN_UDP_PACKET_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inUdpAddress;
struct inUdpPacket;
struct pbBuffer;
struct pbString;

IN_API const struct pbSort *inUdpPacketSort( void );
IN_API struct inUdpPacket *inUdpPacketRetain( const struct inUdpPacket *obj );
IN_API void inUdpPacketRelease( const struct inUdpPacket *obj );
IN_API struct pbObj *inUdpPacketObj( const struct inUdpPacket *obj );
IN_API struct inUdpPacket *inUdpPacketFrom( struct pbObj *obj );
IN_API struct pbString *inUdpPacketToString( const struct inUdpPacket *obj );
IN_API pbInt inUdpPacketCompare( const struct inUdpPacket *a, const struct inUdpPacket *b );
IN_API pbBool inUdpPacketEquals( const struct inUdpPacket *a, const struct inUdpPacket *b );

// An empty payload.
IN_API struct inUdpPacket *inUdpPacketCreate( const struct inUdpAddress *remoteAddress );
IN_API struct inUdpPacket *inUdpPacketCreateFrom( const struct inUdpPacket *source );
// Shares the buffer.
IN_API struct inUdpPacket *inUdpPacketCreateWithPayload( const struct inUdpAddress *remoteAddress,
                                                         const struct pbBuffer *buf );
// Copies the bytes, which may be null when byteCount is 0.
IN_API struct inUdpPacket *inUdpPacketCreateWithPayloadBytes( const struct inUdpAddress *remoteAddress,
                                                              const void *bytes, pbInt byteCount );

IN_API struct inUdpAddress *inUdpPacketRemoteAddress( const struct inUdpPacket *packet );
IN_API void inUdpPacketSetRemoteAddress( struct inUdpPacket **packet, const struct inUdpAddress *remoteAddress );

// Never null.
IN_API struct pbBuffer *inUdpPacketPayload( const struct inUdpPacket *packet );
IN_API pbInt inUdpPacketPayloadLength( const struct inUdpPacket *packet );
// Shares the buffer.
IN_API void inUdpPacketSetPayload( struct inUdpPacket **packet, const struct pbBuffer *buf );
// Copies the bytes, which may be null when byteCount is 0.
IN_API void inUdpPacketSetPayloadBytes( struct inUdpPacket **packet, const void *bytes, pbInt byteCount );
// The payload becomes part of the buffer, which may be the packet's own payload: its bytes
// byteOffset..byteOffset + byteCount - 1, its first byteCount, its last byteCount, or all but the bytes
// byteOffset..byteOffset + byteCount - 1.
IN_API void inUdpPacketSetPayloadInner( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteOffset,
                                        pbInt byteCount );
IN_API void inUdpPacketSetPayloadLeading( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteCount );
IN_API void inUdpPacketSetPayloadTrailing( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteCount );
IN_API void inUdpPacketSetPayloadOuter( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteOffset,
                                        pbInt byteCount );

PB_DECLS_END

#endif
