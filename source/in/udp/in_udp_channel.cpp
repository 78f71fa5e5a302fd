// inUdpChannel: a stack's channel over a socket of the UDP backend, filtered and traced.
#include "in/udp/in_udp_channel.h"

#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/imp/in_imp_udp_internal.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_channel_internal.h"
#include "in/udp/in_udp_flags.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_packet.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_buffer.h"
#include "pb/pb_signalable.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_CHANNEL )

struct inUdpChannel final : pb::Object<struct inUdpChannel, in___sort_IN_UDP_CHANNEL> {
    inUdpChannel( pb::Ref<struct trStream> stream, struct inStack *stack, struct inFilter *optionalFilter,
                  pbInt intImpUdpChannel )
        : stream( std::move( stream ) ), stack( pb::share( stack ) ), filter( pb::share( optionalFilter ) ),
          intImpUdpChannel( intImpUdpChannel )
    {}
    ~inUdpChannel()
    {
        const bool error = in___ImpUdpChannelError( intImpUdpChannel );
        if ( error )
            trStreamSetNotable( stream.get() );
        tr::text( stream.get(), "[in___UdpChannelFreeFunc()] error: %b", error );
        in___ImpUdpChannelDestroy( intImpUdpChannel );
    }
    inUdpChannel( const inUdpChannel & ) = delete;

    // Fixed after construction.
    const pb::Ref<struct trStream> stream;
    const pb::Ref<struct inStack> stack;
    const pb::Ref<struct inFilter> filter; // or null
    const pbInt intImpUdpChannel; // owned; has the QoS stack and the flags
};

PB_OBJECT_DEFINE( inUdpChannel, in___sort_IN_UDP_CHANNEL )

namespace {

pbInt impOf( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    PB_ASSERT_TEXT( IN___IMP_UDP_CHANNEL_OK( chan->intImpUdpChannel ),
                    "chan->intMapUdpChannel || IN___IMP_UDP_CHANNEL_OK( chan->intImpUdpChannel )" );
    return chan->intImpUdpChannel;
}

pb::Ref<struct trStream> openStream( struct inStack *stack, struct inQosStack *optionalQosStack,
                                     struct inFilter *optionalFilter, struct trAnchor *optionalAnchor )
{
    auto stream = pb::adopt( trStreamCreateCstr( "IN_UDP_CHANNEL", -1 ) );
    trStreamSetPayloadTypeCstr( stream.get(), "PB_BUFFER", -1 );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, stream.get() );
    inStackTraceCompleteAnchor( stack, pb::adopt( trAnchorCreate( stream.get(), TR_ANCHOR_KIND_STACK ) ).get() );
    if ( optionalQosStack )
        inQosStackTraceCompleteAnchor( optionalQosStack,
                                       pb::adopt( trAnchorCreate( stream.get(), TR_ANCHOR_KIND_USE ) ).get() );
    if ( optionalFilter )
        inFilterTraceCompleteAnchor( optionalFilter,
                                     pb::adopt( trAnchorCreate( stream.get(), TR_ANCHOR_KIND_USE ) ).get() );
    return stream;
}

void traceFlags( struct trStream *stream, uint64_t flags )
{
    trStreamSetPropertyCstrString( stream, "inUdpFlags", -1, pb::adopt( inUdpFlagsToString( flags ) ).get() );
}

struct inUdpChannel *create( pb::Ref<struct trStream> stream, struct inStack *stack, struct inFilter *optionalFilter,
                             pbInt intImpUdpChannel )
{
    const auto localAddress = pb::adopt( in___ImpUdpChannelLocalAddress( intImpUdpChannel ) );
    trStreamSetPropertyCstrString( stream.get(), "inLocalUdpAddress", -1,
                                   pb::adopt( inUdpAddressToString( localAddress.get() ) ).get() );
    return pb::make<struct inUdpChannel>( std::move( stream ), stack, optionalFilter, intImpUdpChannel ).release();
}

bool permits( const struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress )
{
    return !chan->filter || inFilterCheckUdpAddress( chan->filter.get(), remoteAddress );
}

void traceFiltered( const struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress )
{
    trStreamSetPropertyCstrString( chan->stream.get(), "inFilteredUdpAddress", -1,
                                   pb::adopt( inUdpAddressToString( remoteAddress ) ).get() );
}

// IN___IMP_UDP_CHANNEL_INVALID, and the reason traced, when it cannot be had.
pbInt tryCreateImp( struct trStream *stream, const struct inStack *stack, struct inQosStack *optionalQosStack,
                    pbInt optionalLocalPort, uint64_t flags )
{
    const auto localAddress = pb::adopt( inStackAddress( stack ) );
    if ( !localAddress ) {
        trStreamSetNotable( stream );
        tr::text( stream, "[inUdpChannelTryCreate()] in___ImpUdpChannelTryCreate(): inStackAddress(): null" );
        return IN___IMP_UDP_CHANNEL_INVALID;
    }
    const auto stackOptions = pb::adopt( inStackOptions( stack ) );
    const auto udpOptions = pb::adopt( inOptionsUdpOptions( stackOptions.get() ) );
    const auto portRange = pb::adopt( inUdpOptionsPortRange( udpOptions.get() ) );
    const pbInt chan = in___ImpUdpChannelTryCreate( localAddress.get(), optionalLocalPort, portRange.get(), flags,
                                                    optionalQosStack, nullptr );
    if ( !IN___IMP_UDP_CHANNEL_OK( chan ) ) {
        trStreamSetNotable( stream );
        tr::text( stream,
                  "[inUdpChannelTryCreate()] in___ImpUdpChannelTryCreate(): IN___IMP_UDP_CHANNEL_INVALID" );
    }
    return chan;
}

} // namespace

