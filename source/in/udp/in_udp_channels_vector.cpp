// Creation of RTP/RTCP channel pairs, traced as an attempt of its own.
#include "in/udp/in_udp_channels_vector.h"

#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/imp/in_imp_udp_internal.h"
#include "in/udp/in_udp_channel_internal.h"
#include "in/udp/in_udp_flags.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_port_range.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

namespace {

pb::Ref<struct inUdpChannel> wrap( struct trStream *stream, struct inStack *stack, struct inFilter *optionalFilter,
                                   pbInt chan )
{
    const auto anchor = pb::adopt( trAnchorCreate( stream, TR_ANCHOR_KIND_PLAIN ) );
    return pb::adopt( in___UdpChannelCreate( stack, optionalFilter, chan, anchor.get() ) );
}

} // namespace

extern "C" struct pbVector *inUdpChannelsVectorTryCreateRtp( struct inStack *stack, struct inQosStack *optionalQosStack,
                                                             struct inMapStack *optionalMapStack,
                                                             struct inFilter *optionalFilter, uint64_t flags,
                                                             struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    PB_ASSERT_TEXT( !optionalMapStack, "!optionalMapStack: there is no address mapping yet" );
    const auto stream = pb::adopt( trStreamCreateCstr( "inUdpChannelsVectorTryCreateRtp()", -1 ) );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, stream.get() );

    const auto localAddress = pb::adopt( inStackAddress( stack ) );
    if ( !localAddress ) {
        trStreamSetNotable( stream.get() );
        tr::text( stream.get(), "inStackAddress(): null" );
        return nullptr;
    }
    const auto stackOptions = pb::adopt( inStackOptions( stack ) );
    const auto udpOptions = pb::adopt( inOptionsUdpOptions( stackOptions.get() ) );
    const auto portRange = pb::adopt( inUdpOptionsPortRange( udpOptions.get() ) );
    pbInt rtpChannel, rtcpChannel;
    in___ImpUdpChannelTryCreateRtp( &rtpChannel, &rtcpChannel, localAddress.get(), portRange.get(),
                                    inUdpFlagsNormalize( flags ), optionalQosStack );
    PB_ASSERT( ( rtpChannel == IN___IMP_UDP_CHANNEL_INVALID && rtcpChannel == IN___IMP_UDP_CHANNEL_INVALID ) ||
               ( rtpChannel != IN___IMP_UDP_CHANNEL_INVALID && rtcpChannel != IN___IMP_UDP_CHANNEL_INVALID ) );
    if ( rtpChannel == IN___IMP_UDP_CHANNEL_INVALID ) {
        trStreamSetNotable( stream.get() );
        tr::text( stream.get(), "rtpChannel: IN___IMP_UDP_CHANNEL_INVALID" );
        return nullptr;
    }
    auto channels = pb::adopt( pbVectorCreate() );
    for ( const pbInt chan : { rtpChannel, rtcpChannel } )
        pbVectorAppend( channels.address(), inUdpChannelObj( wrap( stream.get(), stack, optionalFilter, chan ).get() ) );
    return channels.release();
}
