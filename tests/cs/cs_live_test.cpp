// A running configuration becomes another one: what is touched, what is not, and what observers see of it.
#include "cs/cs_condition_observer.h"
#include "cs/cs_object_observer.h"
#include "cs/cs_record.h"
#include "cs/live.hpp"
#include "cs/tables.hpp"
#include "support/death_table.hpp"

#include <fstream>

using namespace test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr const char *Two = R"({ "objects": {
    "a": { "sort": "TEST_PHONE", "config": { "title": "1", "host": "x" } },
    "b": { "sort": "TEST_PHONE", "config": { "title": "2" } } } })";

// From Two on, each becomes the next: its text; events of the phones, changes that are told, whether it signals.
TEST( CsLive, ApplyTouchesOnlyWhatChanged )
{
    const Modules modules;
    const Configuration configuration = running( Two );
    for ( const auto &row : test::rowsOf( "reloads.txt" ) ) {
        SCOPED_TRACE( row[0] );
        testPhone::events.clear();
        std::vector<std::string> changes;
        const bool signalled =
            test::signals( configuration.get(), csConfigurationUpdateAddSignalable, csConfigurationUpdateDelSignalable,
                           [&] { changes = applied( configuration, row.at( 1 ) ); } );
        std::vector<std::string> happened = testPhone::events;
        happened.insert( happened.end(), changes.begin(), changes.end() );
        happened.push_back( signalled ? "signalled" : "quiet" );
        EXPECT_THAT( happened, ElementsAreArray( test::linesOf( row.at( 2 ) ) ) );
    }
    testPhone::events.clear();
    csConfigurationStop( configuration.get() );
    EXPECT_THAT( applied( configuration, Two ), IsEmpty() ); // stopped: nothing is made
    EXPECT_EQ( csConfigurationLength( configuration.get() ), 2 );
    csConfigurationStart( configuration.get() );
    EXPECT_THAT( testPhone::events, ElementsAre( "+1", "+2" ) );
}

TEST( CsLive, ABadFileLeavesEverythingAsItWas )
{
    const Modules modules;
    const std::string path = testing::TempDir() + "cs_live_test.json";
    const auto pathText = pb::string( path );
    const Configuration configuration = running( Two );
    const auto reload = [&]( const char *text, struct pbVector **problems ) {
        std::ofstream( path ) << text;
        return csConfigurationTryReload( configuration.get(), pathText.get(), problems, nullptr );
    };
    testPhone::events.clear();
    struct pbVector *problems = nullptr;
    EXPECT_FALSE(
        reload( R"({ "objects": { "a": { "sort": "TEST_PHONE", "config": { "titel": "9" } } } })", &problems ) );
    EXPECT_THAT( texts( problems ),
                 ElementsAre( path + ":1:57: error: a.titel: unknown key, did you mean \"title\"?" ) );
    EXPECT_THAT( testPhone::events, IsEmpty() );
    problems = nullptr;
    EXPECT_TRUE( reload( R"({ "objects": {} })", &problems ) );
    EXPECT_THAT( texts( problems ), IsEmpty() );
    EXPECT_THAT( testPhone::events, ElementsAre( "-2", "-1" ) );
}

TEST( CsLive, WhatWasSetAtRunTimeStaysAndBelongsToTheTree )
{
    const Modules modules;
    const char *const text = R"({ "objects": { "active": { "sort": "CS_CONDITION", "config": { "value": true } },
        "bare": { "sort": "CS_CONDITION" }, "p": { "sort": "TEST_PHONE", "config": { "host": "x..", "tos": 1 } } } })";
    const Configuration configuration = running( text );
    EXPECT_TRUE( csConditionValue( condition( configuration, "active" ).get() ) );
    csConditionSetValue( condition( configuration, "active" ).get(), false );
    csConditionSetValue( condition( configuration, "bare" ).get(), 2 );
    EXPECT_THAT( applied( configuration, text ), IsEmpty() );
    // The default is told where a value was; what nobody touched stays as it was written.
    EXPECT_EQ( treeText( configuration ), R"({"active": {"sort": "CS_CONDITION", "config": {"value": false}}, )"
                                          R"("bare": {"sort": "CS_CONDITION", "config": {"value": true}}, )"
                                          R"("p": {"sort": "TEST_PHONE", "config": {"host": "x..", "tos": 1}}})" );
    EXPECT_THAT( applied( configuration, R"({ "objects": { "active": { "sort": "CS_CONDITION" } } })" ),
                 ElementsAre( "p TEST_PHONE removed", "bare CS_CONDITION removed", "active CS_CONDITION configured" ) );
    const auto tree = pb::adopt( csConfigurationTree( configuration.get() ) );
    EXPECT_EQ( pb::utf8( pb::adopt( csJsonFromStore( tree.get(), CS_JSON_SHORT ) ) ),
               R"({"objects": {"active": {"sort": "CS_CONDITION"}}, )"
               R"("modules": {"cs": {"version": "17.1"}, "test": {"version": "1.0", "info": {"phones": 2}}}})" );
}

