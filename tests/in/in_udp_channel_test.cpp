// Channels and RTP pairs on a stack bound to the loopback interface: what travels, what is traced, what must not be
// done.
#include "in/udp/in_udp_channel.h"

#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_options.h"
#include "in/in_imp_udp_support.hpp"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_channels_vector.h"
#include "in/udp/in_udp_flags.h"
#include "in/udp/in_udp_options.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "support/trace_catcher.hpp"
#include "tr/tr_anchor.h"
#include "tr/tr_stream.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>

namespace {

using Channel = pb::Ref<struct inUdpChannel>;
using Link = support::TraceCatcher::Link;
using testing::ElementsAre;

constexpr pbInt any = IN_UDP_PORT_INVALID;

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

pb::Ref<struct inStack> stackOn( const char *ip, pbInt firstPort = 0, pbInt count = -1 )
{
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddress( options.address(), support::address( ip ).get() );
    if ( count >= 0 ) {
        auto udpOptions = pb::adopt( inUdpOptionsCreate() );
        inUdpOptionsSetPortRange( udpOptions.address(), pb::adopt( inUdpPortRangeCreate( firstPort, count ) ).get() );
        inOptionsSetUdpOptions( options.address(), udpOptions.get() );
    }
    return pb::adopt( inStackCreate( options.get(), nullptr ) );
}

Channel channelOn( const pb::Ref<struct inStack> &stack, pbInt port = any, uint64_t flags = 0 )
{
    return pb::adopt( inUdpChannelTryCreate( stack.get(), nullptr, nullptr, nullptr, port, flags, nullptr ) );
}

pb::Ref<struct inUdpAddress> local( const Channel &channel )
{
    return pb::adopt( inUdpChannelLocalAddress( channel.get() ) );
}

pb::Ref<struct pbVector> rtpPairOn( const pb::Ref<struct inStack> &stack, struct inFilter *filter = nullptr )
{
    return pb::adopt( inUdpChannelsVectorTryCreateRtp( stack.get(), nullptr, nullptr, filter, 0, nullptr ) );
}

std::string text( const pb::Ref<struct inUdpAddress> &address )
{
    return pb::utf8( pb::adopt( inUdpAddressToString( address.get() ) ) );
}

// Waits for the alert, which a packet that the filter refuses sets as well.
pb::Ref<struct inUdpPacket> await( const Channel &channel )
{
    for ( ;; ) {
        if ( auto packet = pb::adopt( inUdpChannelReceive( channel.get() ) ) )
            return packet;
        const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
        const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
        inUdpChannelReceiveAddAlertable( channel.get(), alertable.get() );
        pbBarrierPass( barrier.get() );
        inUdpChannelReceiveDelAlertable( channel.get(), alertable.get() );
    }
}

pb::Ref<struct pbBuffer> bytes( const std::string &text )
{
    return pb::adopt( pbBufferCreateFromBytes( text.data(), static_cast<pbInt>( text.size() ) ) );
}

TEST( UdpChannel, SendsWholeBuffersAndParts )
{
    const auto stack = stackOn( "127.0.0.1" );
    const Channel from = channelOn( stack ), to = channelOn( stack );
    const auto remote = local( to );
    const auto buffer = bytes( "0123456789" );
    const auto packet = pb::adopt( inUdpPacketCreateWithPayload( remote.get(), buffer.get() ) );
    const struct {
        std::function<void()> send;
        std::string received;
    } rows[] = {
        { [&] { inUdpChannelSendBytes( from.get(), remote.get(), "bytes", 5 ); }, "bytes" },
        { [&] { inUdpChannelSendBytes( from.get(), remote.get(), nullptr, 0 ); }, "" },
        { [&] { inUdpChannelSend( from.get(), packet.get() ); }, "0123456789" },
        { [&] { inUdpChannelSendBuffer( from.get(), remote.get(), buffer.get() ); }, "0123456789" },
        { [&] { inUdpChannelSendBufferLeading( from.get(), remote.get(), buffer.get(), 1 ); }, "0" },
        { [&] { inUdpChannelSendBufferTrailing( from.get(), remote.get(), buffer.get(), 3 ); }, "789" },
        { [&] { inUdpChannelSendBufferInner( from.get(), remote.get(), buffer.get(), 2, 8 ); }, "23456789" },
        { [&] { inUdpChannelSendBufferOuter( from.get(), remote.get(), buffer.get(), 2, 3 ); }, "0156789" },
        { [&] { inUdpChannelSendBufferOuter( from.get(), remote.get(), buffer.get(), 0, 10 ); }, "" },
    };
    for ( const auto &row : rows ) {
        row.send();
        EXPECT_EQ( support::payload( await( to ) ), row.received );
    }
}

TEST( UdpChannel, IsMappedToItsLocalAddressAtOnce )
{
    const Channel channel = channelOn( stackOn( "127.0.0.1" ) );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    inUdpChannelMappedAddSignalable( channel.get(), pb::adopt( pbSignalableCreateBarrier( barrier.get() ) ).get() );
    EXPECT_TRUE( pbBarrierPassTimed( barrier.get(), 0 ) );
    EXPECT_TRUE( inUdpChannelMapped( channel.get() ) );
    EXPECT_EQ( text( pb::adopt( inUdpChannelMappedLocalAddress( channel.get() ) ) ), text( local( channel ) ) );
}

TEST( UdpChannel, TracesItsLife )
{
    const auto stack = stackOn( "127.0.0.1", 27000, 1 );
    const auto qos = pb::adopt( inQosStackCreate( pb::adopt( inQosOptionsCreate() ).get(), nullptr ) );
    const auto owner = pb::adopt( trStreamCreateCstr( "OWNER", -1 ) );
    const auto anchor = pb::adopt( trAnchorCreate( owner.get(), TR_ANCHOR_KIND_PLAIN ) );
    for ( const bool highVolume : { false, true } ) {
        support::TraceCatcher catcher( highVolume );
        {
            const Channel channel = pb::adopt( inUdpChannelTryCreate( stack.get(), qos.get(), nullptr, nullptr, any,
                                                                      UINT64_C( 0xf0 ), anchor.get() ) );
            ASSERT_TRUE( channel );
            EXPECT_TRUE( pb::adopt( inUdpChannelQosStack( channel.get() ) ).is( qos ) );
            inUdpChannelSendBytes( channel.get(), local( channel ).get(), "to myself", 9 );
            EXPECT_EQ( support::payload( await( channel ) ), "to myself" );
        }
        std::vector<std::string> expected = {
            "[inUdpChannelTryCreate()] optionalLocalPort: -1",
            "[inUdpChannelSendBytes()] bytesSent: 9, remoteAddress: 127.0.0.1:27000",
            "[inUdpChannelReceive()] bytesReceived: 9, remoteAddress: 127.0.0.1:27000",
            "[in___UdpChannelFreeFunc()] error: false",
        };
        if ( !highVolume )
            expected.erase( expected.begin() + 1, expected.begin() + 3 );
        EXPECT_EQ( catcher.texts( "IN_UDP_CHANNEL" ), expected );
        EXPECT_EQ( catcher.payloads( "IN_UDP_CHANNEL" ).size(), highVolume ? 2u : 0u );
        EXPECT_EQ( catcher.property( "IN_UDP_CHANNEL", "inLocalUdpAddress" ), "127.0.0.1:27000" );
        EXPECT_EQ( catcher.property( "IN_UDP_CHANNEL", "inUdpFlags" ), "" );
        EXPECT_FALSE( catcher.notable( "IN_UDP_CHANNEL" ) );
        std::vector<pbInt> kinds;
        for ( const Link &link : catcher.links() )
            kinds.push_back( link.kind );
        EXPECT_THAT( kinds, testing::IsSupersetOf( { TR_ANCHOR_KIND_STACK, TR_ANCHOR_KIND_USE } ) );
    }
}

TEST( UdpChannel, TracesWhyThereIsNone )
{
    const auto nowhere = stackOn( "192.0.2.77" ), narrow = stackOn( "127.0.0.1", 27002, 1 );
    const struct {
        std::function<pb::Ref<struct pbObj>()> tryCreate;
        const char *stream, *text;
    } rows[] = {
        { [&] { return pb::adopt( inUdpChannelObj( channelOn( nowhere ).release() ) ); }, "IN_UDP_CHANNEL",
          "[inUdpChannelTryCreate()] in___ImpUdpChannelTryCreate(): inStackAddress(): null" },
        { [&] {
             const Channel holder = channelOn( narrow );
             return pb::adopt( inUdpChannelObj( channelOn( narrow ).release() ) );
         },
          "IN_UDP_CHANNEL", "[inUdpChannelTryCreate()] in___ImpUdpChannelTryCreate(): IN___IMP_UDP_CHANNEL_INVALID" },
        { [&] { return pb::adopt( pbVectorObj( rtpPairOn( nowhere ).release() ) ); },
          "inUdpChannelsVectorTryCreateRtp()", "inStackAddress(): null" },
        { [&] { return pb::adopt( pbVectorObj( rtpPairOn( narrow ).release() ) ); },
          "inUdpChannelsVectorTryCreateRtp()", "rtpChannel: IN___IMP_UDP_CHANNEL_INVALID" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.text );
        support::TraceCatcher catcher;
        EXPECT_FALSE( row.tryCreate() );
        EXPECT_THAT( catcher.texts( row.stream ), testing::Contains( row.text ) );
        EXPECT_TRUE( catcher.notable( row.stream ) );
    }
}

// Lets in this peer alone.
pb::Ref<struct inFilter> filterOf( const char *peer )
{
    auto entry = pb::adopt( inFilterEntryCreate( pb::string( peer ).get() ) );
    inFilterEntrySetFlags( entry.address(), IN_FILTER_ENTRY_FLAG_ADDRESS );
    auto options = pb::adopt( inFilterOptionsCreate() );
    inFilterOptionsAppendEntry( options.address(), entry.get() );
    return pb::adopt( inFilterCreate( options.get(), nullptr ) );
}

TEST( UdpChannel, FiltersBothWays )
{
    const auto filter = filterOf( "127.0.3.2" );
    const support::UdpChannel friendly( "127.0.3.2", any ), foe( "127.0.3.3", any );
    for ( const bool highVolume : { false, true } ) {
        support::TraceCatcher catcher( highVolume );
        const auto pair = rtpPairOn( stackOn( "127.0.0.1" ), filter.get() );
        const Channel channel = pb::adopt( inUdpChannelFrom( pbVectorObjAt( pair.get(), 0 ) ) );
        EXPECT_TRUE( pb::adopt( inUdpChannelFilter( channel.get() ) ).is( filter ) );
        EXPECT_TRUE( inUdpChannelHasFilter( channel.get() ) );
        EXPECT_THAT( catcher.links(), testing::Contains( Link{ "IN_UDP_CHANNEL", "", TR_ANCHOR_KIND_USE, "" } ) );
        for ( const support::UdpChannel *from : { &foe, &foe, &friendly } )
            from->send( local( channel ).get(), from == &foe ? "foe" : "friend" );
        EXPECT_EQ( support::payload( await( channel ) ), "friend" );
        EXPECT_FALSE( pb::adopt( inUdpChannelReceive( channel.get() ) ) );
        EXPECT_EQ( catcher.property( "IN_UDP_CHANNEL", "inFilteredUdpAddress" ), text( foe.local() ) );
        const auto refusals = [&]( const char *refusal ) {
            const auto texts = catcher.texts( "IN_UDP_CHANNEL" );
            return std::count( texts.begin(), texts.end(), refusal );
        };
        EXPECT_EQ( refusals( "[inUdpChannelReceive()] inFilterCheckUdpAddress(): false" ), highVolume ? 2 : 0 );

        inUdpChannelSendBytes( channel.get(), foe.local().get(), "no", 2 );
        EXPECT_EQ( refusals( "[inUdpChannelSendBytes()] inFilterCheckUdpAddress(): false" ), 1 );
        inUdpChannelSendBytes( channel.get(), friendly.local().get(), "yes", 3 );
        EXPECT_EQ( support::payload( friendly.await() ), "yes" );
        EXPECT_FALSE( foe.receive() );
    }
}

TEST( UdpChannelsVector, HoldsRtpThenRtcp )
{
    const auto stack = stackOn( "127.0.0.1", 27004, 2 );
    const auto qos = pb::adopt( inQosStackCreate( pb::adopt( inQosOptionsCreate() ).get(), nullptr ) );
    support::TraceCatcher catcher;
    const auto pair = pb::adopt( inUdpChannelsVectorTryCreateRtp( stack.get(), qos.get(), nullptr, nullptr,
                                                                  IN_UDP_FLAG_NO_RECEIVE, nullptr ) );
    ASSERT_TRUE( pair );
    ASSERT_EQ( pbVectorLength( pair.get() ), 2 );
    for ( const pbInt index : { 0, 1 } ) {
        const Channel channel = pb::adopt( inUdpChannelFrom( pbVectorObjAt( pair.get(), index ) ) );
        EXPECT_EQ( text( local( channel ) ), "127.0.0.1:" + std::to_string( 27004 + index ) );
        EXPECT_EQ( inUdpChannelFlags( channel.get() ), IN_UDP_FLAG_NO_RECEIVE );
        EXPECT_TRUE( pb::adopt( inUdpChannelQosStack( channel.get() ) ).is( qos ) );
        EXPECT_TRUE( pb::adopt( inUdpChannelStack( channel.get() ) ).is( stack ) );
    }
    EXPECT_THAT( catcher.links(), testing::Contains( Link{ "inUdpChannelsVectorTryCreateRtp()", "IN_UDP_CHANNEL",
                                                           TR_ANCHOR_KIND_PLAIN, "" } ).Times( 2 ) );
}

TEST( UdpChannelDeathTest, Preconditions )
{
    const auto stack = stackOn( "127.0.0.1" );
    const Channel channel = channelOn( stack );
    struct inUdpChannel *chan = channel.get();
    const auto remote = local( channel );
    const auto buffer = bytes( "0123" ), empty = bytes( "" );
    struct inMapStack *map = reinterpret_cast<struct inMapStack *>( chan );
    const struct {
        std::function<void()> call;
        const char *text;
    } rows[] = {
        { [&] { channelOn( stack, 0 ); },
          "optionalLocalPort == IN_UDP_PORT_INVALID || IN_UDP_PORT_OK( optionalLocalPort )" },
        { [&] { channelOn( nullptr ); }, "stack" },
        { [&] { inUdpChannelTryCreate( stack.get(), nullptr, map, nullptr, any, 0, nullptr ); },
          "!optionalMapStack: there is no address mapping yet" },
        { [&] { inUdpChannelSendBytes( chan, nullptr, "", 0 ); }, "remoteAddress" },
        { [&] { inUdpChannelSendBytes( chan, remote.get(), nullptr, 1 ); }, "bytes || !byteCount" },
        { [&] { inUdpChannelSendBytes( chan, remote.get(), "", -1 ); }, "byteCount >= 0" },
        { [&] { inUdpChannelSendBuffer( chan, remote.get(), nullptr ); }, "buffer" },
        { [&] { inUdpChannelSendBuffer( chan, remote.get(), empty.get() ); }, "byteCount > 0" },
        { [&] { inUdpChannelSendBufferLeading( chan, remote.get(), buffer.get(), 5 ); },
          "pbBufferLength( buffer ) >= byteOffset + byteCount" },
        { [&] { inUdpChannelSendBufferTrailing( chan, remote.get(), buffer.get(), 5 ); },
          "pbBufferLength( buffer ) >= byteCount" },
        { [&] { inUdpChannelSendBufferTrailing( chan, remote.get(), buffer.get(), PB_INT_MIN ); }, "byteCount > 0" },
        { [&] { inUdpChannelSendBufferInner( chan, remote.get(), buffer.get(), -1, 1 ); }, "byteOffset >= 0" },
        { [&] { inUdpChannelSendBufferInner( chan, remote.get(), buffer.get(), 1, PB_INT_MAX ); },
          "PB_INT_ADD_OK( byteOffset, byteCount )" },
        { [&] { inUdpChannelSendBufferOuter( chan, remote.get(), buffer.get(), 3, 2 ); },
          "pbBufferLength( buffer ) >= byteOffset + byteCount" },
        { [&] { inUdpChannelSendBufferOuter( chan, remote.get(), buffer.get(), 3, 0 ); }, "byteCount > 0" },
    };
    GTEST_FLAG_SET( death_test_style, "threadsafe" ); // there are other threads
    for ( const auto &row : rows )
        EXPECT_DEATH( row.call(), testing::HasSubstr( std::string( ": " ) + row.text + "\n" ) );
}

} // namespace
