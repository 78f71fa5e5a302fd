// Sorts and modules: callbacks run between the creation of the module backend and its release, and never beside.
#include "cs/cs_configuration.h"
#include "cs/test_sort.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"

#include <gmock/gmock.h>
#include <thread>

using test::Store;
using testing::HasSubstr;

namespace {

// "" when a configuration of the sort is accepted, else the problem. A config is what the sort has to normalise.
std::string tryConfigure( const std::string &config = R"(, "config": { "title": "t" })" )
{
    const std::string text = R"({ "objects": { "a": { "sort": "TEST_PHONE")" + config + " } } }";
    struct pbVector *problems = nullptr;
    (void)pb::adopt(
        csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ), pb::string( "F" ).get(), &problems ) );
    const auto vector = pb::adopt( problems );
    return pbVectorLength( vector.get() )
               ? pb::utf8( pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( vector.get(), 0 ) ).get() ) ) )
               : "";
}

constexpr pbModuleRecord OtherRecord = { "other", "Other", "1.0", "", "", {}, "", "" };
constexpr pbModule Other = { &OtherRecord };

TEST( CsBackend, CallsASortWhileItsModuleIsThere )
{
    EXPECT_THAT( tryConfigure(), HasSubstr( "unknown sort" ) );
    test::TestSort test;
    EXPECT_EQ( tryConfigure(), "" );
    auto other = pb::adopt( csModuleBackendCreate( &Other, nullptr ) );
    test.module.reset(); // the other module does not vouch for the sort
    EXPECT_THAT( tryConfigure(), HasSubstr( "the module of this sort is not running" ) );
    test.sort.reset();
    EXPECT_THAT( tryConfigure(), HasSubstr( "unknown sort" ) );
}

TEST( CsBackend, ReleaseWaitsForCallsUnderWay )
{
    test::TestSort test;
    const auto entered = pb::adopt( pbBarrierCreate( 1 ) ), leave = pb::adopt( pbBarrierCreate( 1 ) );
    std::atomic<bool> returned = false, returnedBeforeRelease = false;
    testPhone::onNormalize = [&] {
        pbBarrierUnblock( entered.get() );
        pbBarrierPass( leave.get() );
        returned = true;
    };
    std::thread caller( [] { tryConfigure(); } );
    pbBarrierPass( entered.get() );
    std::thread releaser( [&] {
        test.module.reset();
        returnedBeforeRelease = returned.load();
    } );
    while ( tryConfigure( "" ).find( "not running" ) == std::string::npos )
        ; // new calls are refused from the withdrawal on
    pbBarrierUnblock( leave.get() );
    caller.join();
    releaser.join();
    testPhone::onNormalize = nullptr;
    EXPECT_TRUE( returnedBeforeRelease );
}

TEST( CsBackend, ModulesTellTheirInformation )
{
    const test::TestSort test;
    const auto other = pb::adopt( csModuleBackendCreate( &Other, nullptr ) );
    const Store top = pb::adopt( csConfigurationModules() );
    const Store modules = pb::adopt( pbStoreStoreCstr( top.get(), "modules", -1 ) );
    const Store testModule = pb::adopt( pbStoreStoreCstr( modules.get(), "test", -1 ) );
    EXPECT_EQ( test::text( pb::adopt( pbStoreStoreCstr( testModule.get(), "info", -1 ) ), "phones" ), "2" );
    EXPECT_EQ( pbStoreLength( pb::adopt( pbStoreStoreCstr( modules.get(), "other", -1 ) ).get() ), 0 );
}

TEST( CsBackendDeathTest, Preconditions )
{
    const test::TestSort test;
    const struct pbSort *const sort = &test___sort_TEST_PHONE;
    csSortConfigFunc *const config = []( struct pbObj *, pbBool ) { return pbStoreCreate(); };
    csSortSetConfigFunc *const setConfig = []( struct pbObj *, struct pbStore * ) {};
    const auto create = [=]( const struct pbSort *s, csSortTryCreateFunc *t, csSortConfigFunc *c,
                             csSortSetConfigFunc *e, csSortNormalizeConfigFunc *n ) {
        return [=] { (void)csSortBackendCreate( s, t, c, e, n, nullptr, nullptr ); };
    };
    support::expectDeaths( {
        { create( nullptr, test::tryCreate, config, setConfig, test::normalize ), "sort" },
        { create( sort, nullptr, config, setConfig, test::normalize ), "tryCreate" },
        { create( sort, test::tryCreate, nullptr, setConfig, test::normalize ), "config" },
        { create( sort, test::tryCreate, config, nullptr, test::normalize ), "setConfig" },
        { create( sort, test::tryCreate, config, setConfig, nullptr ), "normalizeConfig" },
        { create( sort, test::tryCreate, config, setConfig, test::normalize ), "!registered" },
        { [&] { csSortBackendSetKeys( test.sort.get(), nullptr, 1 ); }, "keys || keyCount == 0" },
        { [] { csModuleBackendCreate( nullptr, nullptr ); }, "module" },
    } );
}

} // namespace
