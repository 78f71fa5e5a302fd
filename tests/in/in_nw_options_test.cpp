// Options of an interface configuration stack, and what such a stack decides and says: stores, order, preconditions.
#include "in/nw/in_nw_options.h"

#include "cs/cs_condition.h"
#include "cs/cs_key.h"
#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/nw/in_nw_options_internal.h"
#include "in/nw/in_nw_stack_decisions.hpp"
#include "support/ascending.hpp"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

#include <cerrno>

namespace {

using support::json;
using support::store;
using Options = pb::Ref<struct inNwOptions>;

Options restored( const std::string &source )
{
    return pb::adopt( inNwOptionsRestore( store( source ).get() ) );
}
std::string normalized( const std::string &source ) { return json( inNwOptionsStore( restored( source ).get(), 1 ) ); }

pb::Ref<struct inAddress> address( const char *text ) { return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) ); }

TEST( InNwOptions, RestoreKeepsWhatIsValid )
{
    const std::string longest( 255, 'x' );
    const std::pair<std::string, std::string> rows[] = {
        { "{}", R"({"status":false})" },
        { R"({"status":1,"interfaceIdentifier":{},"layer3Network":"10.0.0.0/33"})", R"({"status":false})" },
        { R"({"layer3Network":"10.1.2.3/8","status":true,"interfaceIdentifier":"","csConditionName":"a.b-C_9"})",
          R"({"interfaceIdentifier":"","csConditionName":"a.b-C_9","status":true,"layer3Network":"10.0.0.0/8"})" },
        { R"({"csConditionName":")" + longest + R"("})",
          R"({"csConditionName":")" + longest + R"(","status":false})" },
        { R"({"csConditionName":")" + longest + R"(x"})", R"({"status":false})" },
        { R"({"csConditionName":"a b"})", R"({"status":false})" },
        { R"({"layer3UnicastAddress":"10.0.0","layer3Network":"fd00::/8"})",
          R"({"status":false,"layer3Network":"fd00::/8"})" },
        // the network that does not fit goes, not the address; "0.0.0.0/0" contains everything
        { R"({"layer3Network":"10.0.0.0/8","layer3UnicastAddress":"11.0.0.1"})",
          R"({"status":false,"layer3UnicastAddress":"11.0.0.1"})" },
        { R"({"layer3Network":"0.0.0.0/0","layer3UnicastAddress":"fd00::1"})",
          R"({"status":false,"layer3UnicastAddress":"fd00::1","layer3Network":"0.0.0.0/0"})" },
    };
    for ( const auto &[source, expected] : rows ) {
        EXPECT_EQ( normalized( source ), expected ) << source;
        EXPECT_EQ( normalized( expected ), expected );
    }
    pbInt count = 0;
    const struct csKey *const keys = in___NwOptionsKeys( &count );
    const char *const names[] = { "interfaceIdentifier", "csConditionName", "status", "layer3UnicastAddress",
                                  "layer3Network" };
    ASSERT_EQ( count, 5 );
    for ( pbInt i = 0; i < count; ++i )
        EXPECT_STREQ( keys[i].key, names[i] );
}

TEST( InNwOptions, OrdersFieldByField )
{
    support::expectAscending( { "{}", R"({"layer3Network":"10.0.0.0/8"})", R"({"layer3UnicastAddress":"10.0.0.1"})",
                                R"({"status":true})", R"({"csConditionName":"a"})",
                                R"({"csConditionName":"b"})", R"({"interfaceIdentifier":"eth0"})" },
                              restored );
    // The condition itself stands before its name, and is not stored.
    const auto condition = pb::adopt( csConditionCreate( true ) );
    auto options = restored( R"({"csConditionName":"z"})" );
    const auto withoutCondition = options;
    inNwOptionsSetCsCondition( options.address(), condition.get() );
    EXPECT_EQ( inNwOptionsCompare( options.get(), withoutCondition.get() ), 1 );
    EXPECT_EQ( normalized( json( inNwOptionsStore( options.get(), 0 ) ) ), R"({"csConditionName":"z","status":false})" );
    inNwOptionsSetStatus( options.address(), 256 );
    EXPECT_EQ( inNwOptionsStatus( options.get() ), 1 );
}

