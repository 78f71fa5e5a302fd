// inUdpPacket: a datagram with its peer; one object beside its payload buffer.
#include "in/udp/in_udp_packet.h"

#include "in/udp/in_udp_address.h"
#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_PACKET )

// Compares by identity.
struct inUdpPacket final : pb::Object<struct inUdpPacket, in___sort_IN_UDP_PACKET> {
    pb::Ref<struct inUdpAddress> remoteAddress; // never null
    pb::Ref<struct pbBuffer> payload;           // never null

    inUdpPacket( pb::Ref<struct inUdpAddress> remoteAddress, pb::Ref<struct pbBuffer> payload )
        : remoteAddress( std::move( remoteAddress ) ), payload( std::move( payload ) )
    {
    }
};

PB_OBJECT_DEFINE( inUdpPacket, in___sort_IN_UDP_PACKET )

struct inUdpPacket *inUdpPacketCreate( const struct inUdpAddress *remoteAddress )
{
    PB_ASSERT( remoteAddress );
    return pb::make<struct inUdpPacket>( pb::share( remoteAddress ), pb::adopt( pbBufferCreate() ) ).release();
}

struct inUdpPacket *inUdpPacketCreateFrom( const struct inUdpPacket *source )
{
    PB_ASSERT( source );
    return pb::make<struct inUdpPacket>( *source ).release();
}

struct inUdpPacket *inUdpPacketCreateWithPayload( const struct inUdpAddress *remoteAddress, const struct pbBuffer *buf )
{
    PB_ASSERT( remoteAddress );
    PB_ASSERT( buf );
    return pb::make<struct inUdpPacket>( pb::share( remoteAddress ), pb::share( buf ) ).release();
}

struct inUdpPacket *inUdpPacketCreateWithPayloadBytes( const struct inUdpAddress *remoteAddress, const void *bytes,
                                                       pbInt byteCount )
{
    PB_ASSERT( remoteAddress );
    PB_ASSERT( bytes || !byteCount );
    PB_ASSERT( byteCount >= 0 );
    return pb::make<struct inUdpPacket>( pb::share( remoteAddress ),
                                         pb::adopt( pbBufferCreateFromBytes( bytes, byteCount ) ) )
        .release();
}

struct inUdpAddress *inUdpPacketRemoteAddress( const struct inUdpPacket *packet )
{
    PB_ASSERT( packet );
    return packet->remoteAddress.share();
}

void inUdpPacketSetRemoteAddress( struct inUdpPacket **packet, const struct inUdpAddress *remoteAddress )
{
    PB_ASSERT( packet );
    PB_ASSERT( *packet );
    PB_ASSERT( remoteAddress );
    pb::edit( packet ).remoteAddress = pb::share( remoteAddress );
}

struct pbBuffer *inUdpPacketPayload( const struct inUdpPacket *packet )
{
    PB_ASSERT( packet );
    return packet->payload.share();
}

pbInt inUdpPacketPayloadLength( const struct inUdpPacket *packet )
{
    PB_ASSERT( packet );
    return pbBufferLength( packet->payload.get() );
}

void inUdpPacketSetPayload( struct inUdpPacket **packet, const struct pbBuffer *buf )
{
    PB_ASSERT( packet );
    PB_ASSERT( *packet );
    PB_ASSERT( buf );
    pb::edit( packet ).payload = pb::share( buf );
}

void inUdpPacketSetPayloadBytes( struct inUdpPacket **packet, const void *bytes, pbInt byteCount )
{
    PB_ASSERT( packet );
    PB_ASSERT( *packet );
    PB_ASSERT( bytes || !byteCount );
    PB_ASSERT( byteCount >= 0 );
    pb::edit( packet ).payload = pb::adopt( pbBufferCreateFromBytes( bytes, byteCount ) );
}

// The parts are appended to a new buffer, since the source may be the payload that they replace.
void inUdpPacketSetPayloadInner( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteOffset,
                                 pbInt byteCount )
{
    PB_ASSERT( packet );
    PB_ASSERT( *packet );
    PB_ASSERT( buf );
    auto payload = pb::adopt( pbBufferCreate() );
    pbBufferAppendInner( payload.address(), buf, byteOffset, byteCount );
    pb::edit( packet ).payload = payload;
}

void inUdpPacketSetPayloadLeading( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteCount )
{
    inUdpPacketSetPayloadInner( packet, buf, 0, byteCount );
}

void inUdpPacketSetPayloadTrailing( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteCount )
{
    PB_ASSERT( buf );
    PB_ASSERT( PB_INT_SUB_OK( pbBufferLength( buf ), byteCount ) );
    inUdpPacketSetPayloadInner( packet, buf, pbBufferLength( buf ) - byteCount, byteCount );
}

void inUdpPacketSetPayloadOuter( struct inUdpPacket **packet, const struct pbBuffer *buf, pbInt byteOffset,
                                 pbInt byteCount )
{
    PB_ASSERT( packet );
    PB_ASSERT( *packet );
    PB_ASSERT( buf );
    auto payload = pb::adopt( pbBufferCreate() );
    pbBufferAppendOuter( payload.address(), buf, byteOffset, byteCount );
    pb::edit( packet ).payload = payload;
}
