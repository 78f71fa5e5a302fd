// Updates: the order in which they run, what one tree means to its functions, and migrated files: what is told of them
// and where, what is saved.
#include "cs/cs_update.h"
#include "cs/cs_update_backend.h"
#include "cs/cs_update_object.h"
#include "cs/cs_update_objects.h"
#include "cs/live.hpp"
#include "pb/pb_module_version.h"
#include "support/death_table.hpp"

#include <fstream>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Update = pb::Ref<struct csUpdate>;
using Step = pb::Ref<struct csUpdateBackend>;

Store storeFrom( const std::string &json )
{
    return pb::adopt( csJsonTryToStore( pb::string( json ).get() ) );
}
std::string json( const Store &store )
{
    return pb::utf8( pb::adopt( csJsonFromStore( store.get(), CS_JSON_SHORT ) ) );
}
std::string current( const Update &update )
{
    return json( pb::adopt( csUpdateCurrent( update.get() ) ) );
}

std::vector<std::string> ran;
template <char Name> void note( struct csUpdateBackend *, struct csUpdate ** )
{
    ran.emplace_back( 1, Name );
}
Step step( const char *date, csUpdateFunc *func )
{
    return pb::adopt( csUpdateBackendCreateCstr( date, -1, func ) );
}

// Phones called their title "name" before version 1.0; what had no title is an emergency phone since.
void rename( struct csUpdateBackend *, struct csUpdate **update )
{
    const auto version = pb::adopt( csUpdateModuleVersion( *update, &TestSort::descriptor ) );
    if ( version && pbModuleVersionMajor( version.get() ) >= 1 )
        return;
    const auto phones = pb::adopt( csUpdateObjectsBySort( *update, &test___sort_TEST_PHONE ) );
    for ( pbInt i = 0; i < csUpdateObjectsLength( phones.get() ); ++i ) {
        auto object = pb::adopt( csUpdateObjectsObjectAt( phones.get(), i ) );
        Store config = pb::adopt( csUpdateObjectConfig( object.get() ) );
        if ( const auto name = pb::adopt( pbStoreValueCstr( config.get(), "name", -1 ) ) ) {
            pbStoreDelValueCstr( config.address(), "name", -1 );
            pbStoreSetValueCstr( config.address(), "title", -1, name.get() );
        }
        else
            test::set( config, "flags", "EMERGENCY" );
        csUpdateObjectSetConfig( object.address(), config.get() );
        csUpdateSetObject( update, pb::adopt( csUpdateObjectsNameAt( phones.get(), i ) ).get(), object.get() );
    }
    csUpdateSetModuleVersion( update, &TestSort::descriptor,
                              pb::adopt( pbModuleVersionTryCreateFromCstr( "1.0", -1 ) ).get() );
}

TEST( CsUpdate, StepsRunByDateWhileTheirModuleIsThere )
{
    const Step late = step( "2020-02-19", note<'d'> ), early = step( "2013-01-04", note<'a'> );
    const Step first = step( "2019-03-06", note<'b'> ), second = step( "2019-03-06", note<'c'> );
    Modules modules;
    Step withdrawn = step( "2000-01-01", note<'x'> ); // no module vouches for it
    EXPECT_TRUE( parse( R"({ "objects": {} })" ) );
    EXPECT_THAT( ran, ElementsAre( "a", "b", "c", "d" ) );
    withdrawn.reset();
    csModule()->shutdown(); // vouched for them
    ran.clear();
    EXPECT_TRUE( parse( R"({ "objects": {} })" ) );
    EXPECT_THAT( ran, IsEmpty() );
    csModule()->startup();
}

