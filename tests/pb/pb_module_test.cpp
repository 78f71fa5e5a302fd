// Versions, and the order in which a host starts and ends modules.
#include "pb/pb_module.h"
#include "pb/pb_module_version.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

#include <array>

namespace {

std::string events;
char refusing; // the module that does not start

void note( char event, char name ) { events.append( { event, name } ); }

// "a" to "d"; a start-up notes "+a", the phases of the shut-down "-a" and "~a".
template <char Name> struct Scripted {
    static constexpr char name[] = { Name, '\0' };
    static inline pbModuleRecord record{ name, "", "1.0", "", "", {}, "", "" };
    static constexpr pbModule module = {
        &record,
        [] { return Name == refusing ? pbBool{ 0 } : ( note( '+', Name ), pbBool{ 1 } ); },
        nullptr,
        [] { note( '-', Name ); },
        [] { note( '~', Name ); },
        nullptr };
};

// Starts a to d with the given requirements and shuts them down; what happened, or the reason that they did not start.
std::string run( const std::array<const char *, 4> &required )
{
    Scripted<'a'>::record.requiredModules = required[0];
    Scripted<'b'>::record.requiredModules = required[1];
    Scripted<'c'>::record.requiredModules = required[2];
    Scripted<'d'>::record.requiredModules = required[3];
    static constexpr const pbModule *modules[] = { &Scripted<'a'>::module, &Scripted<'b'>::module, &Scripted<'c'>::module,
                                                   &Scripted<'d'>::module };
    pb::String reason;
    if ( const auto host = pb::adopt( pbHostTryStart( modules, 4, reason.address() ) ) )
        pbHostShutdown( host.get() );
    return reason ? events + " " + pb::utf8( reason ) : events;
}

// Modules start once per process, so each row has one of its own.
TEST( HostDeathTest, StartsAndEndsInTheOrderOfRequirements )
{
    const struct {
        std::array<const char *, 4> required; // of a to d
        char refusing;
        std::string events;
    } table[] = {
        { { "", "", "", "" }, 0, "+a+b+c+d-d-c-b-a~d~c~b~a" },
        { { "c  d", "a", "d", "" }, 0, "+d+c+a+b-b-a-c-d~b~a~c~d" },
        { { "", "a", "a b", "a b c" }, 'c', "+a+b-b-a~b~a module \"c\" cannot start" },
        { { "", "", "", "" }, 'a', " module \"a\" cannot start" },
        { { "", "x", "", "" }, 0, " module \"b\" requires \"x\", which is not there" },
        { { "b", "d", "b", "c" }, 0, " modules require each other: b, d, c, b" },
        { { "", "", "c", "" }, 0, " modules require each other: c, c" },
    };
    for ( const auto &row : table ) {
        SCOPED_TRACE( row.events );
        const auto child = [&] {
            refusing = row.refusing;
            std::fprintf( stderr, "[%s]", run( row.required ).c_str() );
            std::exit( 0 );
        };
        EXPECT_EXIT( child(), testing::ExitedWithCode( 0 ), testing::HasSubstr( "[" + row.events + "]" ) );
    }
}

TEST( HostDeathTest, StartsOnceAndNamesDoNotRepeat )
{
    const auto child = [] {
        const std::string first = run( { "", "", "", "" } ), second = run( { "", "", "", "" } );
        pbModule twin = Scripted<'a'>::module;
        const pbModule *const modules[] = { &Scripted<'a'>::module, &twin };
        pb::String reason = pb::string( "a reason before" );
        pb::adopt( pbHostTryStart( modules, 2, reason.address() ) ).reset();
        std::fprintf( stderr, "[%s][%s][%s]", first.c_str(), second.c_str(), pb::utf8( reason ).c_str() );
        std::exit( 0 );
    };
    EXPECT_EXIT( child(), testing::ExitedWithCode( 0 ),
                 testing::HasSubstr( "~a][+a+b+c+d-d-c-b-a~d~c~b~a modules start once per process][two modules are named \"a\"]" ) );
    support::expectDeaths( { { [] { pbHostShutdown( nullptr ); }, "host" },
                             { [] {
                                  const auto host = pb::adopt( pbHostTryStart( nullptr, 0, nullptr ) );
                                  pbHostShutdown( host.get() );
                                  pbHostShutdown( host.get() );
                              },
                               "host->running" } } );
}

TEST( ModuleVersion, IsTwoNumbers )
{
    const char *const accepted[] = { "0.0", "0.9", "0.10", "3.0", "17.1", "17.09", "9223372036854775807.1" }; // ascending
    pb::Ref<pbModuleVersion> before;
    for ( const char *text : accepted ) {
        SCOPED_TRACE( text );
        const auto version = pb::adopt( pbModuleVersionTryCreateFromCstr( text, -1 ) );
        ASSERT_TRUE( version );
        EXPECT_LT( pbModuleVersionCompare( before.get(), version.get() ), 0 );
        before = version;
    }
    for ( const char *text : { "", ".", "1", "1.", ".1", "1.2.3", "-1.2", "+1.2", "1.-2", " 1.2", "1.2 ", "1.x", "1,2",
                               "9223372036854775808.1" } )
        EXPECT_FALSE( pb::adopt( pbModuleVersionTryCreateFromCstr( text, -1 ) ) ) << text;
    const auto cut = pb::adopt( pbModuleVersionTryCreateFromCstr( "17.123", 4 ) );
    EXPECT_EQ( pb::utf8( pb::adopt( pbModuleVersionToString( cut.get() ) ) ), "17.1" );
}

} // namespace
