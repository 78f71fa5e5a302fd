// pbString: UTF-8 in and out, editing, pieces, numbers, comparisons.
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> texts( struct pbVector *pieces )
{
    const auto vector = pb::adopt( pieces );
    std::vector<std::string> result;
    for ( pbInt i = 0; i < pbVectorLength( vector.get() ); ++i )
        result.push_back( pb::utf8( pb::adopt( pbStringFrom( pbVectorObjAt( vector.get(), i ) ) ) ) );
    return result;
}

TEST( String, ReadsUtf8 )
{
    static const struct {
        std::string bytes;
        std::u32string text;
        bool wellFormed = true;
    } rows[] = {
        { "", U"" }, { "1234567", U"1234567" }, { "12345678", U"12345678" }, { "ten bytes\x7F", U"ten bytes\x7F" },
        { std::string( "a\0b", 3 ), { U"a\0b", 3 } },
        { "123456789\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80z", U"123456789\u00FC\u20AC\U0001F600z" },
        { "\xEF\xBF\xBD", U"\uFFFD" },                  // a replacement character that was sent as such
        { "a\x80z", U"a\uFFFDz", false },               // continuation alone
        { "a\xC3", U"a\uFFFD", false },                 // cut off
        { "\xC0\x80", U"\uFFFD\uFFFD", false },         // overlong
        { "\xFFx", U"\uFFFDx", false },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( testing::PrintToString( row.bytes ) );
        const auto size = static_cast<pbInt>( row.bytes.size() );
        const auto text = pb::adopt( pbStringCreateFromCstr( row.bytes.data(), size ) );
        EXPECT_EQ( pb::view( text.get() ), row.text );
        EXPECT_TRUE( pbStringEqualsCstr( text.get(), row.bytes.data(), size ) );
        const auto strict = pb::adopt( pbStringTryCreateFromUtf8( row.bytes.data(), size ) );
        ASSERT_EQ( static_cast<bool>( strict ), row.wellFormed );
        if ( strict ) {
            EXPECT_EQ( pb::utf8( strict ), row.bytes );
        }
    }
    const auto surrogate = pb::adopt( pbStringTryCreateFromUtf8( "\xED\xA0\x80", 3 ) );
    EXPECT_FALSE( surrogate );
    const pbChar noScalars[] = { 0xD800, 0x110000 };
    EXPECT_EQ( pb::utf8( pb::adopt( pbStringCreateFromChars( noScalars, 2 ) ) ), "\xEF\xBF\xBD\xEF\xBF\xBD" );
}

TEST( String, EditsItsOwnCopy )
{
    pb::String text = pb::string( " \t\v\f\r\nab c \n" );
    const pb::String before = text;
    pbStringTrim( text.address() );
    EXPECT_EQ( pb::utf8( text ), "ab c" );
    EXPECT_EQ( pbStringLength( before.get() ), 12 );
    pbStringDelLeading( text.address(), 1 );
    pbStringDelTrailing( text.address(), 1 );
    pbStringAppend( text.address(), text.get() );
    EXPECT_EQ( pb::utf8( text ), "b b " );
    pbStringAppendChar( text.address(), 0x20AC );
    pbStringPrepend( text.address(), text.get() );
    pbStringAppendCstr( text.address(), "\xC3\xBC", -1 );
    EXPECT_EQ( pb::utf8( text ), "b b \xE2\x82\xAC" "b b \xE2\x82\xAC\xC3\xBC" );
    const pb::String shared = text;
    pbStringDelTrailing( text.address(), 11 );
    EXPECT_EQ( pbStringLength( text.get() ), 0 );
    std::string expected;
    for ( int i = 0; i < 200; ++i ) { // through several blocks
        pbStringAppendChar( text.address(), 'a' + i % 26 );
        expected.push_back( static_cast<char>( 'a' + i % 26 ) );
    }
    EXPECT_EQ( pb::utf8( text ), expected );
    pb::String blank = pb::string( " \n" ), leading = pb::string( "  x " );
    pbStringTrim( blank.address() );
    pbStringTrimLeading( leading.address() );
    EXPECT_EQ( pb::utf8( blank ) + pb::utf8( leading ), "x " );
}

