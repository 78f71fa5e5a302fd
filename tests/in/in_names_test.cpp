// Names of enumerants and flags: the stored forms, which must never change.
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/nw/in_nw_address_type.h"
#include "in/nw/in_nw_interface_flags.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/qos/in_qos_defaults.h"
#include "in/qos/in_qos_layer2_pcp.h"
#include "in/qos/in_qos_windows_traffic_type.h"
#include "in/tcp/in_tcp_flags.h"
#include "in/udp/in_udp_flags.h"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

namespace {

struct InNames : testing::Test {
    support::InTables tables;
};

struct Enumeration {
    struct pbString *( *toString )( pbInt );
    pbInt ( *fromString )( const struct pbString * );
    const char *precondition;
    std::vector<const char *> names; // from value 0
};

const std::vector<Enumeration> enumerations = {
    { inAddressVersionToString,
      inAddressVersionFromString,
      "IN_ADDRESS_VERSION_OK( version )",
      { "IN_ADDRESS_VERSION_4", "IN_ADDRESS_VERSION_6" } },
    { inNwAddressTypeToString, inNwAddressTypeFromString, "IN_NW_ADDRESS_TYPE_OK( at )", { "IN_NW_ADDRESS_TYPE_MAC" } },
    { inNwInterfaceStatusToString,
      inNwInterfaceStatusFromString,
      "IN_NW_INTERFACE_STATUS_OK( status )",
      { "IN_NW_INTERFACE_STATUS_DOWN", "IN_NW_INTERFACE_STATUS_UP" } },
    { inQosDefaultsToString,
      inQosDefaultsFromString,
      "IN_QOS_DEFAULTS_OK( dflt )",
      { "IN_QOS_DEFAULTS_NONE", "IN_QOS_DEFAULTS_IPC", "IN_QOS_DEFAULTS_VOICE", "IN_QOS_DEFAULTS_SIGNALING" } },
    { inQosLayer2PcpToString,
      inQosLayer2PcpFromString,
      "IN_QOS_LAYER2_PCP_OK( pcp )",
      { "IN_QOS_LAYER2_PCP_BEST_EFFORT", "IN_QOS_LAYER2_PCP_BACKGROUND", "IN_QOS_LAYER2_PCP_EXCELLENT_EFFORT",
        "IN_QOS_LAYER2_PCP_CRITICAL_APPLICATIONS", "IN_QOS_LAYER2_PCP_VIDEO", "IN_QOS_LAYER2_PCP_VOICE",
        "IN_QOS_LAYER2_PCP_INTERNETWORK_CONTROL", "IN_QOS_LAYER2_PCP_NETWORK_CONTROL" } },
    { inQosWindowsTrafficTypeToString,
      inQosWindowsTrafficTypeFromString,
      "IN_QOS_WINDOWS_TRAFFIC_TYPE_OK( tt )",
      { "IN_QOS_WINDOWS_TRAFFIC_TYPE_BEST_EFFORT", "IN_QOS_WINDOWS_TRAFFIC_TYPE_BACKGROUND",
        "IN_QOS_WINDOWS_TRAFFIC_TYPE_EXCELLENT_EFFORT", "IN_QOS_WINDOWS_TRAFFIC_TYPE_AUDIO_VIDEO",
        "IN_QOS_WINDOWS_TRAFFIC_TYPE_VOICE", "IN_QOS_WINDOWS_TRAFFIC_TYPE_CONTROL" } },
};

TEST_F( InNames, Enumerations )
{
    for ( const Enumeration &row : enumerations ) {
        const auto count = static_cast<pbInt>( row.names.size() );
        for ( pbInt value = 0; value < count; ++value ) {
            EXPECT_EQ( pb::utf8( pb::adopt( row.toString( value ) ) ), row.names[static_cast<size_t>( value )] );
            EXPECT_EQ( row.fromString( pb::string( row.names[static_cast<size_t>( value )] ).get() ), value );
        }
        for ( const std::string &unknown : { std::string( "" ), std::string( row.names[0] ) + " ", std::string( "0" ) } )
            EXPECT_EQ( row.fromString( pb::string( unknown ).get() ), -1 ) << unknown;
    }
}

using InNamesDeath = InNames;

TEST_F( InNamesDeath, ValuesOutsideTheTable )
{
    for ( const Enumeration &row : enumerations )
        support::expectDeaths(
            { { [&] { row.toString( -1 ); }, row.precondition },
              { [&] { row.toString( static_cast<pbInt>( row.names.size() ) ); }, row.precondition } } );
}

TEST_F( InNames, Flags )
{
    struct {
        uint64_t ( *normalize )( uint64_t );
        struct pbString *( *toString )( uint64_t );
        uint64_t ( *fromString )( const struct pbString * );
        uint64_t all;
        const char *names;
    } const rows[] = {
        { inFlagsNormalize, inFlagsToString, inFlagsFromString, 1, "IN_FLAG_LOOPBACK_ONLY" },
        { inUdpFlagsNormalize, inUdpFlagsToString, inUdpFlagsFromString, 1, "IN_UDP_FLAG_NO_RECEIVE" },
        { inTcpFlagsNormalize, inTcpFlagsToString, inTcpFlagsFromString, 3,
          "IN_TCP_FLAG_NO_DELAY|IN_TCP_FLAG_KEEP_ALIVE" },
        { inNwInterfaceFlagsNormalize, inNwInterfaceFlagsToString, inNwInterfaceFlagsFromString, 3,
          "IN_NW_INTERFACE_FLAG_CANNOT_SET_STATUS|IN_NW_INTERFACE_FLAG_HIDE" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.names );
        EXPECT_EQ( row.normalize( ~uint64_t{ 0 } ), row.all );
        EXPECT_EQ( pb::utf8( pb::adopt( row.toString( ~uint64_t{ 0 } ) ) ), row.names );
        EXPECT_EQ( pb::utf8( pb::adopt( row.toString( row.all + 1 ) ) ), "" );
        EXPECT_EQ( row.fromString( pb::string( row.names ).get() ), row.all );
        EXPECT_EQ( row.fromString( pb::string( std::string( "NO_SUCH_FLAG| " ) + row.names ).get() ), row.all );
        EXPECT_EQ( row.fromString( pb::string( "" ).get() ), 0u );
    }
    EXPECT_EQ( inTcpFlagsFromString( pb::string( "IN_TCP_FLAG_KEEP_ALIVE" ).get() ), IN_TCP_FLAG_KEEP_ALIVE );
}

} // namespace
