// Addresses: text in and out, hosts, ranges, order; and that the two readers of address text agree.
#include "in/base/in_address.h"

#include "in/base/in_address_text.hpp"
#include "in/base/in_address_version.h"
#include "pb/pb_buffer.h"
#include "pb/pb_vector.h"
#include "support/ascending.hpp"
#include "support/death_table.hpp"

#include <random>
#include <sstream>

namespace {

using Address = pb::Ref<struct inAddress>;

Address address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

// The text form, or "null".
std::string text( const Address &address )
{
    return pb::utf8( pb::adopt( pbObjToString( inAddressObj( address.get() ) ) ) );
}

// SOURCE=EXPECTED. Written, the leftmost of the longest runs of zero groups is compressed, even a run of one.
constexpr std::string_view accepted[] = { "192.168.1.1=192.168.1.1",
                                          " \t192.168.1.1\r\n=192.168.1.1",
                                          "0.0.0.0=0.0.0.0",
                                          "255.255.255.255=255.255.255.255",
                                          "010.001.0.1=10.1.0.1",
                                          "0000000001.2.3.4=1.2.3.4",
                                          "1.2.3.-0=1.2.3.0",
                                          "::=::",
                                          "::1=::1",
                                          "1::=1::",
                                          " ::1\n=::1",
                                          "1:2:3:4:5:6:7:8=1:2:3:4:5:6:7:8",
                                          "2001:DB8::aBcD=2001:db8::abcd",
                                          "00001::2=1::2",
                                          "::ffff=::ffff",
                                          "1:2:3::4:5:6:7=1:2:3::4:5:6:7",
                                          "::1:2:3:4:5:6=::1:2:3:4:5:6",
                                          "1:2:3:4:5:6::=1:2:3:4:5:6::",
                                          "::1.2.3.4=::102:304",
                                          "::ffff:1.2.3.4=::ffff:102:304",
                                          "1:2:3:4:5:6:1.2.3.4=1:2:3:4:5:6:102:304",
                                          "::1:2:3:4:1.2.3.4=::1:2:3:4:102:304",
                                          "1:2:3:4:5::1.2.3.4=1:2:3:4:5::102:304",
                                          "64:ff9b::010.0.0.1=64:ff9b::a00:1",
                                          "::1.2.3.4 =::102:304",
                                          "1:0:0:2:0:0:0:3=1:0:0:2::3",
                                          "1:0:0:2:0:0:3:4=1::2:0:0:3:4",
                                          "1:0:2:3:4:5:6:7=1::2:3:4:5:6:7",
                                          "0:1:2:3:4:5:6:7=::1:2:3:4:5:6:7",
                                          "1:2:3:4:5:6:7:0=1:2:3:4:5:6:7::" };

constexpr std::string_view refused[] = {
    "", " ", "192.168.1", "1.2.3.4.5", "256.1.1.1", "1.2.3.-4", "1.2.3.+4", "1.2.3.0x4", "1.2. 3.4", "1.2.3.", ".1.2.3",
    "1..2.3", "1.2.3.18446744073709551617", "1.2.3.a", "::10000", "::-1", "::g", "::1 2", ":", "1:2",
    ":::", "::::", ":1::2", "1::2:", "1::2::3", "1:2:3:4:5:6:7", "1:2:3:4:5:6:7:8:9",
    "1:2:3:4:5:6:7:", ":1:2:3:4:5:6:7",
    // nine pieces, also where a gap of one group would stand
    "::1:2:3:4:5:6:7", "1:2:3:4:5:6:7::", "1:2:3:4::5:6:7:8", "::1:2:3:4:5:1.2.3.4", "1:2:3:4:5:6::1.2.3.4",
    "1:2:3:4:5:6:7:1.2.3.4", "1.2.3.4::", "1.2::3.4", "1.2::3.4.5.6", "::1.2.3.4:5", "::1.2.3", "::1.2.3.256",
    "::1.2.3.4.5" };

void expectConversion( std::string_view source, std::string_view expected )
{
    SCOPED_TRACE( source );
    const auto string = pb::string( source );
    const bool isV6 = expected.find( ':' ) != expected.npos;
    EXPECT_EQ( text( pb::adopt( inAddressTryCreateFromString( string.get() ) ) ), expected );
    EXPECT_EQ( text( pb::adopt( inAddressTryCreateV4FromString( string.get() ) ) ), isV6 ? "null" : expected );
    EXPECT_EQ( text( pb::adopt( inAddressTryCreateV6FromString( string.get() ) ) ), isV6 ? expected : "null" );
}

TEST( InAddress, ReadsText )
{
    for ( const std::string_view row : accepted )
        expectConversion( row.substr( 0, row.find( '=' ) ), row.substr( row.find( '=' ) + 1 ) );
    for ( const std::string_view source : refused )
        expectConversion( source, "null" );
}

// What the quick reader accepts the patient one accepts, with the same bytes; what the patient one accepts in a usual
// form is not left to it.
TEST( InAddress, ReadersAgree )
{
    std::mt19937 random( 1 );
    int count = 0;
    for ( int round = 0; round < 20000; ++round ) {
        const std::string_view row =
            round % 2 ? accepted[random() % std::size( accepted )] : refused[random() % std::size( refused )];
        std::string source( row.substr( 0, row.find( '=' ) ) );
        for ( unsigned changes = random() % 3; changes; --changes ) {
            const size_t at = random() % ( source.size() + 1 );
            const char replacement = "0123456789afAF:::..- "[random() % 21];
            source.replace( at, random() % 2, 1, replacement );
        }
        SCOPED_TRACE( source );
        const auto string = pb::string( source );
        uint8_t patient[16], quick[16];
        const int length = in::text::quick( pb::view( string.get() ), quick );
        if ( !length )
            continue;
        ++count;
        ASSERT_TRUE( length == 4 ? in::text::patientV4( string.get(), patient )
                                 : in::text::patientV6( string.get(), patient ) );
        ASSERT_EQ( memcmp( patient, quick, static_cast<size_t>( length ) ), 0 );
    }
    EXPECT_GT( count, 2000 );
    // and the usual forms are not left to the patient one
    uint8_t bytes[16];
    for ( const char *usual :
          { "1.2.3.4", "255.255.255.255", "::", "::1", "fe80::1", "1:2:3:4:5:6:7:8", "::ffff:1.2.3.4" } )
        EXPECT_NE( in::text::quick( pb::view( pb::string( usual ).get() ), bytes ), 0 ) << usual;
}

TEST( InAddress, WritesOtherForms )
{
    struct {
        const char *source, *expanded, *host;
    } const rows[] = {
        { "10.0.0.1", "10.0.0.1", "10.0.0.1" },
        { "::", "0000:0000:0000:0000:0000:0000:0000:0000", "[::]" },
        { "2001:db8::ff", "2001:0db8:0000:0000:0000:0000:0000:00ff", "[2001:db8::ff]" },
        { "1111:2222:3333:4444:5555:6666:7777:8888", "1111:2222:3333:4444:5555:6666:7777:8888",
          "[1111:2222:3333:4444:5555:6666:7777:8888]" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.source );
        EXPECT_EQ( pb::utf8( pb::adopt( inAddressToStringExpand( address( row.source ).get() ) ) ), row.expanded );
        EXPECT_EQ( pb::utf8( pb::adopt( inAddressToHost( address( row.source ).get() ) ) ), row.host );
    }
    EXPECT_EQ( text( pb::adopt( inAddressCreateV6FromV4( address( "10.0.0.1" ).get() ) ) ), "::a00:1" );
    EXPECT_EQ( text( pb::adopt( inAddressTryCreateFromWcstr( L"10.0.0.1", -1 ) ) ), "10.0.0.1" );
}

TEST( InAddress, ReadsHosts )
{
    for ( const char *host : { "10.0.0.1", "[::1]", "[::ffff:102:304]" } )
        EXPECT_EQ( pb::utf8( pb::adopt(
                       inAddressToHost( pb::adopt( inAddressTryCreateFromHost( pb::string( host ).get() ) ).get() ) ) ),
                   host );
    for ( const char *refused : { "::1", "[10.0.0.1]", "[::1", " 10.0.0.1", "[ ::1]", "[::00001]", "[1:2:3:4:5:6:7::]",
                                  "[]", "", "host.example" } )
        EXPECT_FALSE( pb::adopt( inAddressTryCreateFromHost( pb::string( refused ).get() ) ) ) << refused;
}

TEST( InAddress, BuffersOfFourOrSixteenBytes )
{
    const uint8_t bytes[17] = { 1, 2, 3, 4, 5 };
    for ( pbInt length = 0; length <= 17; ++length ) {
        SCOPED_TRACE( length );
        const auto buffer = pb::adopt( pbBufferCreateFromBytes( bytes, length ) );
        const auto made = pb::adopt( inAddressTryCreateFromBuffer( buffer.get() ) );
        EXPECT_EQ( text( made ), length == 4 ? "1.2.3.4" : length == 16 ? "102:304:500::" : "null" );
        if ( made ) {
            EXPECT_TRUE( pbBufferEquals( pb::adopt( inAddressToBuffer( made.get() ) ).get(), buffer.get() ) );
        }
    }
}

TEST( InAddress, KnowsItsRanges )
{
    struct {
        pbBool ( *is )( const struct inAddress * );
        const char *inside, *outside;
    } const rows[] = {
        { inAddressIsAllZero, "0.0.0.0 ::", "0.0.0.1 ::1 1::" },
        { inAddressIsAllOne, "255.255.255.255 ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "255.255.255.254 ffff::ffff" },
        { inAddressIsLoopback, "127.0.0.0 127.255.255.255 ::1", "126.255.255.255 128.0.0.0 :: ::2 ::ffff:127.0.0.1" },
        { inAddressIsPrivate,
          "10.0.0.0 10.255.255.255 172.16.0.0 172.31.255.255 192.168.0.0 192.168.255.255 fc00:: fdff::",
          "9.255.255.255 11.0.0.0 172.15.255.255 172.32.0.0 192.167.255.255 192.169.0.0 fbff:: fe00::" },
        { inAddressIsMulticast, "224.0.0.0 239.255.255.255 ff00:: ffff::", "223.255.255.255 240.0.0.0 feff::" },
        { inAddressIsLinkLocalUnicast,
          "169.254.0.0 169.254.255.255 fe80:: febf::", "169.253.255.255 169.255.0.0 fe7f:: fec0::" },
        { inAddressIsDocumentation, "192.0.2.0 192.0.2.255 198.51.100.1 203.0.113.1 2001:db8:: 2001:db8:ffff::",
          "192.0.1.255 192.0.3.0 198.51.101.0 203.0.112.0 2001:db7:: 2001:db9::" },
        { inAddressIsGlobalUnicast,
          "8.8.8.8 255.255.255.255 240.0.0.1 10.0.0.1 192.0.2.1 2000::1 fec0::1 fc00::1 ::ffff:127.0.0.1",
          "0.0.0.0 :: 127.0.0.1 ::1 224.0.0.1 ff02::1 169.254.0.1 fe80::1" },
        { inAddressIsUnicast, "8.8.8.8 127.0.0.1 ::1 169.254.0.1 fe80::1", "0.0.0.0 :: 224.0.0.1 ff02::1" },
    };
    for ( const auto &row : rows )
        for ( const bool expected : { true, false } ) {
            std::istringstream sources( expected ? row.inside : row.outside );
            for ( std::string source; sources >> source; )
                EXPECT_EQ( row.is( address( source.c_str() ).get() ), expected ) << source << " row " << &row - rows;
        }
}

TEST( InAddress, CountsMatchingBits )
{
    struct {
        const char *a, *b;
        pbInt bits;
    } const rows[] = {
        { "10.0.0.1", "10.0.0.1", 32 },   { "::1", "::1", 128 },
        { "0.0.0.0", "128.0.0.0", 0 },    { "10.0.0.0", "10.0.0.1", 31 },
        { "10.0.0.0", "10.0.128.1", 16 }, { "10.0.0.0", "10.0.1.0", 23 },
        { "fe80::", "fe80::8000", 112 },  { "0.0.0.0", "::", 0 },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( std::string( row.a ) + " " + row.b );
        EXPECT_EQ( inAddressMatchingBits( address( row.a ).get(), address( row.b ).get() ), row.bits );
        EXPECT_EQ( inAddressMatchingBits( address( row.b ).get(), address( row.a ).get() ), row.bits );
    }
}

TEST( InAddress, OrdersByVersionThenUnsignedBytes )
{
    support::expectAscending(
        { "0.0.0.0", "10.0.0.1", "10.0.0.200", "128.0.0.0", "255.0.0.0", "::", "::1", "7fff::", "8000::" }, address );
}

TEST( InAddress, ChangesOnlyItsOwnCopy )
{
    const auto original = address( "10.0.0.1" );
    auto changed = original;
    inAddressSetByteAt( changed.address(), 3, 0x1ff );
    EXPECT_EQ( text( original ), "10.0.0.1" );
    EXPECT_EQ( text( changed ), "10.0.0.255" );
}

TEST( InAddressDeath, Preconditions )
{
    auto v4 = address( "10.0.0.1" ), v6 = address( "::1" );
    support::expectDeaths( {
        { [] { inAddressCreate( 2 ); }, "IN_ADDRESS_VERSION_OK( ver )" },
        { [] { inAddressCreate( -1 ); }, "IN_ADDRESS_VERSION_OK( ver )" },
        { [&] { inAddressCreateV6FromV4( v6.get() ); }, "inAddressVersion( ina ) == IN_ADDRESS_VERSION_4" },
        { [&] { inAddressByteAt( v4.get(), -1 ); }, "byteIdx >= 0" },
        { [&] { inAddressByteAt( v4.get(), 4 ); }, "byteIdx < inAddressLength( ina )" },
        { [&] { inAddressSetByteAt( v4.address(), -1, 0 ); }, "byteIdx >= 0" },
        { [&] { inAddressSetByteAt( v6.address(), 16, 0 ); }, "byteIdx < inAddressLength( *ina )" },
        { [&] { inAddressFrom( pbStringObj( pb::string( "" ).get() ) ); },
          "!obj || pbObjSort(obj)==&in___sort_IN_ADDRESS" },
        { [] { inAddressTryCreateFromString( nullptr ); }, "source" },
        { [&] { inAddressMatchingBits( v4.get(), nullptr ); }, "inaB" },
    } );
}

} // namespace
