// Host grammar.
#include "iri/iri_gens.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

namespace {

bool isHost( const pb::String &text ) { return iriGensValidatePart( text.get(), IRI_GENS_PART_HOST ); }
bool isHost( pbChar c ) { return isHost( pb::adopt( pbStringCreateFromChars( &c, 1 ) ) ); }

TEST( IriGens, Host )
{
    const char *const accepted[] = {
        "", "www.example.com", "192.0.2.1", "999.1", "A-z.0_~!$&'()*+,;=", "b\u00fccher.example", "a%2Fb%ff",
        // IPv6address
        "[::]", "[::1]", "[1::]", "[2001:DB8::a:0]", "[1:2:3:4:5:6:7:8]", "[1:2:3:4:5:6:7::]", "[::2:3:4:5:6:7:8]",
        "[1:2:3:4::5:6:7]", "[::192.0.2.1]", "[1:2:3:4:5:6:0.0.0.255]", "[::2:3:4:5:6:192.0.2.1]",
        // IPvFuture
        "[v1.a]", "[Vff.a:b!_]",
    };
    const char *const rejected[] = {
        "a%2", "a%", "%g0", " 10.0.0.1", "10.0.0.1 ", "a:1", "a/b", "a@b", "a]", "a\x7f", "a\"b",
        // groups
        "[1:2:3:4::5:6:7:8]", "[1:2:3:4:5:6:7:8::]", "[1:2:3:4:5:6:7]", "[1:2:3:4:5:6:7:8:9]", "[::00001]", "[::g]",
        "[:1:2:3:4:5:6:7:8]", "[1:2:3:4:5:6:7:8:]", "[:1::]", "[1::2::3]", "[:::]", "[::1:]", "[ ::1]", "[::1%eth0]",
        // an IPv4address at the end
        "[1::3:4:5:6:7:192.0.2.1]", "[1:2:3:4:5:6:7:192.0.2.1]", "[192.0.2.1]", "[192.0.2.1::]", "[::192.0.2.1:1]",
        "[::192.0.2.256]", "[::192.0.2.01]", "[::192.0.2]", "[::192.0.2.1.1]", "[::192.0..1]",
        // IPvFuture and brackets
        "[v.a]", "[v1.]", "[vg.a]", "[v1.%20]", "[]", "[", "[::1", "[::1]x", "x[::1]", "[[::1]]",
    };
    for ( const char *const text : accepted )
        EXPECT_TRUE( isHost( pb::string( text ) ) ) << text;
    for ( const char *const text : rejected )
        EXPECT_FALSE( isHost( pb::string( text ) ) ) << text;
}

// The edges of ucschar (RFC 3987 section 2.2).
TEST( IriGens, CodePointsOfARegName )
{
    for ( const pbChar c : { 0xA0, 0xD7FF, 0xF900, 0xFDCF, 0xFDF0, 0xFFEF, 0x10000, 0x1FFFD, 0xE1000, 0xEFFFD } )
        EXPECT_TRUE( isHost( c ) ) << c;
    for ( const pbChar c : { 0x9F, 0xD800, 0xF8FF, 0xFDD0, 0xFDEF, 0xFFF0, 0x1FFFE, 0xE0FFF, 0xEFFFE, 0xF0000 } )
        EXPECT_FALSE( isHost( c ) ) << c;
}

TEST( IriGensDeathTest, Preconditions )
{
    support::expectDeaths( {
        { [] { iriGensValidatePart( nullptr, 5 ); }, "string" },
        { [] { iriGensValidatePart( pb::string( "a" ).get(), 4 ); }, "part == IRI_GENS_PART_HOST" },
    } );
}

} // namespace
