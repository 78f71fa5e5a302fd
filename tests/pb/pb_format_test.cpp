// The formatter: what each directive prints, and what it refuses.
#include "pb/pb_boxed_int.h"
#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

namespace {

TEST( Format, PrintsEachDirective )
{
    const auto text = pb::string( "\xC3\xBC" );
    const struct pbString *const none = nullptr;
    const auto seven = pb::adopt( pbBoxedIntCreate( 7 ) );
    const struct {
        pb::String text;
        const char *expected;
    } rows[] = {
        { pb::format( "" ), "" },
        { pb::format( "%%\xE2\x82\xAC%%" ), "%\xE2\x82\xAC%" },
        { pb::format( "%i %i", 0, -12 ), "0 -12" },
        { pb::format( "%i %i", PB_INT_MAX, PB_INT_MIN ), "9223372036854775807 -9223372036854775808" },
        { pb::format( "%!16i %^!16i %!16i", 0xA00, 0xA00, -255 ), "A00 a00 -FF" },
        { pb::format( "%!2i %!36i", PB_INT_MIN, 35 ),
          "-1000000000000000000000000000000000000000000000000000000000000000 Z" },
        { pb::format( "%02!16i:%^02!16i:%02!16i", 10, 10, 256 ), "0A:0a:100" },
        { pb::format( "%04i %03i", -5, 12345 ), "-005 12345" },
        { pb::format( "%b %b %b %i", true, false, 5, true ), "true false true 1" },
        { pb::format( "%c%c%c", U'\u20AC', 'x', 0xD800 ), "\xE2\x82\xACx\xEF\xBF\xBD" },
        { pb::format( "%s %~s %o", text, pb::string( "own" ), text.get() ), "\xC3\xBC own \xC3\xBC" },
        { pb::format( "%o %s %o", seven, none, none ), "7 null null" },
        { pb::format( "%s", pb::string( std::string( 1000, 'x' ) ) ), nullptr }, // beyond the stack
    };
    for ( const auto &row : rows )
        EXPECT_EQ( pb::utf8( row.text ), row.expected ? row.expected : std::string( 1000, 'x' ) );
}

TEST( Format, ReleasesExactlyWhatIsMarkedAsConsumed )
{
    const auto kept = pb::string( "kept" ), consumed = pb::string( "consumed" );
    const pbFormatArgument arguments[] = {
        { PB_FORMAT_ARGUMENT_OBJ, 0, pbStringObj( kept.get() ) },
        { PB_FORMAT_ARGUMENT_OBJ_CONSUMED, 0, pbStringObj( pbStringRetain( consumed.get() ) ) },
        { PB_FORMAT_ARGUMENT_OBJ_CONSUMED, 0, nullptr },
    };
    pb::String text = pb::string( "> " );
    pbStringAppendFormatCstr( text.address(), "%~s %s %~o...", 10, arguments, 3 );
    EXPECT_EQ( pb::utf8( text ), "> kept consumed null" );
    EXPECT_FALSE( pbObjIsShared( pbStringObj( consumed.get() ) ) );
    EXPECT_FALSE( pbObjIsShared( pbStringObj( kept.get() ) ) );
}

TEST( Format, RefusesWhatDoesNotFit )
{
    const auto seven = pb::adopt( pbBoxedIntCreate( 7 ) );
    support::expectDeaths( {
        { [] { pb::format( "%i" ); }, "the format has an argument for each directive" },
        { [] { pb::format( "%%", 1 ); }, "the format has a directive for each argument" },
        { [] { pb::format( "%x", 1 ); }, "the format has an unknown directive" },
        { [] { pb::format( "%", 1 ); }, "the format has an unknown directive" },
        { [] { pb::format( "%o", 1 ); }, "%s and %o read an object" },
        { [&] { pb::format( "%i", seven ); }, "%i, %b and %c read a number" },
        { [&] { pb::format( "%s", seven ); }, "%s reads a string" },
        { [] { pb::format( "%~i", 1 ); }, "~ belongs to %s and %o" },
        { [] { pb::format( "%!37i", 1 ); }, "the base of a format is 2..36" },
        { [] { pb::format( "%!i", 1 ); }, "the format has a number where it needs one" },
    } );
}

} // namespace
