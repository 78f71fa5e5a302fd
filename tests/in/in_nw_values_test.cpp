// Hardware addresses and interface states: text, stores, order, preconditions.
#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/nw/in_nw_address.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_mac_address.h"
#include "pb/pb_buffer.h"
#include "pb/pb_vector.h"
#include "support/ascending.hpp"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

namespace {

using support::json;
using support::store;

struct InNwValues : testing::Test {
    support::InTables tables;
};

pb::Ref<struct inNwMacAddress> mac( const char *text )
{
    return pb::adopt( inNwMacAddressTryCreateFromString( pb::string( text ).get() ) );
}

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

TEST_F( InNwValues, MacAddressText )
{
    struct {
        const char *source, *expected;
    } const rows[] = {
        { "0a:1b:2c:3d:4e:5f", "0a:1b:2c:3d:4e:5f" },
        { "0A-1B-2C-3D-4E-5F", "0a:1b:2c:3d:4e:5f" },
        { "0:1:00a:f:ff:0", "00:01:0a:0f:ff:00" },
        { "0a:1b-2c:3d:4e:5f", "null" },
        { "0a:1b:2c:3d:4e", "null" },
        { "0a:1b:2c:3d:4e:5f:60", "null" },
        { "0a-1b-2c-3d-4e-5f-60", "null" },
        { "1ff:1b:2c:3d:4e:5f", "null" },
        { "0g:1b:2c:3d:4e:5f", "null" },
        { "-1:1b:2c:3d:4e:5f", "null" },
        { ":1b:2c:3d:4e:5f", "null" },
        { " 0a:1b:2c:3d:4e:5f", "null" },
        { "0a1b2c3d4e5f", "null" },
        { "", "null" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.source );
        EXPECT_EQ( pb::utf8( pb::adopt( pbObjToString( inNwMacAddressObj( mac( row.source ).get() ) ) ) ),
                   row.expected );
    }
    EXPECT_EQ( inNwMacAddressCompare( mac( "0:0:0:0:7f:ff" ).get(), mac( "0:0:0:0:80:0" ).get() ), -1 );
    const uint8_t bytes[7] = { 1, 2, 3, 4, 5, 6 };
    for ( pbInt length : { 0, 5, 6, 7 } ) {
        const auto buffer = pb::adopt( pbBufferCreateFromBytes( bytes, length ) );
        const auto made = pb::adopt( inNwMacAddressTryCreateFromBuffer( buffer.get() ) );
        EXPECT_EQ( static_cast<bool>( made ), length == 6 );
        if ( made ) {
            EXPECT_TRUE( inNwMacAddressEquals( made.get(), mac( "1:2:3:4:5:6" ).get() ) );
        }
    }
}

TEST_F( InNwValues, AddressNeedsTypeAndMac )
{
    struct {
        const char *source;
        bool restored;
    } const rows[] = {
        { R"({"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"0a:1b:2c:3d:4e:5f"})", true },
        { R"({"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"0a:1b"})", false },
        { R"({"type":"IN_NW_ADDRESS_TYPE_MAC"})", false },
        { R"({"type":"IN_NW_ADDRESS_TYPE_EUI","mac":"0a:1b:2c:3d:4e:5f"})", false },
        { R"({"mac":"0a:1b:2c:3d:4e:5f"})", false },
    };
    for ( const auto &row : rows ) {
        const auto restored = pb::adopt( inNwAddressTryRestore( store( row.source ).get() ) );
        EXPECT_EQ( restored ? json( inNwAddressStore( restored.get() ) ) : "", row.restored ? row.source : "" );
    }
}

constexpr const char *emptyState =
    R"({"end":false,"flags":"","layer2Addresses":{},"layer3UnicastAddresses":{},"layer3Networks":{}})";
constexpr const char *fullState =
    R"({"end":true,"displayName":"eth0","status":"IN_NW_INTERFACE_STATUS_UP",)"
    R"("flags":"IN_NW_INTERFACE_FLAG_CANNOT_SET_STATUS|IN_NW_INTERFACE_FLAG_HIDE",)"
    R"("layer2Addresses":[{"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"00:00:00:00:00:01"},)"
    R"({"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"00:00:00:00:00:02"}],)"
    R"("layer2Mtu":1500,"layer2SpeedReceive":4294967295000000,"layer2SpeedTransmit":0,)"
    R"("layer3UnicastAddresses":["10.0.0.1","10.0.0.2","fe80::1"],"layer3Networks":["10.0.0.0/8","fe80::/64"]})";

std::string normalizedState( const char *source )
{
    return json( inNwInterfaceStateStore( pb::adopt( inNwInterfaceStateRestore( store( source ).get() ) ).get() ) );
}

TEST_F( InNwValues, StateRestoreSkipsWhatIsNotValid )
{
    EXPECT_EQ( normalizedState( "{}" ), emptyState );
    EXPECT_EQ( normalizedState( fullState ), fullState );
    EXPECT_EQ( normalizedState( R"({"end":"no","status":"UP","flags":"X","layer2Mtu":-1,"layer2SpeedReceive":"fast",
        "layer2SpeedTransmit":-2,"layer2Addresses":[{"mac":"0:0:0:0:0:1"},"0:0:0:0:0:1"],
        "layer3UnicastAddresses":["224.0.0.1","0.0.0.0","ff02::1","::","x",{}],"layer3Networks":["10.0.0.0/33"]})" ),
               emptyState );
    // what is valid stays, sorted and without duplicates
    EXPECT_EQ(
        normalizedState( R"({"layer3UnicastAddresses":["10.0.0.2","224.0.0.1","10.0.0.1","10.0.0.2"]})" ),
        R"({"end":false,"flags":"","layer2Addresses":{},"layer3UnicastAddresses":["10.0.0.1","10.0.0.2"],"layer3Networks":{}})" );
}

