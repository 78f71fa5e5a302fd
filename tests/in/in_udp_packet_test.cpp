// UDP packets and match sets: what of a buffer becomes the payload, sharing, identity.
#include "in/udp/in_udp_packet.h"

#include "in/base/in_address.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_match.h"
#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"
#include "support/death_table.hpp"

namespace {

pb::Ref<struct inUdpAddress> peer( pbInt port )
{
    return pb::adopt( inUdpAddressCreate( pb::adopt( inAddressTryCreateFromCstr( "10.0.0.1", -1 ) ).get(), port ) );
}

pb::Ref<struct inUdpPacket> packet( std::string_view payload = "" )
{
    return pb::adopt(
        inUdpPacketCreateWithPayloadBytes( peer( 1 ).get(), payload.data(), static_cast<pbInt>( payload.size() ) ) );
}

pb::Ref<struct pbBuffer> payload( const pb::Ref<struct inUdpPacket> &packet )
{
    return pb::adopt( inUdpPacketPayload( packet.get() ) );
}

std::string bytes( const pb::Ref<struct inUdpPacket> &packet )
{
    const auto buffer = payload( packet );
    return { reinterpret_cast<const char *>( pbBufferBacking( buffer.get() ) ),
             static_cast<size_t>( pbBufferLength( buffer.get() ) ) };
}

TEST( InUdpPacket, TakesPartsOfABuffer )
{
    const auto abcde = pb::adopt( pbBufferCreateFromBytes( "abcde", 5 ) );
    struct {
        std::function<void( struct inUdpPacket **, const struct pbBuffer * )> set;
        const char *expected;
    } const rows[] = {
        { []( auto packet, auto buffer ) { inUdpPacketSetPayload( packet, buffer ); }, "abcde" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadInner( packet, buffer, 1, 3 ); }, "bcd" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadInner( packet, buffer, 5, 0 ); }, "" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadLeading( packet, buffer, 2 ); }, "ab" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadTrailing( packet, buffer, 2 ); }, "de" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadTrailing( packet, buffer, 5 ); }, "abcde" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadOuter( packet, buffer, 1, 3 ); }, "ae" },
        { []( auto packet, auto buffer ) { inUdpPacketSetPayloadOuter( packet, buffer, 0, 5 ); }, "" },
    };
    for ( const auto &row : rows ) {
        auto fresh = packet( "old" );
        row.set( fresh.address(), abcde.get() );
        EXPECT_EQ( bytes( fresh ), row.expected );
        // the source may be the payload that is replaced, held by nobody else
        auto own = packet( "abcde" );
        struct pbBuffer *const borrowed = payload( own ).get();
        row.set( own.address(), borrowed );
        EXPECT_EQ( bytes( own ), row.expected );
    }
    EXPECT_EQ( pbBufferLength( abcde.get() ), 5 );
}

TEST( InUdpPacket, SharesBuffersAndCopiesBytes )
{
    const auto buffer = pb::adopt( pbBufferCreateFromBytes( "abc", 3 ) );
    const auto shared = pb::adopt( inUdpPacketCreateWithPayload( peer( 1 ).get(), buffer.get() ) );
    EXPECT_TRUE( payload( shared ).is( buffer ) );

    char source[] = "abc";
    const auto copied = packet( { source, 3 } );
    source[0] = 'x';
    EXPECT_EQ( bytes( copied ), "abc" );

    auto changed = copied;
    inUdpPacketSetPayloadBytes( changed.address(), nullptr, 0 );
    inUdpPacketSetRemoteAddress( changed.address(), peer( 2 ).get() );
    EXPECT_EQ( bytes( copied ), "abc" );
    EXPECT_EQ( inUdpPacketPayloadLength( changed.get() ), 0 );
    EXPECT_EQ( inUdpAddressPort( pb::adopt( inUdpPacketRemoteAddress( copied.get() ) ).get() ), 1 );
}

TEST( InUdpPacket, EqualPacketsAreStillTwo )
{
    const auto a = packet( "abc" ), b = packet( "abc" );
    EXPECT_FALSE( inUdpPacketEquals( a.get(), b.get() ) );
    EXPECT_EQ( inUdpPacketCompare( a.get(), b.get() ), -inUdpPacketCompare( b.get(), a.get() ) );
    EXPECT_TRUE( inUdpPacketEquals( a.get(), a.get() ) );
}

TEST( InUdpMatch, MatchesByValue )
{
    auto match = pb::adopt( inUdpMatchCreate() );
    EXPECT_FALSE( inUdpMatchMatchPacket( match.get(), packet().get() ) );
    const auto empty = match;
    inUdpMatchSet( match.address(), peer( 1 ).get() );
    inUdpMatchSet( match.address(), peer( 1 ).get() );
    EXPECT_TRUE( inUdpMatchMatchPacket( match.get(), packet().get() ) );
    EXPECT_FALSE( inUdpMatchHas( match.get(), peer( 2 ).get() ) );
    EXPECT_FALSE( inUdpMatchHas( empty.get(), peer( 1 ).get() ) );
    inUdpMatchDel( match.address(), peer( 2 ).get() );
    inUdpMatchDel( match.address(), peer( 1 ).get() );
    EXPECT_TRUE( inUdpMatchEquals( match.get(), empty.get() ) );
}

TEST( InUdpPacketDeath, Preconditions )
{
    auto subject = packet( "abc" );
    const auto buf = payload( subject );
    support::expectDeaths( {
        { [] { inUdpPacketCreate( nullptr ); }, "remoteAddress" },
        { [&] { inUdpPacketSetPayloadTrailing( subject.address(), buf.get(), PB_INT_MIN ); },
          "PB_INT_SUB_OK( pbBufferLength( buf ), byteCount )" },
        { [&] { inUdpPacketSetPayloadBytes( subject.address(), nullptr, 1 ); }, "bytes || !byteCount" },
    } );
    EXPECT_DEATH( inUdpPacketSetPayloadTrailing( subject.address(), buf.get(), 4 ), "" );
    EXPECT_DEATH( inUdpPacketSetPayloadLeading( subject.address(), buf.get(), 4 ), "" );
    EXPECT_DEATH( inUdpPacketSetPayloadLeading( subject.address(), buf.get(), -1 ), "" );
}

} // namespace
