// Host grammar.
#include "iri/iri_gens.h"
#include "pb/pb_string.hpp"

#include <gmock/gmock.h>

namespace {

TEST( IriGens, Host )
{
    struct {
        const char *host;
        bool ok;
    } const rows[] = {
        // reg-name and IPv4address
        { "", true },
        { "www.example.com", true },
        { "192.0.2.1", true },
        { "999.1", true }, // a name
        { "A-z.0_~!$&'()*+,;=", true },
        { "b\u00fccher.example", true },
        { "a%2Fb%ff", true },
        { "a%2", false },
        { "a%", false },
        { "%g0", false },
        { " 10.0.0.1", false },
        { "10.0.0.1 ", false },
        { "a:1", false },
        { "a/b", false },
        { "a@b", false },
        { "a]", false },
        { "a\x7f", false },
        { "a\"b", false },
        // IPv6address
        { "[::]", true },
        { "[::1]", true },
        { "[1::]", true },
        { "[2001:DB8::a:0]", true },
        { "[1:2:3:4:5:6:7:8]", true },
        { "[1:2:3:4:5:6:7::]", true },
        { "[::2:3:4:5:6:7:8]", true },
        { "[1:2:3:4::5:6:7]", true },
        { "[1:2:3:4::5:6:7:8]", false },
        { "[1:2:3:4:5:6:7:8::]", false },
        { "[1:2:3:4:5:6:7]", false },
        { "[1:2:3:4:5:6:7:8:9]", false },
        { "[::00001]", false },
        { "[::g]", false },
        { "[:1:2:3:4:5:6:7:8]", false },
        { "[1:2:3:4:5:6:7:8:]", false },
        { "[:1::]", false },
        { "[1::2::3]", false },
        { "[:::]", false },
        { "[::1:]", false },
        { "[ ::1]", false },
        { "[::1%eth0]", false },
        // with an IPv4address at the end
        { "[::192.0.2.1]", true },
        { "[1:2:3:4:5:6:0.0.0.255]", true },
        { "[::2:3:4:5:6:192.0.2.1]", true },
        { "[1::3:4:5:6:7:192.0.2.1]", false },
        { "[1:2:3:4:5:6:7:192.0.2.1]", false },
        { "[192.0.2.1]", false },
        { "[192.0.2.1::]", false },
        { "[::192.0.2.1:1]", false },
        { "[::192.0.2.256]", false },
        { "[::192.0.2.01]", false },
        { "[::192.0.2]", false },
        { "[::192.0.2.1.1]", false },
        { "[::192.0..1]", false },
        // IPvFuture
        { "[v1.a]", true },
        { "[Vff.a:b!_]", true },
        { "[v.a]", false },
        { "[v1.]", false },
        { "[vg.a]", false },
        { "[v1.%20]", false },
        // brackets
        { "[]", false },
        { "[", false },
        { "[::1", false },
        { "[::1]x", false },
        { "x[::1]", false },
        { "[[::1]]", false },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.host );
        EXPECT_EQ( iriGensValidatePart( pb::string( row.host ).get(), IRI_GENS_PART_HOST ), row.ok );
    }
}

// The edges of ucschar (RFC 3987 section 2.2).
TEST( IriGens, CodePointsOfARegName )
{
    struct {
        pbChar first, last;
    } const ranges[] = { { 0xA0, 0xD7FF }, { 0xF900, 0xFDCF }, { 0xFDF0, 0xFFEF }, { 0x10000, 0x1FFFD },
                         { 0x20000, 0x2FFFD }, { 0xD0000, 0xDFFFD }, { 0xE1000, 0xEFFFD } };
    const auto ok = []( pbChar c ) {
        return iriGensValidatePart( pb::adopt( pbStringCreateFromChars( &c, 1 ) ).get(), IRI_GENS_PART_HOST );
    };
    for ( const auto &range : ranges ) {
        SCOPED_TRACE( range.first );
        EXPECT_FALSE( range.first != 0x10000 && ok( range.first - 1 ) );
        EXPECT_TRUE( ok( range.first ) );
        EXPECT_TRUE( ok( range.last ) );
        EXPECT_FALSE( ok( range.last + 1 ) );
    }
    EXPECT_FALSE( ok( 0xFFFFF ) );
    EXPECT_FALSE( ok( 0x10FFFF ) );
}

TEST( IriGensDeathTest, Preconditions )
{
    EXPECT_DEATH( iriGensValidatePart( nullptr, 5 ), ": string" );
    EXPECT_DEATH( iriGensValidatePart( pb::string( "a" ).get(), 4 ), ": part == IRI_GENS_PART_HOST" );
}

} // namespace
