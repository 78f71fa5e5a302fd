// pbEnum and pbFlagset: names of numbers and of bits.
#include "pb/pb_enum.h"
#include "pb/pb_flagset.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

namespace {

TEST( Names, EnumerantsParseExactly )
{
    auto colours = pb::adopt( pbEnumCreate() );
    pbEnumAddEnumerantCstr( colours.address(), "RED", -1, 0 );
    const auto before = colours;
    pbEnumAddEnumerantCstr( colours.address(), "GREENISH", 5, 7 );
    EXPECT_EQ( pb::utf8( pb::adopt( pbEnumGenerate( colours.get(), 7 ) ) ), "GREEN" );
    const auto parse = [&]( const char *text ) { return pbEnumParse( colours.get(), pb::string( text ).get() ); };
    EXPECT_EQ( parse( "GREEN" ), 7 );
    EXPECT_EQ( parse( "green" ), -1 );
    EXPECT_EQ( parse( " RED" ), -1 );
    EXPECT_EQ( pbEnumParse( before.get(), pb::string( "GREEN" ).get() ), -1 );
    const char *const isNew = "the enumerant's name and value are new";
    support::expectDeaths( {
        { [&] { pbEnumAddEnumerantCstr( colours.address(), "RED", -1, 9 ); }, isNew },
        { [&] { pbEnumAddEnumerantCstr( colours.address(), "BLUE", -1, 7 ); }, isNew },
        { [&] { pbEnumGenerate( colours.get(), 1 ); }, "the value is an enumerant" },
    } );
}

TEST( Names, FlagsJoinAscendingAndParseLeniently )
{
    auto flags = pb::adopt( pbFlagsetCreate() );
    pbFlagsetAddFlagCstr( flags.address(), "HIGH", -1, UINT64_C( 1 ) << 63 );
    pbFlagsetAddFlagCstr( flags.address(), "ONE", -1, 1 );
    pbFlagsetAddFlagCstr( flags.address(), "FOUR", -1, 4 );
    const auto generate = [&]( uint64_t bits ) {
        return pb::utf8( pb::adopt( pbFlagsetGenerate( flags.get(), bits ) ) );
    };
    EXPECT_EQ( generate( 0 ), "" );
    EXPECT_EQ( generate( ~UINT64_C( 0 ) ), "ONE|FOUR|HIGH" );
    EXPECT_EQ( generate( 6 ), "FOUR" );
    const auto parse = [&]( const char *text ) { return pbFlagsetParse( flags.get(), pb::string( text ).get() ); };
    EXPECT_EQ( parse( "" ), 0u );
    EXPECT_EQ( parse( " FOUR |UNKNOWN||\tONE|FOUR" ), 5u );
    EXPECT_EQ( parse( "one" ), 0u );
    EXPECT_EQ( parse( "HIGH" ), UINT64_C( 1 ) << 63 );
    EXPECT_TRUE( pbFlagsetHasFlagCstr( flags.get(), "ONE", -1 ) );
    EXPECT_FALSE( pbFlagsetHasFlagCstr( flags.get(), "ONE", 2 ) );
    support::expectDeaths( {
        { [&] { pbFlagsetAddFlagCstr( flags.address(), "ONE", -1, 8 ); },
          "!pbFlagsetHasFlagCstr( *flagset, name, nameLength )" },
        { [&] { pbFlagsetAddFlagCstr( flags.address(), "EIGHT", -1, 4 ); }, "the flag's mask is new" },
    } );
}

} // namespace
