// Configuration files: what is refused, where and why; what is accepted; what is started.
#include "cs/cs_configuration.h"
#include "cs/cs_diagnosis.h"
#include "cs/tables.hpp"
#include "cs/test_sort.hpp"
#include "pb/pb_vector.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sys/resource.h>

using test::Store;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Configuration = pb::Ref<struct csConfiguration>;

struct Parsed {
    Configuration configuration;
    std::vector<std::string> problems;
};

Parsed collected( struct csConfiguration *configuration, struct pbVector *problems )
{
    Parsed parsed{ pb::adopt( configuration ), {} };
    const auto vector = pb::adopt( problems );
    for ( pbInt i = 0; i < pbVectorLength( vector.get() ); ++i )
        parsed.problems.push_back( pb::utf8( pbStringFrom( pb::adopt( pbVectorObjAt( vector.get(), i ) ).get() ) ) );
    EXPECT_EQ( !parsed.configuration, !parsed.problems.empty() );
    return parsed;
}
Parsed parse( std::string_view text )
{
    struct pbVector *problems = pbVectorCreate(); // to be released by the call
    auto *const configuration =
        csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ), pb::string( "F" ).get(), &problems );
    return collected( configuration, problems );
}
Parsed load( const std::string &path )
{
    struct pbVector *problems = nullptr;
    auto *const configuration = csConfigurationTryLoad( pb::string( path ).get(), &problems );
    return collected( configuration, problems );
}
// A configuration as the record "a", all in line 1; its config begins at column 55.
std::string record( const std::string &config )
{
    return R"({ "objects": { "a": { "sort": "TEST_PHONE", "config": )" + config + " } } }";
}
std::vector<std::string> problemsOf( const std::string &config )
{
    return parse( record( config ) ).problems;
}
std::string nested( int levels )
{
    const auto count = static_cast<size_t>( levels );
    return R"({ "title": )" + std::string( count, '[' ) + "1" + std::string( count, ']' ) + " }";
}

struct BadFile {
    std::string text;
    std::vector<std::string> problems; // without "F:"
};

void expectProblems( const std::vector<BadFile> &table )
{
    for ( const BadFile &bad : table ) {
        SCOPED_TRACE( bad.text );
        std::vector<std::string> expected;
        for ( const std::string &problem : bad.problems )
            expected.push_back( "F:" + problem );
        EXPECT_THAT( parse( bad.text ).problems, ElementsAreArray( expected ) );
    }
}

std::vector<BadFile> badFiles()
{
    std::vector<BadFile> table;
    for ( const auto &row : test::rowsOf( "bad_configurations.txt" ) )
        table.push_back( { row.at( 1 ) + "\n", test::linesOf( row.at( 2 ) ) } );
    EXPECT_GT( table.size(), 10u );
    return table;
}

TEST( CsConfiguration, RefusesBadFilesTellingAllProblemsInTheirOrder )
{
    const test::TestSort sort;
    expectProblems( badFiles() );
}

TEST( CsConfiguration, RefusesWhatIsNotJsonInUtf8 )
{
    const test::TestSort sort;
    expectProblems( {
        // Not JSON: the place of the token, of the byte or of the end.
        { "", { "1:1: error: not JSON: unexpected end of input, expected '[', '{', or a literal" } },
        { "{\"objects\": {}", { "1:15: error: not JSON: unexpected end of input, expected '}'" } },
        { "{\"objects\": {}} // end\n true",
          { "2:2: error: not JSON: unexpected true literal, expected end of input" } },
        { "{\"objects\": {},\n\n  }", { "3:3: error: not JSON: unexpected '}', expected string literal" } },
        { "{\"objects\": tru}", { "1:13: error: not JSON: invalid literal" } },
        { "{\"objects\": -}", { "1:14: error: not JSON: invalid number, expected digit after '-'" } },
        { "{\"objects\": 1e999}", { "1:13: error: not JSON: number overflow parsing '1e999'" } },
        { "{\"objects\" \"x\\\"y\"}", { "1:12: error: not JSON: unexpected string literal, expected ':'" } },
        { "{\"objects\": {} /* end", { "1:22: error: not JSON: invalid comment; missing closing '*/'" } },
        { "\xEF\xBB\xBF{\"a\\u00e9\xC3\xA9\": 1, x",
          { "1:2: error: a\xC3\xA9\xC3\xA9: unknown key, expected one of objects, modules",
            "1:17: error: not JSON: invalid literal" } },
        // Not UTF-8, in a string, in a comment, cut off at the end; NUL, which would end the text.
        { "{\"obj\xC0\x80\": {}}", { "1:6: error: not UTF-8, expected JSON text in UTF-8" } },
        { "{\"objects\": {}} // \xED\xA0\x80", { "1:20: error: not UTF-8, expected JSON text in UTF-8" } },
        { "{\"objects\": {}} // \xE2\x82", { "1:20: error: not UTF-8, expected JSON text in UTF-8" } },
        { std::string( "{\"objects\": {}}\0 x", 18 ), { "1:16: error: a NUL byte, expected JSON text in UTF-8" } },
    } );
}

