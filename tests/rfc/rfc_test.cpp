// Nameprep.
#include "pb/pb_string.hpp"
#include "rfc/rfc_stringprep.h"

#include <gmock/gmock.h>
#include <optional>

namespace {

using Text = std::u32string;

std::optional<Text> prep( const Text &text, bool allowUnassigned = false )
{
    const pb::String source = pb::adopt(
        pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
    const pb::String result = pb::adopt( rfcStringprepProfileNameprep( source.get(), allowUnassigned ) );
    return result ? std::optional( Text( pb::view( result.get() ) ) ) : std::nullopt;
}

TEST( Nameprep, MapsNormalisesAndRefuses )
{
    using namespace std::literals;
    const Text honorific = U"\u0635\u0644\u0649 \u0627\u0644\u0644\u0647 \u0639\u0644\u064A\u0647 \u0648\u0633\u0644\u0645";
    struct {
        const char *what;
        Text source;
        std::optional<Text> result;
    } const rows[] = {
        { "empty", U"", U"" },
        { "ASCII letters fold", U"WWW.Example", U"www.example" },
        { "sharp s folds to two", U"Fa\u00DF", U"fass" },
        { "mapped to nothing: soft hyphen, zero width joiner", U"a\u00AD\u200Db", U"ab" },
        { "NFKC composes", U"u\u0308", U"\u00FC" },
        { "NFKC folds width", U"\uFF21", U"a" },
        { "NFKC lengthens", U"\uFDFA\uFDFA", honorific + honorific },
        { "ideographic full stop stays", U"a\u3002b", U"a\u3002b" },
        { "ASCII blank is kept", U"a b", U"a b" },
        { "other blanks are folded to it", U"a\u00A0b", U"a b" },
        { "ogham blank is prohibited", U"a\u1680b", std::nullopt },
        { "ASCII controls are kept", U"\u0001a\0b\u0001\0C"s, U"\u0001a\0b\u0001\0c"s },
        { "other controls are prohibited", U"a\u0085", std::nullopt },
        { "private use", U"\uE000", std::nullopt },
        { "non-character", U"\uFFFE", std::nullopt },
        { "surrogate", Text( 1, char32_t( 0xD800 ) ), std::nullopt },
        { "beyond Unicode", Text( 1, char32_t( 0x110000 ) ), std::nullopt },
        { "replacement character", U"\uFFFD", std::nullopt },
        { "right to left", U"\u05D0\u05D1", U"\u05D0\u05D1" },
        { "mixed directions", U"\u05D0a", std::nullopt },
        { "right to left must end so", U"\u05D01", std::nullopt },
        { "Hangul syllable", U"\u1100\u1161", U"\uAC00" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.what );
        EXPECT_EQ( prep( row.source ), row.result );
    }
}

TEST( Nameprep, UnassignedCodePointsPassWhenAllowed )
{
    const Text unassigned = U"\u0221"; // assigned after Unicode 3.2
    EXPECT_EQ( prep( unassigned, false ), std::nullopt );
    EXPECT_EQ( prep( unassigned, true ), unassigned );
    EXPECT_EQ( prep( U"\uE000", true ), std::nullopt );
}

TEST( Nameprep, LongTextsGrowTheRoom )
{
    Text source, expected;
    for ( int i = 0; i < 200; ++i ) {
        source += U"\u0390\u33C6"; // iota with dialytika and tonos folds to three that compose again; C over kg to four
        expected += U"\u0390c\u2215kg";
    }
    EXPECT_EQ( prep( source ), expected );
}

TEST( NameprepDeathTest, Preconditions ) { EXPECT_DEATH( rfcStringprepProfileNameprep( nullptr, 0 ), ": string" ); }

} // namespace