TEST_F( InNwValues, StateSetters )
{
    auto state = pb::adopt( inNwInterfaceStateCreate() );
    const auto empty = state;
    inNwInterfaceStateSetEnd( state.address(), 5 );
    inNwInterfaceStateSetDisplayName( state.address(), pb::string( "eth0" ).get() );
    inNwInterfaceStateSetStatus( state.address(), 1 );
    inNwInterfaceStateSetFlags( state.address(), 7 );
    inNwInterfaceStateLayer2SetMtu( state.address(), 1500 );
    inNwInterfaceStateLayer2SetSpeedReceive( state.address(), 4294967295000000 );
    inNwInterfaceStateLayer2SetSpeedTransmit( state.address(), 0 );
    for ( const char *text : { "0:0:0:0:0:2", "0:0:0:0:0:1", "0:0:0:0:0:2" } )
        inNwInterfaceStateLayer2SetAddress( state.address(),
                                            pb::adopt( inNwAddressCreateMac( mac( text ).get() ) ).get() );
    for ( const char *text : { "fe80::1", "10.0.0.2", "10.0.0.1", "10.0.0.2" } )
        inNwInterfaceStateLayer3SetUnicastAddress( state.address(), address( text ).get() );
    const auto v4Network = pb::adopt( inNetworkCreate( address( "10.0.0.1" ).get(), 8 ) );
    inNwInterfaceStateLayer3SetNetwork( state.address(),
                                        pb::adopt( inNetworkCreate( address( "fe80::1" ).get(), 64 ) ).get() );
    inNwInterfaceStateLayer3SetNetwork( state.address(), v4Network.get() );
    EXPECT_EQ( json( inNwInterfaceStateStore( state.get() ) ), fullState );
    EXPECT_EQ( json( inNwInterfaceStateStore( empty.get() ) ), emptyState );

    EXPECT_EQ( inNwInterfaceStateLayer3UnicastAddressesLength( state.get() ), 3 );
    EXPECT_TRUE( inNwInterfaceStateLayer3HasNetwork( state.get(), v4Network.get() ) );
    inNwInterfaceStateLayer3DelNetwork( state.address(), v4Network.get() );
    EXPECT_FALSE( inNwInterfaceStateLayer3HasNetwork( state.get(), v4Network.get() ) );
    EXPECT_EQ( pbVectorLength( pb::adopt( inNwInterfaceStateLayer3NetworksVector( state.get() ) ).get() ), 1 );
    inNwInterfaceStateDelStatus( state.address() );
    inNwInterfaceStateLayer2DelMtu( state.address() );
    EXPECT_FALSE( inNwInterfaceStateHasStatus( state.get() ) || inNwInterfaceStateLayer2HasMtu( state.get() ) );
}

TEST_F( InNwValues, StateOrdersFieldByField )
{
    support::expectAscending(
        { "{}", R"({"layer3Networks":["10.0.0.0/8"]})", R"({"layer3UnicastAddresses":["10.0.0.1"]})",
          R"({"layer2SpeedTransmit":0})", R"({"layer2SpeedReceive":0})",
          R"({"layer2Mtu":0,"layer3Networks":["10.0.0.0/8"]})",
          R"({"layer2Addresses":[{"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"0:0:0:0:0:1"}]})",
          R"({"flags":"IN_NW_INTERFACE_FLAG_HIDE"})", R"({"status":"IN_NW_INTERFACE_STATUS_DOWN"})",
          R"({"status":"IN_NW_INTERFACE_STATUS_UP"})", R"({"displayName":""})", R"({"end":true})" },
        []( const char *source ) { return pb::adopt( inNwInterfaceStateRestore( store( source ).get() ) ); } );
}

using InNwValuesDeath = InNwValues;

TEST_F( InNwValuesDeath, Preconditions )
{
    auto one = mac( "0:0:0:0:0:1" );
    auto state = pb::adopt( inNwInterfaceStateCreate() );
    const auto group = address( "224.0.0.1" );
    support::expectDeaths( {
        { [&] { inNwMacAddressByteAt( one.get(), -1 ); }, "byteIdx >= 0" },
        { [&] { inNwMacAddressSetByteAt( one.address(), 6, 0 ); }, "byteIdx < 6" },
        { [&] { inNwAddressCreateMac( nullptr ); }, "mac" },
        { [&] { inNwInterfaceStateSetStatus( state.address(), 2 ); }, "IN_NW_INTERFACE_STATUS_OK( status )" },
        { [&] { inNwInterfaceStateLayer2SetMtu( state.address(), -1 ); }, "mtu >= 0" },
        { [&] { inNwInterfaceStateLayer2SetSpeedReceive( state.address(), -1 ); }, "bitsPerSecond >= 0" },
        { [&] { inNwInterfaceStateLayer2SetSpeedTransmit( state.address(), -1 ); }, "bitsPerSecond >= 0" },
        { [&] { inNwInterfaceStateLayer3SetUnicastAddress( state.address(), group.get() ); },
          "inAddressIsUnicast( ina )" },
    } );
}

} // namespace
