// What is told about configurations of the library's own sorts: a table of mistakes and surprises, and files at random,
// of which each finding must lie in the file. IN_SOAK makes it 10,000 of those.
#include "cs/cs_configuration.h"
#include "cs/cs_diagnosis.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <random>
#include <regex>
#include <sstream>

namespace {

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

struct Case {
    std::string text;
    std::vector<std::string> told; // without "F:"; "..." at the end stands for whatever follows
};

std::vector<Case> cases()
{
    std::ifstream file( INCTL_TEST_DIRECTORY "/bad_configurations.txt" );
    std::vector<Case> table;
    bool inText = false;
    for ( std::string line; std::getline( file, line ); )
        if ( line.starts_with( "====" ) ) {
            table.emplace_back();
            inText = true;
        } else if ( line == "----" )
            inText = false;
        else if ( inText )
            table.back().text += line + "\n";
        else if ( !table.empty() )
            table.back().told.push_back( line );
    return table;
}

struct Told {
    std::vector<std::string> texts;
    bool refused = false;
};

Told diagnose( const std::string &text, bool online = false )
{
    const auto vector = pb::adopt(
        csDiagnoseText( text.data(), static_cast<pbInt>( text.size() ), pb::string( "F" ).get(), online ) );
    Told told;
    for ( pbInt i = 0; i < pbVectorLength( vector.get() ); ++i ) {
        const auto diagnosis = pb::adopt( csDiagnosisFrom( pbVectorObjAt( vector.get(), i ) ) );
        told.texts.push_back( pb::utf8( pb::adopt( csDiagnosisToString( diagnosis.get() ) ) ) );
        told.refused |= csDiagnosisSeverity( diagnosis.get() ) == CS_DIAGNOSIS_ERROR;
    }
    return told;
}

bool isAccepted( const std::string &text )
{
    struct pbVector *problems = nullptr;
    const auto configuration = pb::adopt( csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ),
                                                                   pb::string( "F" ).get(), &problems ) );
    pbVectorRelease( problems );
    return static_cast<bool>( configuration );
}

TEST( ConfigurationCheck, TellsEachMistakeAndSurpriseInItsPlace )
{
    const std::vector<Case> table = cases();
    ASSERT_GE( table.size(), 30u );
    for ( const Case &row : table ) {
        SCOPED_TRACE( row.text );
        std::vector<testing::Matcher<std::string>> expected;
        for ( const std::string &line : row.told )
            expected.push_back( line.ends_with( "..." )
                                    ? testing::Matcher<std::string>(
                                          testing::StartsWith( "F:" + line.substr( 0, line.size() - 3 ) ) )
                                    : testing::Matcher<std::string>( "F:" + line ) );
        const Told told = diagnose( row.text );
        EXPECT_THAT( told.texts, testing::ElementsAreArray( expected ) );
        EXPECT_EQ( isAccepted( row.text ), !told.refused );
    }
}

