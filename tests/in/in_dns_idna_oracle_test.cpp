// Nameprep and the conversions of labels against Python's standard library, over every code point and random labels.
#include "in/dns/in_dns_idna.h"
#include "pb/pb_string.hpp"
#include "rfc/rfc_nameprep.hpp"
#include "rfc/rfc_stringprep.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <optional>
#include <sstream>
#include <unordered_map>

namespace {

using Text = std::u32string;
using Result = std::optional<Text>;

pb::String make( const Text &text )
{
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
}

Result take( struct pbString *string )
{
    const pb::String result = pb::adopt( string );
    return result ? Result( pb::view( result.get() ) ) : std::nullopt;
}

Result prep( const Text &text ) { return take( rfcStringprepProfileNameprep( make( text ).get(), true ) ); }

Result read( const std::string &shown )
{
    if ( shown == "-" )
        return std::nullopt;
    Text text;
    std::istringstream codes( shown == "~" ? "" : shown );
    for ( std::string code; std::getline( codes, code, '.' ); )
        text.push_back( static_cast<char32_t>( std::stoul( code, nullptr, 16 ) ) );
    return text;
}

TEST( IdnaOracle, AgreesWithPython )
{
    const std::string expectations = testing::TempDir() + "in_dns_idna_oracle.txt";
    ASSERT_EQ( std::system( ( "python3 '" IN_IDNA_ORACLE "' > '" + expectations + "'" ).c_str() ), 0 );
    std::ifstream lines( expectations );
    std::unordered_map<char32_t, Result> changed;
    std::string kind, source, expected;
    size_t labels = 0;
    char32_t room[rfc::nameprepQuickGrowth];
    for ( ; lines >> kind >> source >> expected; labels += kind != "P" ) {
        const Text text = *read( source );
        const pb::String label = make( text );
        if ( kind == "P" )
            changed[text.front()] = read( expected );
        else if ( kind == "N" )
            EXPECT_FALSE( rfc::nameprepQuick( text, room ) ) << source;
        else if ( kind == "U" )
            EXPECT_EQ( take( inDnsIdnaLabelToUnicode( label.get() ) ), read( expected ) ) << source;
        else if ( inDnsIdnaLabelOk( label.get() ) )
            EXPECT_EQ( take( inDnsIdnaLabelToAscii( label.get() ) ), read( expected ) ) << source;
        else
            EXPECT_EQ( expected, "-" ) << source;
    }
    EXPECT_GT( labels, 30000u );
    EXPECT_GT( changed.size(), 137468u ); // the private use areas, at least
    for ( char32_t c = 0; c < 0x110000; c = c == 0xD7FF ? 0xE000 : c + 1 ) {
        const auto change = changed.find( c );
        EXPECT_EQ( prep( { c } ), change == changed.end() ? Text{ c } : change->second ) << std::hex << uint32_t( c );
    }
    std::remove( expectations.c_str() );
}

} // namespace