TEST( String, Splits )
{
    const auto split = []( const char *text, pbInt pieces ) {
        return texts( pbStringSplitChar( pb::string( text ).get(), ':', pieces ) );
    };
    EXPECT_THAT( split( "", -1 ), ElementsAre( "" ) );
    EXPECT_THAT( split( "::", -1 ), ElementsAre( "", "", "" ) );
    EXPECT_THAT( split( "a:b:c", 2 ), ElementsAre( "a", "b:c" ) );
    EXPECT_THAT( split( "a:b:c", 1 ), ElementsAre( "a:b:c" ) );
    EXPECT_THAT( split( "a:b", 5 ), ElementsAre( "a", "b" ) );
    const auto words = []( const char *text ) { return texts( pbStringSplitWhitespace( pb::string( text ).get() ) ); };
    EXPECT_THAT( words( " a\t b\n" ), ElementsAre( "a", "b" ) );
    EXPECT_THAT( words( "ab" ), ElementsAre( "ab" ) );
    EXPECT_THAT( words( "  " ), IsEmpty() );
    const auto lines = []( const char *text ) { return texts( pbStringSplitLines( pb::string( text ).get() ) ); };
    EXPECT_THAT( lines( "a\n\nb" ), ElementsAre( "a", "", "b" ) );
    EXPECT_THAT( lines( "a\n" ), ElementsAre( "a" ) );
    EXPECT_THAT( lines( "" ), IsEmpty() );
}

TEST( String, ScansIntegers )
{
    static const struct {
        const char *text;
        pbInt base, scanned, value; // scanned 0: fails
    } rows[] = {
        { "0", 10, 1, 0 }, { "-0", 10, 2, 0 }, { "0012x", 10, 4, 12 }, { "12.5", 10, 2, 12 },
        { "9223372036854775807", 10, 19, PB_INT_MAX }, { "-9223372036854775808", 10, 20, PB_INT_MIN },
        { "9223372036854775808", 10, 0, 0 }, { "-9223372036854775809", 10, 0, 0 }, { "18446744073709551617", 10, 0, 0 },
        { "7fFFffffFFFFffff", 16, 16, PB_INT_MAX }, { "-8000000000000000", 16, 17, PB_INT_MIN },
        { "8000000000000000", 16, 0, 0 }, { "zZ!", 36, 2, 35 * 36 + 35 }, { "12", 2, 1, 1 }, { "2", 2, 0, 0 },
        { "0x10", 16, 1, 0 }, // no prefix
        { "", 10, 0, 0 }, { "-", 10, 0, 0 }, { "--1", 10, 0, 0 }, { "+1", 10, 0, 0 }, { " 1", 10, 0, 0 },
        { "\xD9\xA1", 10, 0, 0 }, // U+0661, an Arabic digit
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.text );
        for ( const std::string before : { "", "-x" } ) {
            const auto text = pb::string( before + row.text );
            pbInt value = 77, scanned = 77;
            const auto offset = static_cast<pbInt>( before.size() );
            EXPECT_EQ( pbStringScanInt( text.get(), offset, row.base, &value, &scanned ), row.scanned > 0 );
            EXPECT_EQ( value, row.scanned ? row.value : 77 );
            EXPECT_EQ( scanned, row.scanned ? row.scanned : 77 );
        }
    }
}

