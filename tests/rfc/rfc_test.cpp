// Nameprep.
#include "pb/pb_string.hpp"
#include "rfc/rfc_stringprep.h"

#include <gmock/gmock.h>
#include <optional>

namespace {

using Text = std::u32string;

std::optional<Text> prep( const Text &text, bool allowUnassigned = false )
{
    const auto chars = reinterpret_cast<const pbChar *>( text.data() );
    const pb::String source = pb::adopt( pbStringCreateFromChars( chars, static_cast<pbInt>( text.size() ) ) );
    const pb::String result = pb::adopt( rfcStringprepProfileNameprep( source.get(), allowUnassigned ) );
    return result ? std::optional( Text( pb::view( result.get() ) ) ) : std::nullopt;
}

TEST( Nameprep, MapsNormalisesAndRefuses )
{
    using namespace std::literals;
    const std::pair<Text, std::optional<Text>> rows[] = {
        { U"", U"" },
        { U"WWW.Fa\u00DF a", U"www.fass a" },    // folds; ASCII blanks stay
        { U"a\u00AD\u200Db", U"ab" },            // mapped to nothing
        { U"u\u0308\uFF21\u00A0", U"\u00FCa " }, // NFKC composes, and folds width and blanks
        { U"\u1100\u1161", U"\uAC00" },          // Hangul
        { U"\u0001a\0b\u0001\0C"s, U"\u0001a\0b\u0001\0c"s }, // ASCII controls stay, and U+0000 does not end the text
        { U"a\u0085", std::nullopt },             // other controls
        { U"a\u1680b", std::nullopt },            // other blanks
        { U"\uE000", std::nullopt },              // private use
        { U"\uFFFE", std::nullopt },              // non-character
        { Text( 1, char32_t( 0xD800 ) ), std::nullopt },
        { Text( 1, char32_t( 0x110000 ) ), std::nullopt },
        { U"\u05D0\u05D1", U"\u05D0\u05D1" }, // right to left
        { U"\u05D0a", std::nullopt },           // mixed
        { U"\u05D01", std::nullopt },           // does not end as it began
    };
    for ( const auto &[source, expected] : rows )
        EXPECT_EQ( prep( source ), expected ) << "row " << &source - &rows[0].first;
    EXPECT_EQ( prep( U"\u0221" ), std::nullopt ); // assigned after Unicode 3.2
    EXPECT_EQ( prep( U"\u0221", true ), U"\u0221" );
    EXPECT_EQ( prep( U"\uE000", true ), std::nullopt );
}

TEST( Nameprep, LongTextsGrowTheRoom )
{
    Text source, expected;
    for ( int i = 0; i < 200; ++i ) {
        source += U"\u33C6"; // C over kg
        expected += U"c\u2215kg";
    }
    EXPECT_EQ( prep( source ), expected );
}

} // namespace