extern "C" {

struct inUdpChannel *inUdpChannelTryCreate( struct inStack *stack, struct inQosStack *optionalQosStack,
                                            struct inMapStack *optionalMapStack, struct inFilter *optionalFilter,
                                            pbInt optionalLocalPort, uint64_t flags, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort ) );
    PB_ASSERT_TEXT( !optionalMapStack, "!optionalMapStack: there is no address mapping yet" );
    flags = inUdpFlagsNormalize( flags );
    auto stream = openStream( stack, optionalQosStack, optionalFilter, optionalAnchor );
    tr::text( stream.get(), "[inUdpChannelTryCreate()] optionalLocalPort: %i", optionalLocalPort );
    traceFlags( stream.get(), flags );
    const pbInt chan = tryCreateImp( stream.get(), stack, optionalQosStack, optionalLocalPort, flags );
    return IN___IMP_UDP_CHANNEL_OK( chan ) ? create( std::move( stream ), stack, optionalFilter, chan ) : nullptr;
}

struct inUdpChannel *in___UdpChannelCreate( struct inStack *stack, struct inFilter *optionalFilter,
                                            pbInt intImpUdpChannel, struct trAnchor *optionalAnchor )
{
    const auto qosStack = pb::adopt( in___ImpUdpChannelQosStack( intImpUdpChannel ) );
    auto stream = openStream( stack, qosStack.get(), optionalFilter, optionalAnchor );
    traceFlags( stream.get(), in___ImpUdpChannelFlags( intImpUdpChannel ) );
    return create( std::move( stream ), stack, optionalFilter, intImpUdpChannel );
}

struct inStack *inUdpChannelStack( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return chan->stack.share();
}

struct inQosStack *inUdpChannelQosStack( const struct inUdpChannel *chan )
{
    return in___ImpUdpChannelQosStack( impOf( chan ) );
}

pbBool inUdpChannelHasQosStack( const struct inUdpChannel *chan )
{
    return in___ImpUdpChannelHasQosStack( impOf( chan ) );
}

struct inMapStack *inUdpChannelMapStack( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return nullptr;
}

pbBool inUdpChannelHasMapStack( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return 0;
}

struct inFilter *inUdpChannelFilter( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return chan->filter.share();
}

pbBool inUdpChannelHasFilter( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return PB_BOOL_FROM( chan->filter );
}

struct inUdpAddress *inUdpChannelLocalAddress( const struct inUdpChannel *chan )
{
    return in___ImpUdpChannelLocalAddress( impOf( chan ) );
}

uint64_t inUdpChannelFlags( const struct inUdpChannel *chan ) { return in___ImpUdpChannelFlags( impOf( chan ) ); }

pbBool inUdpChannelError( const struct inUdpChannel *chan ) { return in___ImpUdpChannelError( impOf( chan ) ); }

void inUdpChannelErrorAddSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable )
{
    in___ImpUdpChannelErrorAddSignalable( impOf( chan ), signalable );
}

void inUdpChannelErrorDelSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable )
{
    in___ImpUdpChannelErrorDelSignalable( impOf( chan ), signalable );
}

pbBool inUdpChannelMapped( const struct inUdpChannel *chan )
{
    PB_ASSERT( chan );
    return 1;
}

void inUdpChannelMappedAddSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable )
{
    PB_ASSERT( chan );
    pbSignalableSignal( signalable );
}

void inUdpChannelMappedDelSignalable( struct inUdpChannel *chan, struct pbSignalable *signalable )
{
    PB_ASSERT( chan );
    PB_ASSERT( signalable );
}

struct inUdpAddress *inUdpChannelMappedLocalAddress( const struct inUdpChannel *chan )
{
    return inUdpChannelLocalAddress( chan );
}

void inUdpChannelSendBytes( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress, const void *bytes,
                            pbInt byteCount )
{
    const pbInt imp = impOf( chan );
    PB_ASSERT( remoteAddress );
    PB_ASSERT( bytes || !byteCount );
    PB_ASSERT( byteCount >= 0 );
    if ( !permits( chan, remoteAddress ) ) {
        tr::text( chan->stream.get(), "[inUdpChannelSendBytes()] inFilterCheckUdpAddress(): false" );
        traceFiltered( chan, remoteAddress );
        return;
    }
    if ( trSystemAcceptsHighVolumeMessages() )
        tr::message( chan->stream.get(), pb::adopt( pbBufferCreateFromBytes( bytes, byteCount ) ).get(),
                     "[inUdpChannelSendBytes()] bytesSent: %i, remoteAddress: %o", byteCount, remoteAddress );
    in___ImpUdpChannelSendBytes( imp, remoteAddress, bytes, byteCount );
}