TEST( CsLive, AConditionObserverFollowsNameValueAndConfiguration )
{
    const Modules modules;
    const auto observer = pb::adopt( csConditionObserverCreate( nullptr ) );
    const auto given = pb::adopt( csConditionCreate( true ) );
    const auto name = pb::string( "c" );
    Configuration one;
    const auto configure = [&]( const struct pbString *optionalName, struct csCondition *optionalCondition ) {
        return [=, &observer] { csConditionObserverConfigure( observer.get(), optionalName, optionalCondition ); };
    };
    const struct Row {
        const char *remark;
        std::function<void()> step;
        bool signals, value, valueOtherwise; // with the fallback true, false
    } table[] = {
        { "nothing configured", [] {}, false, true, false },
        { "a name without a record", configure( name.get(), nullptr ), true, false, false },
        { "a record of another sort", [&] { one = running( R"({ "objects": { "c": { "sort": "TEST_PHONE" } } })" ); },
          false, false, false },
        { "the record appears",
          [&] { applied( one, R"({ "objects": { "c": { "sort": "CS_CONDITION", "config": { "value": true } } } })" ); },
          true, true, true },
        { "its value", [&] { csConditionSetValue( condition( one, "c" ).get(), false ); }, true, false, false },
        { "the same value", [&] { csConditionSetValue( condition( one, "c" ).get(), false ); }, false, false, false },
        { "configured anew",
          [&] {
              applied( one, R"({ "objects": { "d": { "sort": "CS_CONDITION" }, "c": { "sort": "CS_CONDITION" } } })" );
          },
          false, false, false },
        { "a condition that is given", configure( name.get(), given.get() ), true, true, true },
        { "the other one is no more followed", [&] { csConditionSetValue( condition( one, "c" ).get(), true ); }, false,
          true, true },
        { "the given one's value", [&] { csConditionSetValue( given.get(), false ); }, true, false, false },
        { "the name again", configure( name.get(), nullptr ), true, true, true },
        { "the record goes", [&] { csConfigurationStop( one.get() ); }, true, false, false },
        { "nothing again", configure( nullptr, nullptr ), true, true, false },
    };
    for ( const Row &row : table ) {
        SCOPED_TRACE( row.remark );
        EXPECT_EQ( test::signals( observer.get(), csConditionObserverUpdateAddSignalable,
                                  csConditionObserverUpdateDelSignalable, row.step ),
                   row.signals );
        EXPECT_EQ( csConditionObserverValue( observer.get(), true ), row.value );
        EXPECT_EQ( csConditionObserverValue( observer.get(), false ), row.valueOtherwise );
    }
}

TEST( CsLive, AnObjectObserverFollowsTheRecordsOfItsSort )
{
    const Modules modules;
    const auto observer = pb::adopt( csObjectObserverCreate( &test___sort_TEST_PHONE, nullptr ) );
    const auto name = pb::string( "a" );
    Configuration one, two;
    const struct Row {
        const char *remark;
        std::function<void()> step;
        bool signals;
        const char *title;
    } table[] = {
        { "a name", [&] { csObjectObserverConfigure( observer.get(), name.get(), nullptr ); }, true, "" },
        { "appears", [&] { one = running( Two ); }, true, "1" },
        { "changes, the object is the same",
          [&] { applied( one, R"({ "objects": { "a": { "sort": "TEST_PHONE", "config": { "title": "3" } } } })" ); },
          false, "3" },
        { "a second one of the name", [&] { two = running( Two ); }, false, "3" },
        { "the first one goes", [&] { applied( one, R"({ "objects": { "a": { "sort": "CS_CONDITION" } } })" ); }, true,
          "1" },
    };
    for ( const Row &row : table ) {
        SCOPED_TRACE( row.remark );
        EXPECT_EQ( test::signals( observer.get(), csObjectObserverUpdateAddSignalable,
                                  csObjectObserverUpdateDelSignalable, row.step ),
                   row.signals );
        const auto object = pb::adopt( csObjectObserverObject( observer.get() ) );
        EXPECT_EQ( object ? static_cast<struct testPhone *>( object.get() )->title : "", row.title );
    }
}

TEST( CsLive, ManyReloadsLeakNothing )
{
    const Modules modules;
    const auto observer = pb::adopt( csObjectObserverCreate( &test___sort_TEST_PHONE, nullptr ) );
    csObjectObserverConfigure( observer.get(), pb::string( "b" ).get(), nullptr );
    const Configuration configuration = running( Two );
    testPhone::events.clear();
    for ( int i = 0; i < 200; ++i )
        applied( configuration, i % 2 ? Two : R"({ "objects": { "a": { "sort": "CS_CONDITION" },
            "b": { "sort": "TEST_PHONE", "config": { "title": "4" } } } })" );
    EXPECT_THAT( testPhone::events, testing::SizeIs( 400 ) ); // "a" came or went each time, "b" was configured
}

TEST( CsLiveDeathTest, Preconditions )
{
    const Modules modules;
    const auto observer = pb::adopt( csConditionObserverCreate( nullptr ) );
    const auto objects = pb::adopt( csObjectObserverCreate( &test___sort_TEST_PHONE, nullptr ) );
    const auto given = pb::adopt( csConditionCreate( true ) );
    const auto bad = pb::string( "a/b" );
    const Configuration configuration = running( Two );
    support::expectDeaths( {
        { [&] { csConditionObserverConfigure( observer.get(), bad.get(), nullptr ); },
          "!optionalName || csObjectRecordNameOk( optionalName )" },
        { [&] { csObjectObserverConfigure( objects.get(), bad.get(), nullptr ); },
          "!optionalName || csObjectRecordNameOk( optionalName )" },
        { [&] { csObjectObserverConfigure( objects.get(), nullptr, csConditionObj( given.get() ) ); },
          "!optionalObject || pbObjSort( optionalObject ) == observer->watch.sort()" },
        { [&] { csObjectObserverCreate( nullptr, nullptr ); }, "sort" },
        { [&] { csConfigurationApply( configuration.get(), nullptr, nullptr ); }, "next" },
        { [&] {
             const Configuration next = parse( R"({ "objects": { "a": { "sort": "TEST_PHONE" } } })" );
             testPhone::onNormalize = [&] { csConfigurationStop( configuration.get() ); };
             csConfigurationApply( configuration.get(), next.get(), nullptr );
         },
          "called from inside a callback of a sort" },
    } );
}

} // namespace
