// inUdpMulticastReceiver: a socket of the UDP backend joined to a group, traced, with blocking receives.
#include "in/udp/in_udp_multicast_receiver.h"

#include "in/base/in_address.h"
#include "in/imp/in_imp_udp_internal.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_packet.h"
#include "pb/pb_alertable.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_MULTICAST_RECEIVER )

struct inUdpMulticastReceiver final
    : pb::Object<struct inUdpMulticastReceiver, in___sort_IN_UDP_MULTICAST_RECEIVER> {
    inUdpMulticastReceiver( pb::Ref<struct trStream> stream, pbInt intImpUdpChannel )
        : stream( std::move( stream ) ), intImpUdpChannel( intImpUdpChannel )
    {}
    ~inUdpMulticastReceiver() { in___ImpUdpChannelDestroy( intImpUdpChannel ); }
    inUdpMulticastReceiver( const inUdpMulticastReceiver & ) = delete;

    // Fixed after construction.
    const pb::Ref<struct trStream> stream;
    const pbInt intImpUdpChannel; // owned
};

PB_OBJECT_DEFINE( inUdpMulticastReceiver, in___sort_IN_UDP_MULTICAST_RECEIVER )

namespace {

pbInt impOf( const struct inUdpMulticastReceiver *recv )
{
    PB_ASSERT( recv );
    PB_ASSERT( IN___IMP_UDP_CHANNEL_OK( recv->intImpUdpChannel ) );
    return recv->intImpUdpChannel;
}

pb::Ref<struct trStream> openStream( const struct inAddress *multicastAddress, const struct pbString *optionalInterface,
                                     pbInt optionalLocalPort, struct trAnchor *optionalAnchor )
{
    auto stream = pb::adopt( trStreamCreateCstr( "IN_UDP_MULTICAST_RECEIVER", -1 ) );
    trStreamSetPayloadTypeCstr( stream.get(), "PB_BUFFER", -1 );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, stream.get() );
    trStreamSetPropertyCstrString( stream.get(), "inMulticastAddress", -1,
                                   pb::adopt( inAddressToString( multicastAddress ) ).get() );
    if ( optionalLocalPort != IN_UDP_PORT_INVALID )
        trStreamSetPropertyCstrInt( stream.get(), "inMulticastPort", -1, optionalLocalPort );
    if ( optionalInterface )
        trStreamSetPropertyCstrString( stream.get(), "inMulticastInterface", -1, optionalInterface );
    return stream;
}

} // namespace

extern "C" {

struct inUdpMulticastReceiver *inUdpMulticastReceiverTryCreate( const struct inAddress *multicastAddress,
                                                                const struct pbString *optionalInterface,
                                                                pbInt optionalLocalPort,
                                                                struct trAnchor *optionalAnchor )
{
    PB_ASSERT( multicastAddress );
    PB_ASSERT( inAddressIsMulticast( multicastAddress ) );
    PB_ASSERT( optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort ) );
    auto stream = openStream( multicastAddress, optionalInterface, optionalLocalPort, optionalAnchor );
    const pbInt chan = in___ImpUdpChannelTryCreate( multicastAddress, optionalLocalPort, nullptr, 0, nullptr,
                                                    optionalInterface );
    if ( !IN___IMP_UDP_CHANNEL_OK( chan ) ) {
        trStreamSetNotable( stream.get() );
        tr::text( stream.get(),
                  "[inUdpMulticastReceiverTryCreate()] in___ImpUdpChannelTryCreate(): IN___IMP_UDP_CHANNEL_INVALID" );
        return nullptr;
    }
    return pb::make<struct inUdpMulticastReceiver>( std::move( stream ), chan ).release();
}

struct inUdpAddress *inUdpMulticastReceiverLocalAddress( const struct inUdpMulticastReceiver *recv )
{
    return in___ImpUdpChannelLocalAddress( impOf( recv ) );
}

struct pbString *inUdpMulticastReceiverInterface( const struct inUdpMulticastReceiver *recv )
{
    return in___ImpUdpChannelInterface( impOf( recv ) );
}

pbBool inUdpMulticastReceiverHasInterface( const struct inUdpMulticastReceiver *recv )
{
    return in___ImpUdpChannelHasInterface( impOf( recv ) );
}

pbBool inUdpMulticastReceiverError( const struct inUdpMulticastReceiver *recv )
{
    return in___ImpUdpChannelError( impOf( recv ) );
}

void inUdpMulticastReceiverErrorAddSignalable( struct inUdpMulticastReceiver *recv, struct pbSignalable *signalable )
{
    in___ImpUdpChannelErrorAddSignalable( impOf( recv ), signalable );
}

void inUdpMulticastReceiverErrorDelSignalable( struct inUdpMulticastReceiver *recv, struct pbSignalable *signalable )
{
    in___ImpUdpChannelErrorDelSignalable( impOf( recv ), signalable );
}

struct inUdpPacket *inUdpMulticastReceiverReceive( struct inUdpMulticastReceiver *recv )
{
    const pbInt imp = impOf( recv );
    if ( in___ImpUdpChannelError( imp ) )
        return nullptr;
    auto packet = pb::adopt( in___ImpUdpChannelReceive( imp ) );
    if ( packet && trSystemAcceptsHighVolumeMessages() )
        tr::message( recv->stream.get(), pb::adopt( inUdpPacketPayload( packet.get() ) ).get(),
                     "[inUdpMulticastReceiverReceive()] bytesReceived: %i, remoteAddress: %o",
                     inUdpPacketPayloadLength( packet.get() ), pb::adopt( inUdpPacketRemoteAddress( packet.get() ) ) );
    return packet.release();
}

void inUdpMulticastReceiverReceiveAddAlertable( struct inUdpMulticastReceiver *recv, struct pbAlertable *alertable )
{
    in___ImpUdpChannelReceiveAddAlertable( impOf( recv ), alertable );
}

void inUdpMulticastReceiverReceiveDelAlertable( struct inUdpMulticastReceiver *recv, struct pbAlertable *alertable )
{
    in___ImpUdpChannelReceiveDelAlertable( impOf( recv ), alertable );
}

void inUdpMulticastReceiverReceiveWait( struct inUdpMulticastReceiver *recv, struct pbSignal *optionalAbortSignal )
{
    const pbInt imp = impOf( recv );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) ); // opened by whichever comes first
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    in___ImpUdpChannelErrorAddSignalable( imp, signalable.get() );
    in___ImpUdpChannelReceiveAddAlertable( imp, alertable.get() );
    if ( optionalAbortSignal )
        pbSignalAddBarrier( optionalAbortSignal, barrier.get() );
    pbBarrierPass( barrier.get() );
    if ( optionalAbortSignal )
        pbSignalDelBarrier( optionalAbortSignal, barrier.get() );
    in___ImpUdpChannelReceiveDelAlertable( imp, alertable.get() );
    in___ImpUdpChannelErrorDelSignalable( imp, signalable.get() );
}

struct inUdpPacket *inUdpMulticastReceiverBlockReceive( struct inUdpMulticastReceiver *recv,
                                                        struct pbSignal *optionalAbortSignal )
{
    for ( ;; ) {
        // First, since after an error the alert of queued packets stays set and the wait would not wait.
        if ( inUdpMulticastReceiverError( recv ) || ( optionalAbortSignal && pbSignalAsserted( optionalAbortSignal ) ) )
            return nullptr;
        inUdpMulticastReceiverReceiveWait( recv, optionalAbortSignal );
        if ( struct inUdpPacket *packet = inUdpMulticastReceiverReceive( recv ) )
            return packet;
    }
}

} // extern "C"