TEST( CsConfiguration, AcceptsWhatTheSortKeepsRewritesOrOverrides )
{
    const test::TestSort sort;
    const std::string table[] = {
        "\xEF\xBB\xBF/* none */ { \"objects\": {} } // end",
        R"({ "objects": { "A-z.0_9": { "sort": "TEST_PHONE" } } })",
        record( R"({ "enabled": true, "tos": 0, "timeout": 60, "negativeTimeout": "60" })" ), // explicit defaults
        record( R"({ "enabled": "false", "tos": "0x2e", "host": "a.example..", "domain": "example" })" ),
        record( R"({ "timeout": 1000, "negativeTimeout": 60 })" ), // overrides with its own default
        record( R"({ "negativeTimeout": 5, "timeout": 1000 })" ),
        record( R"({ "flags": "", "servers": [], "names": {}, "title": 5 })" ),
        record( R"({ "flags": "QUIET | LOOPBACK", "range": { "count": 0, "first": "0xffff" } })" ),
        record(
            R"({ "names": [ "b.", "a", "b" ], "servers": [ { "host": "x." }, { "host": "a", "weight": "0x0" } ] })" ),
    };
    for ( const std::string &good : table ) {
        SCOPED_TRACE( good );
        EXPECT_THAT( parse( good ).problems, ElementsAre() );
    }
}

TEST( CsConfiguration, WithoutATableTheSortAloneDecides )
{
    const test::TestSort sort( false );
    EXPECT_THAT( problemsOf( R"({ "tos": "0x2e", "range": { "first": 1, "count": 2 }, "names": [ "a" ], )"
                             R"("timeout": 5, "negativeTimeout": 6 })" ),
                 IsEmpty() );
    EXPECT_THAT(
        problemsOf( R"({ "negativeTimout": 1, "enabled": "x", "bell": { "a": 1 }, "names": [ null, "A" ] })" ),
        ElementsAre( "F:1:57: error: a.negativeTimout: unknown key or value, did you mean \"negativeTimeout\"?",
                     "F:1:89: error: a.enabled: \"x\" is not accepted, expected a value that the sort accepts",
                     "F:1:94: error: a.bell: unknown key or value, expected one of flags, enabled, tos, timeout, "
                     "negativeTimeout, names",
                     "F:1:125: error: a.names.0: null is no value, expected a value that the sort accepts",
                     "F:1:131: error: a.names.1: \"A\" is not accepted, expected a value that the sort accepts" ) );
}