TEST( String, FindsAndCompares )
{
    const auto text = pb::string( "abcabc" );
    EXPECT_EQ( pbStringFind( text.get(), 1, pb::string( "abc" ).get() ), 3 );
    EXPECT_EQ( pbStringFind( text.get(), 4, pb::string( "abc" ).get() ), -1 );
    EXPECT_EQ( pbStringFind( text.get(), 6, pb::string( "" ).get() ), 6 );
    EXPECT_EQ( pbStringFindChar( text.get(), 3, 'c' ), 5 );
    EXPECT_EQ( pbStringFindLastChar( text.get(), 'a' ), 3 );
    EXPECT_EQ( pbStringFindLastChar( text.get(), 'x' ), -1 );
    EXPECT_TRUE( pbStringBeginsWithCstr( text.get(), "abcabc", -1 ) );
    EXPECT_FALSE( pbStringBeginsWithCstr( text.get(), "abcabca", -1 ) );
    EXPECT_TRUE( pbStringEndsWithChar( text.get(), 'c' ) );
    EXPECT_FALSE( pbStringBeginsWithChar( pb::string( "" ).get(), 'a' ) );
    EXPECT_FALSE( pbStringEqualsCstr( text.get(), "abc", -1 ) );
    EXPECT_TRUE( pbStringEqualsCstrIgnoreCase( text.get(), "aBCabCxx", 6 ) );
    EXPECT_FALSE( pbStringEqualsCstrIgnoreCase( pb::string( "@" ).get(), "`", -1 ) );

    const pb::String ascending[] = { pb::string( "" ), pb::string( "10" ), pb::string( "2" ), pb::string( "2a" ),
                                     pb::string( "\xEF\xBF\xBD" ), pb::string( "\xF0\x9F\x98\x80" ) };
    for ( const pb::String &a : ascending )
        for ( const pb::String &b : ascending )
            EXPECT_EQ( pbStringCompare( a.get(), b.get() ), &a < &b ? -1 : &a > &b );
}

TEST( String, FoldsCaseInFull )
{
    static const struct {
        const char *a, *b;
        bool equal;
    } rows[] = {
        { "Stra\xC3\x9F" "e", "STRASSE", true },           // U+00DF folds to "ss"
        { "\xCE\xA3", "\xCF\x82", true },                  // sigma and final sigma
        { "\xC4\xB0", "i", false },                        // dotted capital I keeps its dot
        { "HOST-1", "host-1", true }, { "a", "b", false }, { "a", "aa", false },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.a );
        EXPECT_EQ( pbStringEqualsCaseFold( pb::string( row.a ).get(), pb::string( row.b ).get() ), row.equal );
    }
    EXPECT_EQ( pb::utf8( pb::adopt( pbStringToCaseFold( pb::string( "A\xC3\x9CZ" ).get() ) ) ), "a\xC3\xBCz" );
}

TEST( String, GivesTerminatedBytesUnlessTheyWouldBeCut )
{
    char *bytes = pbStringTryConvertToBytesZ( pb::string( "\xC3\xBCx" ).get() );
    EXPECT_STREQ( bytes, "\xC3\xBCx" );
    pbBytesZFree( bytes );
    EXPECT_EQ( pbStringTryConvertToBytesZ( pb::string( { "a\0", 2 } ).get() ), nullptr );
}

TEST( String, AssertsItsContract )
{
    pb::String text = pb::string( "abc" );
    pbInt value, length;
    support::expectDeaths( {
        { [] { pbStringCreateFromCstr( nullptr, 1 ); }, "bytes || byteCount == 0" },
        { [] { pbStringCreateFromCstr( "", -2 ); }, "byteCount >= -1" },
        { [&] { pbStringCharAt( text.get(), 3 ); }, "index >= 0 && index < string->length" },
        { [&] { pbStringDelLeading( text.address(), 4 ); }, "count >= 0 && count <= ( *string )->length" },
        { [&] { pbStringSplitChar( text.get(), ':', 0 ); }, "maxPieces == -1 || maxPieces >= 1" },
        { [&] { pbStringScanInt( text.get(), 4, 10, &value, &length ); },
          "offset >= 0 && offset <= pbStringLength( string )" },
        { [&] { pbStringScanInt( text.get(), 0, 37, &value, &length ); }, "base >= 2 && base <= 36" },
    } );
}

} // namespace