void inUdpChannelSend( struct inUdpChannel *chan, const struct inUdpPacket *packet )
{
    PB_ASSERT( packet );
    const auto remoteAddress = pb::adopt( inUdpPacketRemoteAddress( packet ) );
    const auto payload = pb::adopt( inUdpPacketPayload( packet ) );
    inUdpChannelSendBytes( chan, remoteAddress.get(), pbBufferBacking( payload.get() ),
                           pbBufferLength( payload.get() ) );
}

void inUdpChannelSendBuffer( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                             const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    inUdpChannelSendBufferInner( chan, remoteAddress, buffer, 0, pbBufferLength( buffer ) );
}

void inUdpChannelSendBufferLeading( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                    const struct pbBuffer *buffer, pbInt byteCount )
{
    inUdpChannelSendBufferInner( chan, remoteAddress, buffer, 0, byteCount );
}

void inUdpChannelSendBufferTrailing( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                     const struct pbBuffer *buffer, pbInt byteCount )
{
    PB_ASSERT( buffer );
    PB_ASSERT( byteCount > 0 );
    PB_ASSERT( pbBufferLength( buffer ) >= byteCount );
    inUdpChannelSendBufferInner( chan, remoteAddress, buffer, pbBufferLength( buffer ) - byteCount, byteCount );
}

void inUdpChannelSendBufferInner( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                  const struct pbBuffer *buffer, pbInt byteOffset, pbInt byteCount )
{
    PB_ASSERT( buffer );
    PB_ASSERT( byteOffset >= 0 );
    PB_ASSERT( byteCount > 0 );
    PB_ASSERT( PB_INT_ADD_OK( byteOffset, byteCount ) );
    PB_ASSERT( pbBufferLength( buffer ) >= byteOffset + byteCount );
    inUdpChannelSendBytes( chan, remoteAddress, pbBufferBacking( buffer ) + byteOffset, byteCount );
}

void inUdpChannelSendBufferOuter( struct inUdpChannel *chan, const struct inUdpAddress *remoteAddress,
                                  const struct pbBuffer *buffer, pbInt byteOffset, pbInt byteCount )
{
    PB_ASSERT( buffer );
    PB_ASSERT( byteOffset >= 0 );
    PB_ASSERT( byteCount > 0 );
    PB_ASSERT( PB_INT_ADD_OK( byteOffset, byteCount ) );
    PB_ASSERT( pbBufferLength( buffer ) >= byteOffset + byteCount );
    auto outer = pb::adopt( pbBufferCreate() );
    pbBufferAppendOuter( outer.address(), buffer, byteOffset, byteCount );
    inUdpChannelSendBytes( chan, remoteAddress, pbBufferBacking( outer.get() ), pbBufferLength( outer.get() ) );
}

// Takes refused packets out of the queue, too: only one that is permitted ends it, or none.
struct inUdpPacket *inUdpChannelReceive( struct inUdpChannel *chan )
{
    const pbInt imp = impOf( chan );
    while ( !in___ImpUdpChannelError( imp ) ) {
        auto packet = pb::adopt( in___ImpUdpChannelReceive( imp ) );
        if ( !packet )
            return nullptr;
        const bool everyPacket = trSystemAcceptsHighVolumeMessages();
        const auto remoteAddress =
            everyPacket || chan->filter ? pb::adopt( inUdpPacketRemoteAddress( packet.get() ) ) : nullptr;
        if ( everyPacket )
            tr::message( chan->stream.get(), pb::adopt( inUdpPacketPayload( packet.get() ) ).get(),
                         "[inUdpChannelReceive()] bytesReceived: %i, remoteAddress: %o",
                         inUdpPacketPayloadLength( packet.get() ), remoteAddress );
        if ( permits( chan, remoteAddress.get() ) )
            return packet.release();
        if ( everyPacket )
            tr::text( chan->stream.get(), "[inUdpChannelReceive()] inFilterCheckUdpAddress(): false" );
        traceFiltered( chan, remoteAddress.get() );
    }
    return nullptr;
}

void inUdpChannelReceiveAddAlertable( struct inUdpChannel *chan, struct pbAlertable *alertable )
{
    in___ImpUdpChannelReceiveAddAlertable( impOf( chan ), alertable );
}

void inUdpChannelReceiveDelAlertable( struct inUdpChannel *chan, struct pbAlertable *alertable )
{
    in___ImpUdpChannelReceiveDelAlertable( impOf( chan ), alertable );
}

void inUdpChannelTraceCompleteAnchor( struct inUdpChannel *chan, struct trAnchor *anchor )
{
    PB_ASSERT( chan );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, chan->stream.get() );
}

} // extern "C"
