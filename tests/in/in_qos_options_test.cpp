// QoS options: profiles, explicit settings, stores, order.
#include "in/qos/in_qos_options.h"

#include "in/qos/in_qos_defaults.h"
#include "in/qos/in_qos_options_internal.h"
#include "support/ascending.hpp"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

#include <array>

namespace {

using support::json;
using support::store;

struct InQosOptions : testing::Test {
    support::InTables tables;
};

using Options = pb::Ref<struct inQosOptions>;

std::array<pbInt, 3> values( const Options &options )
{
    return { inQosOptionsLayer3Tos( options.get() ), inQosOptionsLayer2Pcp( options.get() ),
             inQosOptionsWindowsTrafficType( options.get() ) };
}

Options restored( const char *source )
{
    return pb::adopt( inQosOptionsRestore( store( source ).get() ) );
}

TEST_F( InQosOptions, SettingsFollowTheProfileUntilSet )
{
    using Values = std::array<pbInt, 3>;
    auto options = pb::adopt( inQosOptionsCreate() );
    const Values profiles[] = { { 0, 0, 0 }, { 0xA0, 2, 2 }, { 0xB8, 5, 4 }, { 0xA0, 2, 2 } };
    for ( pbInt profile = 0; profile < 4; ++profile ) {
        inQosOptionsSetDefaults( options.address(), profile );
        EXPECT_EQ( values( options ), profiles[profile] ) << profile;
    }

    inQosOptionsSetDefaults( options.address(), IN_QOS_DEFAULTS_VOICE );
    const auto voice = options;
    inQosOptionsSetLayer3Tos( options.address(), 46 );
    inQosOptionsSetDefaults( options.address(), IN_QOS_DEFAULTS_SIGNALING );
    EXPECT_EQ( values( options ), ( Values{ 46, 2, 2 } ) );
    EXPECT_EQ( values( voice ), ( Values{ 0xB8, 5, 4 } ) );

    // explicit stays explicit also where it is what the profile says
    inQosOptionsSetLayer2Pcp( options.address(), 2 );
    inQosOptionsSetWindowsTrafficType( options.address(), 2 );
    inQosOptionsSetDefaults( options.address(), IN_QOS_DEFAULTS_VOICE );
    EXPECT_EQ( values( options ), ( Values{ 46, 2, 2 } ) );

    inQosOptionsSetLayer3TosDefault( options.address() );
    inQosOptionsSetLayer2PcpDefault( options.address() );
    inQosOptionsSetWindowsTrafficTypeDefault( options.address() );
    EXPECT_TRUE( inQosOptionsEquals( options.get(), voice.get() ) );

    inQosOptionsSetLayer3Tos( options.address(), 0x1B8 );
    EXPECT_EQ( inQosOptionsLayer3Tos( options.get() ), 0xB8 );
}

TEST_F( InQosOptions, RestoreKeepsWhatIsValid )
{
    struct {
        const char *source, *expected;
    } const rows[] = {
        { "{}", R"({"defaults":"IN_QOS_DEFAULTS_NONE"})" },
        // the profile comes first, wherever it stands in the store
        { R"({"layer3Tos":"0x2e","defaults":"IN_QOS_DEFAULTS_VOICE"})",
          R"({"defaults":"IN_QOS_DEFAULTS_VOICE","layer3Tos":"0x2E"})" },
        { R"({"layer3Tos":0})", R"({"defaults":"IN_QOS_DEFAULTS_NONE","layer3Tos":"0x00"})" },
        { R"({"layer3Tos":255})", R"({"defaults":"IN_QOS_DEFAULTS_NONE","layer3Tos":"0xFF"})" },
        { R"({"layer3Tos":256,"layer2Pcp":"VOICE","windowsTrafficType":5,"defaults":"VOICE"})",
          R"({"defaults":"IN_QOS_DEFAULTS_NONE"})" },
        { R"({"layer3Tos":"0x100"})", R"({"defaults":"IN_QOS_DEFAULTS_NONE"})" },
        { R"({"layer3Tos":-1})", R"({"defaults":"IN_QOS_DEFAULTS_NONE"})" },
        { R"({"layer2Pcp":"IN_QOS_LAYER2_PCP_NETWORK_CONTROL","windowsTrafficType":"IN_QOS_WINDOWS_TRAFFIC_TYPE_CONTROL"})",
          R"({"defaults":"IN_QOS_DEFAULTS_NONE","layer2Pcp":"IN_QOS_LAYER2_PCP_NETWORK_CONTROL","windowsTrafficType":"IN_QOS_WINDOWS_TRAFFIC_TYPE_CONTROL"})" },
    };
    for ( const auto &row : rows ) {
        EXPECT_EQ( json( inQosOptionsStore( restored( row.source ).get(), 0 ) ), row.expected ) << row.source;
        EXPECT_EQ( json( inQosOptionsStore( restored( row.expected ).get(), 0 ) ), row.expected );
    }
    EXPECT_EQ( values( restored( R"({"layer2Pcp":"IN_QOS_LAYER2_PCP_VIDEO","defaults":"IN_QOS_DEFAULTS_VOICE"})" ) ),
               ( std::array<pbInt, 3>{ 0xB8, 4, 4 } ) );
    EXPECT_EQ( json( inQosOptionsStore( pb::adopt( inQosOptionsCreate() ).get(), 1 ) ),
               R"({"defaults":"IN_QOS_DEFAULTS_NONE","layer3Tos":"0x00","layer2Pcp":"IN_QOS_LAYER2_PCP_BEST_EFFORT",)"
               R"("windowsTrafficType":"IN_QOS_WINDOWS_TRAFFIC_TYPE_BEST_EFFORT"})" );
}

TEST_F( InQosOptions, OrdersFieldByField )
{
    support::expectAscending( { R"({"layer3Tos":1})", R"({"layer3Tos":127})", R"({"layer3Tos":128})",
                                R"({"layer2Pcp":"IN_QOS_LAYER2_PCP_VOICE"})",
                                R"({"windowsTrafficType":"IN_QOS_WINDOWS_TRAFFIC_TYPE_VOICE"})", R"({})",
                                R"({"defaults":"IN_QOS_DEFAULTS_VOICE","layer3Tos":0})" },
                              restored );
}

using InQosOptionsDeath = InQosOptions;

TEST_F( InQosOptionsDeath, Preconditions )
{
    auto options = pb::adopt( inQosOptionsCreate() );
    support::expectDeaths( {
        { [&] { inQosOptionsSetDefaults( options.address(), 4 ); }, "IN_QOS_DEFAULTS_OK( dflt )" },
        { [&] { inQosOptionsSetLayer2Pcp( options.address(), 8 ); }, "IN_QOS_LAYER2_PCP_OK( pcp )" },
        { [&] { inQosOptionsSetWindowsTrafficType( options.address(), 6 ); }, "IN_QOS_WINDOWS_TRAFFIC_TYPE_OK( tt )" },
    } );
}

} // namespace