TEST( NwStack, SaysWhyItIsNotUp )
{
    const auto name = []( const char *text ) { return text ? pb::string( text ) : nullptr; };
    const auto reason = [&]( const char *iface, bool found, bool condition, const char *conditionName,
                             std::optional<in::NwFailure> failure, pbInt leftBehind = -1 ) {
        in::NwStackAccount account{ name( iface ), found, condition, name( conditionName ), failure, 400, {} };
        for ( pbInt i = 0; i < leftBehind; ++i )
            account.leftBehind.push_back( { name( "eth9" ), address( "fd00::1" ), EADDRNOTAVAIL } );
        EXPECT_EQ( account.up(), found && condition && !failure );
        return account.reason();
    };
    const in::NwFailure notSet{ "address not set", EPERM }, notDown{ "interface not taken down", 0 },
        silent{ "address not set", EAGAIN }, absent{ "interface not set up", ENODEV };
    const std::string left = "left behind: fd00::1 on eth9, Cannot assign requested address";
    EXPECT_EQ( reason( nullptr, false, true, nullptr, {} ), "no interface configured" );
    EXPECT_EQ( reason( "eth7", false, false, nullptr, {} ), "no interface eth7" );
    EXPECT_EQ( reason( "eth7", true, false, "link", {} ), "condition link is false" );
    EXPECT_EQ( reason( "eth7", true, false, nullptr, notDown ),
               "the condition is false: interface not taken down, the kernel did not say why" );
    EXPECT_EQ( reason( "eth7", true, true, "link", notSet ),
               "retry: next try in 400 ms: address not set, needs CAP_NET_ADMIN" );
    EXPECT_EQ( reason( "eth7", true, true, nullptr, silent, 1 ),
               "retry: next try in 400 ms: address not set, the kernel did not answer; " + left );
    EXPECT_EQ( reason( "eth7", true, true, nullptr, absent ),
               "retry: next try in 400 ms: interface not set up, No such device" );
    EXPECT_EQ( reason( "eth7", true, true, nullptr, {} ), "" );
    EXPECT_EQ( reason( "eth7", true, true, nullptr, {}, 2 ), left + "; " + left.substr( 13 ) );
    for ( const auto &[before, next] : { std::pair<pbInt, pbInt>( -1, 100 ), { 100, 200 }, { 149'999, 299'998 },
                                         { 150'001, 300'000 }, { 300'000, 300'000 }, { PB_INT_MAX, 300'000 } } )
        EXPECT_EQ( in::nextRetryInterval( before ), next );
}

TEST( InNwOptionsDeath, Preconditions )
{
    auto options = restored( R"({"layer3UnicastAddress":"10.0.0.1"})" );
    auto other = restored( R"({"layer3Network":"10.0.0.0/8"})" );
    const auto network = pb::adopt( inNetworkTryCreateFromString( pb::string( "11.0.0.0/8" ).get() ) );
    support::expectDeaths( {
        { [&] { inNwOptionsSetInterfaceIdentifier( options.address(), nullptr ); }, "identifier" },
        { [&] { inNwOptionsSetCsCondition( options.address(), nullptr ); }, "condition" },
        { [&] { inNwOptionsSetCsConditionName( options.address(), pb::string( "a b" ).get() ); },
          "csObjectRecordNameOk( conditionName )" },
        { [&] { inNwOptionsSetLayer3Network( options.address(), network.get() ); },
          "!address || inNetworkContainsAddress( network, address.get() )" },
        { [&] { inNwOptionsSetLayer3UnicastAddress( other.address(), address( "11.0.0.1" ).get() ); },
          "!network || inNetworkContainsAddress( network.get(), address )" },
    } );
}

} // namespace