TEST( CsUpdate, IsOneTreeToAllItsFunctions )
{
    auto update = pb::adopt( csUpdateCreate(
        storeFrom( R"({ "objects": { "a": { "sort": "X", "config": { "k": 1 } }, "b": 5, "c": { "sort": "Y" } },
                        "modules": { "test": { "version": "2.x", "info": { "i": 1 } } } })" )
            .get() ) );
    const Update before = update;
    EXPECT_FALSE( pb::adopt( csUpdateModuleVersion( update.get(), &TestSort::descriptor ) ) );
    EXPECT_FALSE( pb::adopt( csUpdateObjectCstr( update.get(), "b", -1 ) ) );
    const auto objects = pb::adopt( csUpdateObjectsBySortNameCstr( update.get(), "X", -1 ) );
    ASSERT_EQ( csUpdateObjectsLength( objects.get() ), 1 );
    auto object = pb::adopt( csUpdateObjectsObjectAt( objects.get(), 0 ) );
    csUpdateObjectSetConfig( object.address(), storeFrom( R"({ "k": 2 })" ).get() );
    csUpdateSetObject( update.address(), pb::string( "a" ).get(), object.get() );
    csUpdateSetObject( update.address(), pb::string( "b" ).get(),
                       pb::adopt( csUpdateObjectCstr( update.get(), "c", -1 ) ).get() );
    csUpdateSetModuleVersion( update.address(), &TestSort::descriptor,
                              pb::adopt( pbModuleVersionTryCreateFromCstr( "2.0", -1 ) ).get() );
    EXPECT_EQ( current( update ),
               R"({"objects": {"a": {"sort": "X", "config": {"k": 2}}, "b": {"sort": "Y"}, )"
               R"("c": {"sort": "Y"}}, "modules": {"test": {"version": "2.0", "info": {"i": 1}}}})" );
    EXPECT_EQ(
        json( pb::adopt( csUpdateObjectConfig( pb::adopt( csUpdateObjectsObjectAt( objects.get(), 0 ) ).get() ) ) ),
        R"({"k": 1})" ); // taken before
    csUpdateSetCurrent( update.address(), storeFrom( R"({ "objects": [], "modules": { "test": "1.0" } })" ).get() );
    EXPECT_EQ( csUpdateObjectsLength( pb::adopt( csUpdateObjectsBySortNameCstr( update.get(), "Y", -1 ) ).get() ), 0 );
    EXPECT_FALSE( pb::adopt( csUpdateModuleVersion( update.get(), &TestSort::descriptor ) ) );
    EXPECT_EQ(
        json( pb::adopt( csUpdateObjectConfig( pb::adopt( csUpdateObjectCstr( before.get(), "a", -1 ) ).get() ) ) ),
        R"({"k": 1})" ); // a value
}

TEST( CsUpdate, AMigratedFileIsCheckedAtItsPlacesAndSavedInTheNewForm )
{
    const Step renames = step( "2019-03-06", rename );
    const Modules modules;
    const std::string path = testing::TempDir() + "cs_update_test.json";
    const auto load = [&]( const std::string &text ) {
        std::ofstream( path ) << text;
        struct pbVector *problems = nullptr;
        auto configuration = pb::adopt( csConfigurationTryLoad( pb::string( path ).get(), &problems ) );
        return std::pair( configuration, texts( problems ) );
    };
    // Places are those of the file; what an update added has that of the object that it was added to.
    EXPECT_THAT(
        load( "{ \"objects\": {\n \"a\": { \"sort\": \"TEST_PHONE\", \"config\": { \"name\": \"1\",\n"
              "  \"tos\": 256, \"tos\": 1 } },\n \"b\": { \"sort\": \"TEST_PHONE\", \"config\": { \"host\": \"x\" } } "
              "} }" )
            .second,
        ElementsAre( path + ":3:10: error: a.tos: 256 is out of range, expected 0..255",
                     path + ":3:15: error: a.tos: the key stands twice, expected once",
                     path + ":4:41: error: b.flags: unknown flag \"EMERGENCY\", expected one of LOOPBACK, QUIET" ) );
    EXPECT_THAT( load( R"({ "objects": {}, "modules": { "gone": { "version": "1", "x": 2 }, "cs": 1 } })" ).second,
                 ElementsAre( path + ":1:52: error: modules.gone.version: no version, expected \"MAJOR.MINOR\"",
                              path + ":1:57: error: modules.gone.x: unknown key, expected one of version, info",
                              path + ":1:73: error: modules.cs: not an object, expected an object of \"version\" and "
                                     "\"info\"" ) );

    // Names of digits make an array of no object, and an array is none.
    EXPECT_THAT( load( R"({ "objects": { "0": { "sort": "TEST_PHONE", "config": { "name": "1" } } } })" ).second,
                 IsEmpty() );
    EXPECT_THAT( load( R"({ "objects": [ { "sort": "TEST_PHONE", "config": { "name": "1" } } ] })" ).second,
                 ElementsAre( path + ":1:14: error: objects: not an object, expected an object of named objects" ) );

    const auto [configuration, none] = load( R"({ "objects": { // phones
  "a": { "sort": "TEST_PHONE", "config": { "name": "1" } }
}, "modules": { "test": { "version": "0.9", "info": { "old": 1 } }, "gone": { "version": "3.1" } } })" );
    ASSERT_THAT( none, IsEmpty() );
    struct pbString *problem = nullptr;
    EXPECT_TRUE( csConfigurationTrySave( configuration.get(), pb::string( path ).get(), &problem ) );
    std::ifstream file( path );
    EXPECT_EQ( std::string( std::istreambuf_iterator<char>( file ), {} ), R"({ "objects": { // phones
  "a": { "sort": "TEST_PHONE", "config": {"title": 1} }
}, "modules": { "test": { "version": "1.0", "info": {"phones": 2} }, "gone": { "version": "3.1" }, "cs": {"version": "17.1"} } })" );
}

TEST( CsUpdateDeathTest, Preconditions )
{
    support::expectDeaths( { { [] { step( "2019-3-6", rename ); }, "date is YYYY-MM-DD" },
                             { [] { step( "2019-03-06", nullptr ); }, "func" } } );
}

} // namespace