TEST( CsConfiguration, LimitsAndFilesThatCannotBeRead )
{
    const test::TestSort sort;
    EXPECT_THAT( problemsOf( nested( 60 ) ), ElementsAre( HasSubstr( "a.title: an array is of the wrong kind" ) ) );
    EXPECT_THAT(
        problemsOf( nested( 61 ) ),
        ElementsAre( HasSubstr( "wrong kind" ), "F:1:126: error: nested too deeply, expected at most 64 levels" ) );
    EXPECT_THAT( parse( std::string( ( 16 << 20 ) + 1, ' ' ) ).problems,
                 ElementsAre( "F:1:1: error: too long, expected at most 16 MiB" ) );

    std::string many = "{ \"title\": 0";
    for ( int i = 0; i < 1'001; ++i )
        many += ", \"x\": 0";
    const auto problems = problemsOf( many + " }" );
    ASSERT_THAT( problems, SizeIs( 1'001 ) );
    EXPECT_THAT( problems.back(), HasSubstr( "1 more problems, not told" ) );
    std::string zeros = "{ \"names\": [ 0";
    for ( int i = 0; i < 100'000; ++i )
        zeros += ",0";
    EXPECT_THAT( problemsOf( zeros + " ] }" ), ElementsAre( HasSubstr( "too many values, expected at most 100000" ) ) );

    EXPECT_THAT(
        load( "/nowhere/at.all" ).problems,
        ElementsAre(
            "/nowhere/at.all:1:1: error: cannot be read (No such file or directory), expected a configuration file" ) );
    EXPECT_THAT( load( "/dev" ).problems,
                 ElementsAre( "/dev:1:1: error: cannot be read (Is a directory), expected a configuration file" ) );
    EXPECT_THAT(
        load( "/dev/zero" ).problems,
        ElementsAre( "/dev/zero:1:1: error: cannot be read (not a regular file), expected a configuration file" ) );
    const std::string path = testing::TempDir() + "cs_configuration_test.json";
    std::ofstream( path ) << record( R"({ "title": "from a file" })" );
    EXPECT_THAT( load( path ).problems, IsEmpty() );

    // For want of descriptors nothing is said about the file.
    const auto originOf = []( const std::string &file ) {
        struct pbVector *diagnoses = nullptr;
        EXPECT_FALSE( csConfigurationTryLoadDiagnosed( pb::string( file ).get(), &diagnoses ) );
        const auto told = pb::adopt( diagnoses );
        const auto diagnosis = pb::adopt( csDiagnosisFrom( pbVectorObjAt( told.get(), 0 ) ) );
        return std::pair( pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) ),
                          csDiagnosisOrigin( diagnosis.get() ) );
    };
    EXPECT_EQ( originOf( "/nowhere" ).second, CS_DIAGNOSIS_OF_TEXT );
    rlimit before;
    ASSERT_EQ( getrlimit( RLIMIT_NOFILE, &before ), 0 );
    const rlimit none{ 0, before.rlim_max };
    setrlimit( RLIMIT_NOFILE, &none );
    const auto [text, origin] = originOf( path );
    setrlimit( RLIMIT_NOFILE, &before );
    EXPECT_EQ( text, path + ":1:1: error: cannot be read (Too many open files)" );
    EXPECT_EQ( origin, CS_DIAGNOSIS_OF_SYSTEM );
}

TEST( CsConfiguration, EveryPrefixOfAGoodFileIsRefusedWithOneProblem )
{
    const test::TestSort sort;
    const std::string good = record( R"({ "title": "a\u00e9\"" /* \"c */, "range": { "first": 1, "count": 2 }, )"
                                     "\"host\": \"b\", \"names\": [ \"a\", \"b\" ], \"enabled\": true }" );
    ASSERT_THAT( parse( good ).problems, IsEmpty() );
    for ( size_t length = 0; length < good.size(); ++length ) {
        SCOPED_TRACE( good.substr( 0, length ) );
        EXPECT_THAT( parse( good.substr( 0, length ) ).problems, SizeIs( 1 ) );
    }
}

std::string titleOf( const pb::Ref<struct pbObj> &obj )
{
    return obj ? static_cast<struct testPhone *>( obj.get() )->title : "null";
}

TEST( CsConfiguration, StartsInOrderAndStopsInReverse )
{
    testPhone::events.clear();
    test::TestSort sort;
    Configuration configuration = parse( R"({ "objects": {
        "one":   { "sort": "TEST_PHONE", "config": { "title": "1", "timeout": 7 } },
        "none":  { "sort": "TEST_PHONE", "config": { "title": "broken" } },
        "bare":  { "sort": "TEST_PHONE" } } })" )
                                      .configuration;
    ASSERT_TRUE( configuration );
    struct csConfiguration *const c = configuration.get();
    ASSERT_EQ( csConfigurationLength( c ), 3 );
    EXPECT_FALSE( pb::adopt( csConfigurationObjectAt( c, 0 ) ) );
    EXPECT_FALSE( pb::adopt( csConfigurationStatusAt( c, 0 ) ) );

    csConfigurationStart( c );
    csConfigurationStart( c );
    EXPECT_THAT( testPhone::events, ElementsAre( "+1", "+untitled" ) );
    EXPECT_EQ( titleOf( pb::adopt( csConfigurationObjectAt( c, 2 ) ) ), "untitled" );
    EXPECT_FALSE( pb::adopt( csConfigurationObjectAt( c, 1 ) ) );
    EXPECT_EQ( test::text( pb::adopt( csConfigurationStoreAt( c, 0 ) ), "timeout" ), "7" );
    EXPECT_EQ( pbStoreLength( pb::adopt( csConfigurationStoreAt( c, 2 ) ).get() ), 0 );
    EXPECT_EQ( titleOf( pb::adopt( csConfigurationObject( c, pb::string( "one" ).get(), &test___sort_TEST_PHONE ) ) ),
               "1" );
    EXPECT_FALSE( pb::adopt( csConfigurationObject( c, pb::string( "one" ).get(), pbStringSort() ) ) );
    EXPECT_FALSE( pb::adopt( csConfigurationObject( c, pb::string( "two" ).get(), &test___sort_TEST_PHONE ) ) );
    const auto status = pb::adopt( csConfigurationStatusAt( c, 0 ) );
    EXPECT_TRUE(
        status.is( static_cast<struct testPhone *>( pb::adopt( csConfigurationObjectAt( c, 0 ) ).get() )->status ) );

    csConfigurationStop( c );
    EXPECT_THAT( testPhone::events, ElementsAre( "+1", "+untitled", "-untitled", "-1" ) );
    csConfigurationStart( c ); // again, and stopped by the last release
    EXPECT_THAT( testPhone::events, SizeIs( 6 ) );
    configuration.reset();
    EXPECT_THAT( testPhone::events, SizeIs( 8 ) );

    configuration = parse( R"({ "objects": { "late": { "sort": "TEST_PHONE" } } })" ).configuration;
    sort.module.reset();
    csConfigurationStart( configuration.get() );
    EXPECT_FALSE( pb::adopt( csConfigurationObjectAt( configuration.get(), 0 ) ) );
    EXPECT_THAT( testPhone::events, SizeIs( 8 ) );
}

TEST( CsConfiguration, RecordNames )
{
    for ( const std::string &name : { std::string( "A-z.0_9" ), std::string( 255, 'x' ) } )
        EXPECT_TRUE( csObjectRecordNameOk( pb::string( name ).get() ) ) << name;
    for ( const std::string &name :
          { std::string(), std::string( 256, 'x' ), std::string( "a/b" ), std::string( "\xC3\xA9" ) } )
        EXPECT_FALSE( csObjectRecordNameOk( pb::string( name ).get() ) ) << name;
}

} // namespace