// Each reference is looked up among all records, each wrong one compared with their names: what takes seconds would take
// hours if all that were done for each pair.
TEST( ConfigurationCheck, ComesToAnEndWithAsManyReferencesAsRecords )
{
    std::string good = R"({"objects": {)", bad = good;
    for ( int i = 0; i < 8'000; ++i ) {
        const std::string number = std::to_string( i ), record = R"("condition)" + number +
                                   R"(": {"sort": "CS_CONDITION"}, "nw)" + number +
                                   R"(": {"sort": "IN_NW_STACK", "config": {"csConditionName": ")";
        good += ( i ? ", " : "" ) + record + "condition" + number + "\"}}";
        bad += ( i ? ", " : "" ) + record + "conditoin" + number + "\"}}";
    }
    EXPECT_FALSE( diagnose( good + "}}" ).refused );
    const Told told = diagnose( bad + "}}" );
    EXPECT_THAT( told.texts, testing::Contains( testing::HasSubstr( "did you mean \"condition0\"?" ) ) );
    EXPECT_THAT( told.texts, testing::Contains( testing::HasSubstr( "7000 more problems, not told" ) ) );
}

class Mutator {
public:
    Mutator()
    {
        for ( const Case &row : cases() )
            texts_.push_back( row.text );
        for ( const char *name : { "/sip.json", "/tour.json" } ) {
            std::stringstream text;
            text << std::ifstream( std::string( IN_EXAMPLES_DIRECTORY ) + name ).rdbuf();
            texts_.push_back( text.str() );
        }
        static const std::regex token( R"("(?:[^"\\]|\\.)*"|[0-9.x-]+|true|false)" );
        for ( const std::string &text : texts_ )
            for ( std::sregex_iterator at( text.begin(), text.end(), token ), end; at != end; ++at )
                tokens_.push_back( at->str() );
        for ( const char *more : { "{", "}", "[", "]", ",", ":", "\"", "null", "//", "/*", "\\u0000", "1e999", "-0",
                                   "\xC3", "\xF0\x9F\x98\x80", "18446744073709551616", "{}", "[]" } )
            tokens_.emplace_back( more );
    }
    std::string next()
    {
        std::string text = pick( texts_ );
        for ( size_t mutations = 1 + below( 5 ); mutations > 0; --mutations )
            mutate( text );
        return text;
    }

private:
    void mutate( std::string &text )
    {
        const size_t at = below( text.size() + 1 ), length = std::min( below( 24 ), text.size() - at );
        switch ( below( 6 ) ) {
        case 0: text.erase( at, length ); break;
        case 1: text.insert( at, pick( tokens_ ) ); break;
        case 2: text.insert( at, text.substr( below( at + 1 ), below( 80 ) ) ); break;
        case 3: text.replace( at, length, 1, static_cast<char>( below( 256 ) ) ); break;
        case 4: text.resize( at ); break;
        default: // a token in the place of another
            const std::string &old = pick( tokens_ );
            if ( const size_t found = text.find( old, at ); found != text.npos )
                text.replace( found, old.size(), pick( tokens_ ) );
        }
    }
    size_t below( size_t limit ) { return static_cast<size_t>( random_() % limit ); }
    const std::string &pick( const std::vector<std::string> &from ) { return from[below( from.size() )]; }

    std::mt19937_64 random_{ 17 };
    std::vector<std::string> texts_, tokens_;
};

// Whether the finding begins with "F:LINE:COLUMN: " of a place in the text, or of its end.
bool liesIn( const std::string &finding, const std::string &text )
{
    static const std::regex form( R"(F:(\d+):(\d+): (?:error|warning): [^]+)" );
    std::smatch match;
    if ( !std::regex_match( finding, match, form ) )
        return false;
    std::istringstream lines( text + "\n" );
    std::string line;
    for ( long number = std::stol( match[1] ); number > 0; --number )
        if ( !std::getline( lines, line ) )
            return false;
    return static_cast<size_t>( std::stol( match[2] ) ) <= line.size() + 1;
}

TEST( ConfigurationCheck, PlacesEveryFindingInFilesAtRandom )
{
    Mutator mutator;
    size_t refused = 0;
    const int count = std::getenv( "IN_SOAK" ) ? 10'000 : 400;
    for ( int i = 0; i < count; ++i ) {
        const std::string text = mutator.next();
        SCOPED_TRACE( text );
        const Told told = diagnose( text, i % 10 == 0 );
        refused += told.refused;
        for ( const std::string &finding : told.texts )
            ASSERT_PRED2( liesIn, finding, text );
        ASSERT_EQ( isAccepted( text ), !told.refused );
    }
    // Else the files are not near enough to good ones to test anything.
    EXPECT_LT( refused, static_cast<size_t>( count ) );
    EXPECT_GT( refused, static_cast<size_t>( count ) / 2 );
}

} // namespace
