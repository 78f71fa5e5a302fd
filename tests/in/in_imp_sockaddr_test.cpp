// Socket addresses: exact bytes out, what is refused in, and the update forms that keep objects.
#include "in/imp/in_imp_sockaddr_unix_internal.h"

#include "in/base/in_address.h"
#include "in/raw/in_raw_address.h"
#include "in/tcp/in_tcp_address.h"
#include "in/udp/in_udp_address.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

#include <array>
#include <optional>

namespace {

using Bytes = std::array<uint8_t, 28>;
using testing::ElementsAreArray;

// AF_INET is 2 and AF_INET6 is 10, in host order; the port follows in network order.
constexpr Bytes v4 = { 2, 0, 0x13, 0xc4, 10, 0, 0, 1 };
constexpr Bytes v6 = { 10, 0, 0x13, 0xc4, 0, 0, 0, 0, 0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1 };

Bytes changed( Bytes bytes, size_t at, uint8_t value )
{
    bytes[at] = value;
    return bytes;
}

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

template <class T> std::string text( const pb::Ref<T> &value )
{
    return pb::utf8( pb::adopt( pbObjToString( reinterpret_cast<struct pbObj *>( value.get() ) ) ) );
}

TEST( InImpSockaddr, WritesBothFamilies )
{
    struct {
        const char *address;
        Bytes expected;
        pbInt length;
    } const rows[] = { { "10.0.0.1", v4, 16 }, { "fe80::1", v6, 28 } };
    for ( const auto &row : rows ) {
        Bytes bytes;
        bytes.fill( 0xee );
        pbInt length = 0;
        EXPECT_TRUE( in___ImpSockaddrFromAddressAndPort( bytes.data(), &length, address( row.address ).get(), 5060 ) );
        EXPECT_EQ( length, row.length );
        const auto used = static_cast<size_t>( length );
        EXPECT_THAT( std::vector( bytes.begin(), bytes.begin() + length ),
                     ElementsAreArray( row.expected.data(), used ) );
        EXPECT_TRUE( std::all_of( bytes.begin() + length, bytes.end(), []( uint8_t byte ) { return byte == 0xee; } ) );

        Bytes again = {};
        const auto udp = pb::adopt( inUdpAddressCreate( address( row.address ).get(), 5060 ) );
        EXPECT_TRUE( in___ImpSockaddrFromUdpAddress( again.data(), nullptr, udp.get() ) );
        EXPECT_EQ( again, row.expected );
    }
    Bytes bytes = {};
    EXPECT_TRUE( in___ImpSockaddrFromAddress( bytes.data(), nullptr, address( "10.0.0.1" ).get() ) );
    EXPECT_EQ( bytes, changed( changed( v4, 2, 0 ), 3, 0 ) );
    const auto raw = pb::adopt( inRawAddressCreate( address( "10.0.0.1" ).get(), 89 ) );
    EXPECT_TRUE( in___ImpSockaddrFromRawAddress( bytes.data(), nullptr, raw.get() ) );
    EXPECT_EQ( bytes, changed( changed( v4, 2, 0 ), 3, 89 ) );
}

TEST( InImpSockaddr, RefusesWhatIsUnusableAndClearsTheSlot )
{
    const Bytes noPort = changed( changed( v4, 2, 0 ), 3, 0 );
    struct {
        Bytes bytes;
        pbInt length;
        const char *address, *endpoint;
    } const rows[] = {
        { v4, 16, "10.0.0.1", "10.0.0.1:5060" },
        { v4, 28, "10.0.0.1", "10.0.0.1:5060" },
        { v4, 15, "null", "null" },
        { v4, 0, "null", "null" },
        { v6, 28, "fe80::1", "[fe80::1]:5060" },
        { v6, 27, "null", "null" },
        { changed( changed( v6, 4, 1 ), 24, 7 ), 28, "fe80::1", "[fe80::1]:5060" }, // flow and scope are not read
        { noPort, 16, "10.0.0.1", "null" },
        { changed( v4, 0, 0 ), 16, "null", "null" },
        { changed( v4, 0, 17 ), 28, "null", "null" }, // a packet socket's address
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( std::to_string( row.bytes[0] ) + " " + std::to_string( row.length ) );
        auto ina = address( "1.1.1.1" );
        auto tcp = pb::adopt( inTcpAddressCreate( ina.get(), 1 ) );
        auto udp = pb::adopt( inUdpAddressCreate( ina.get(), 1 ) );
        for ( const bool update : { false, true } ) {
            auto *const toAddress = update ? in___ImpSockaddrUpdateAddress : in___ImpSockaddrToAddress;
            auto *const toTcp = update ? in___ImpSockaddrUpdateTcpAddress : in___ImpSockaddrToTcpAddress;
            auto *const toUdp = update ? in___ImpSockaddrUpdateUdpAddress : in___ImpSockaddrToUdpAddress;
            auto inaSlot = ina;
            auto tcpSlot = tcp;
            auto udpSlot = udp;
            const bool usable = toAddress( row.bytes.data(), row.length, inaSlot.address() );
            const bool usableTcp = toTcp( row.bytes.data(), row.length, tcpSlot.address() );
            const bool usableUdp = toUdp( row.bytes.data(), row.length, udpSlot.address() );
            EXPECT_EQ( usable, text( inaSlot ) != "null" );
            EXPECT_EQ( usableTcp, text( tcpSlot ) != "null" );
            EXPECT_EQ( usableUdp, text( udpSlot ) != "null" );
            EXPECT_EQ( text( inaSlot ), row.address );
            EXPECT_EQ( text( tcpSlot ), row.endpoint );
            EXPECT_EQ( text( udpSlot ), row.endpoint );
        }
        EXPECT_EQ( text( udp ), "1.1.1.1:1" ) << "what others hold is not changed";
    }
}

TEST( InImpSockaddr, UpdateKeepsEqualObjects )
{
    pb::Ref<struct inUdpAddress> slot;
    ASSERT_TRUE( in___ImpSockaddrUpdateUdpAddress( v6.data(), 28, slot.address() ) );
    auto *const first = slot.get();
    const auto firstAddress = pb::adopt( inUdpAddressAddress( first ) );

    const auto queued = slot;
    ASSERT_TRUE( in___ImpSockaddrUpdateUdpAddress( v6.data(), 28, slot.address() ) );
    EXPECT_EQ( slot.get(), first );

    ASSERT_TRUE( in___ImpSockaddrUpdateUdpAddress( changed( v6, 3, 0xc5 ).data(), 28, slot.address() ) );
    EXPECT_EQ( text( slot ), "[fe80::1]:5061" );
    EXPECT_EQ( text( queued ), "[fe80::1]:5060" );
    EXPECT_TRUE( pb::adopt( inUdpAddressAddress( slot.get() ) ).is( firstAddress ) );

    auto *const own = slot.get();
    ASSERT_TRUE( in___ImpSockaddrUpdateUdpAddress( changed( v6, 23, 2 ).data(), 28, slot.address() ) );
    EXPECT_EQ( slot.get(), own );
    EXPECT_EQ( text( slot ), "[fe80::2]:5060" );

    auto ina = address( "10.0.0.1" );
    auto *const kept = ina.get();
    EXPECT_TRUE( in___ImpSockaddrUpdateAddress( v4.data(), 16, ina.address() ) );
    EXPECT_EQ( ina.get(), kept );
}

TEST( InImpSockaddr, RawProtocolIsTheHintOrThePortSlot )
{
    struct {
        uint8_t portHigh, portLow;
        pbInt hint;
        const char *expected;
    } const rows[] = {
        { 0, 89, 256, "10.0.0.1:89" }, { 0, 255, 256, "10.0.0.1:255" }, { 0, 0, 256, "10.0.0.1:0" },
        { 1, 0, 256, "null" },         { 0, 89, 17, "10.0.0.1:17" },    { 1, 0, 255, "10.0.0.1:255" },
        { 1, 0, 0, "10.0.0.1:0" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.expected );
        const Bytes bytes = changed( changed( v4, 2, row.portHigh ), 3, row.portLow );
        auto made = pb::adopt( inRawAddressCreate( address( "::1" ).get(), 1 ) );
        auto updated = made;
        const bool usable = in___ImpSockaddrToRawAddress( bytes.data(), 16, made.address(), row.hint );
        EXPECT_EQ( in___ImpSockaddrUpdateRawAddress( bytes.data(), 16, updated.address(), row.hint ), usable );
        EXPECT_EQ( usable, text( made ) != "null" );
        EXPECT_EQ( text( made ), row.expected );
        EXPECT_EQ( text( updated ), row.expected );
    }
}

TEST( InImpSockaddrDeath, Preconditions )
{
    const auto ina = address( "10.0.0.1" );
    support::expectDeaths( {
        { [&] { in___ImpSockaddrFromAddressAndPort( nullptr, nullptr, ina.get(), 65536 ); },
          "PB___INT_TO_UNSIGNED_TYPE_CONV_OK( port, in_port_t )" },
        { [&] { in___ImpSockaddrFromAddressAndPort( nullptr, nullptr, ina.get(), -1 ); },
          "PB___INT_TO_UNSIGNED_TYPE_CONV_OK( port, in_port_t )" },
        { [&] { in___ImpSockaddrFromAddressAndTcpPort( nullptr, nullptr, ina.get(), 0 ); },
          "IN_TCP_PORT_OK( tcpPort )" },
        { [&] { in___ImpSockaddrFromAddressAndUdpPort( nullptr, nullptr, ina.get(), 65536 ); },
          "IN_UDP_PORT_OK( udpPort )" },
    } );
}

} // namespace
