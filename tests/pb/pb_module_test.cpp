// Versions, and the order in which a host starts and ends modules.
#include "pb/pb_module.h"
#include "pb/pb_module_version.h"
#include "pb/pb_string.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    pbModuleRecord *const records[] = { &Scripted<'a'>::record, &Scripted<'b'>::record, &Scripted<'c'>::record,
                                        &Scripted<'d'>::record };
    for ( size_t i = 0; i < required.size(); ++i )
        records[i]->requiredModules = required[i];
    const pbModule *const modules[] = { &Scripted<'a'>::module, &Scripted<'b'>::module, &Scripted<'c'>::module,
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
            events.clear();
            std::fprintf( stderr, "[%s]", run( { "", "", "", "" } ).c_str() );
            std::exit( 0 );
        };
        const bool started = row.refusing || row.events.front() == '+'; // else nothing was: the modules can still start
        const std::string again = started ? "[ modules start once per process]" : "[+a+b+c+d-d-c-b-a~d~c~b~a]";
        EXPECT_EXIT( child(), testing::ExitedWithCode( 0 ), testing::HasSubstr( "[" + row.events + "]" + again ) );
    }
}

TEST( ModuleVersion, IsTwoNumbers )
{
    pb::Ref<pbModuleVersion> before;
    for ( const char *text : { "0.0", "0.9", "0.10", "3.0", "17.1", "17.09", "9223372036854775807.1" } ) { // ascending
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
