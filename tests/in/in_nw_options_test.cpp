// Options of an interface configuration stack, and what such a stack decides and says: stores, order, preconditions.
#include "in/nw/in_nw_options.h"

#include "cs/cs_condition.h"
#include "in/base/in_address.h"
#include "in/base/in_network.h"
#include "in/nw/in_nw_stack_decisions.hpp"
#include "support/ascending.hpp"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

#include <cerrno>

namespace {

using support::json, support::store;
using Options = pb::Ref<struct inNwOptions>;

Options restored( const std::string &source )
{
    return pb::adopt( inNwOptionsRestore( store( source ).get() ) );
}
std::string stored( const Options &options )
{
    return json( inNwOptionsStore( options.get(), 1 ) );
}
pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

TEST( InNwOptions, RestoreKeepsWhatIsValid )
{
    const std::string name = R"({"csConditionName":")", longest( 255, 'x' ), nothing = R"({"status":false})";
    const std::pair<std::string, std::string> rows[] = {
        { "{}", nothing },
        { R"({"status":1,"interfaceIdentifier":{},"layer3Network":"10.0.0.0/33"})", nothing },
        { R"({"layer3Network":"10.1.2.3/8","status":true,"interfaceIdentifier":"","csConditionName":"a.b-C_9"})",
          R"({"interfaceIdentifier":"","csConditionName":"a.b-C_9","status":true,"layer3Network":"10.0.0.0/8"})" },
        { name + longest + R"("})", name + longest + R"(","status":false})" },
        { name + longest + R"(x"})", nothing },
        { name + R"(a b"})", nothing },
        // the network that does not contain the address goes, not the address
        { R"({"layer3Network":"10.0.0.0/8","layer3UnicastAddress":"11.0.0.1"})",
          R"({"status":false,"layer3UnicastAddress":"11.0.0.1"})" },
        { R"({"layer3Network":"0.0.0.0/0","layer3UnicastAddress":"fd00::1"})",
          R"({"status":false,"layer3UnicastAddress":"fd00::1","layer3Network":"0.0.0.0/0"})" },
    };
    for ( const auto &[source, expected] : rows ) {
        EXPECT_EQ( stored( restored( source ) ), expected ) << source;
        EXPECT_EQ( stored( restored( expected ) ), expected );
    }
}

TEST( InNwOptions, OrdersFieldByField )
{
    support::expectAscending( { "{}", R"({"layer3Network":"10.0.0.0/8"})", R"({"layer3UnicastAddress":"10.0.0.1"})",
                                R"({"status":true})", R"({"csConditionName":"a"})", R"({"csConditionName":"b"})",
                                R"({"interfaceIdentifier":"eth0"})" },
                              restored );
    // The condition itself stands before its name, and is not stored.
    auto options = restored( "{}" );
    inNwOptionsSetCsCondition( options.address(), pb::adopt( csConditionCreate( true ) ).get() );
    EXPECT_EQ( inNwOptionsCompare( options.get(), restored( R"({"csConditionName":"z"})" ).get() ), 1 );
    inNwOptionsSetStatus( options.address(), 256 );
    EXPECT_EQ( stored( options ), R"({"status":true})" );
}

TEST( NwStack, SaysWhyItIsNotUp )
{
    const auto text = []( const char *name ) { return name ? pb::string( name ) : nullptr; };
    const auto retry = []( int error ) { return in::NwFailure{ "address not set", error }; };
    const std::string next = "retry: next try in 400 ms: address not set, ",
                      left = "fd00::1 on eth9, Cannot assign requested address";
    const struct {
        const char *interface;
        bool found, condition;
        const char *conditionName;
        std::optional<in::NwFailure> failure;
        size_t leftBehind;
        std::string reason;
    } rows[] = {
        { nullptr, false, true, nullptr, {}, 0, "no interface configured" },
        { "eth7", false, false, nullptr, {}, 0, "no interface eth7" },
        { "eth7", true, false, "link", {}, 0, "condition link is false" },
        { "eth7",
          true,
          false,
          nullptr,
          { { "not down", 0 } },
          0,
          "the condition is false: not down, the kernel did not say why" },
        { "eth7", true, true, "link", retry( EPERM ), 0, next + "needs CAP_NET_ADMIN" },
        { "eth7", true, true, nullptr, retry( EAGAIN ), 1, next + "the kernel did not answer; left behind: " + left },
        { "eth7", true, true, nullptr, retry( ENODEV ), 0, next + "No such device" },
        { "eth7", true, true, nullptr, {}, 0, "" },
        { "eth7", true, true, nullptr, {}, 2, "left behind: " + left + "; " + left },
    };
    for ( const auto &row : rows ) {
        const in::NwStackAccount account{ text( row.interface ),
                                          row.found,
                                          row.condition,
                                          text( row.conditionName ),
                                          row.failure,
                                          400,
                                          { row.leftBehind, { text( "eth9" ), address( "fd00::1" ), EADDRNOTAVAIL } } };
        EXPECT_EQ( account.reason(), row.reason );
        EXPECT_EQ( account.up(), row.found && row.condition && !row.failure );
    }
    for ( const auto &[before, after] : { std::pair<pbInt, pbInt>( -1, 100 ),
                                          { 100, 200 },
                                          { 149'999, 299'998 },
                                          { 150'001, 300'000 },
                                          { PB_INT_MAX, 300'000 } } )
        EXPECT_EQ( in::nextRetryInterval( before ), after );
}

TEST( InNwOptionsDeath, Preconditions )
{
    auto options = restored( R"({"layer3UnicastAddress":"10.0.0.1"})" );
    auto other = restored( R"({"layer3Network":"10.0.0.0/8"})" );
    const auto network = pb::adopt( inNetworkTryCreateFromString( pb::string( "11.0.0.0/8" ).get() ) );
    support::expectDeaths( {
        { [&] { inNwOptionsSetCsConditionName( options.address(), pb::string( "a b" ).get() ); },
          "csObjectRecordNameOk( conditionName )" },
        { [&] { inNwOptionsSetLayer3Network( options.address(), network.get() ); },
          "!address || inNetworkContainsAddress( network, address.get() )" },
        { [&] { inNwOptionsSetLayer3UnicastAddress( other.address(), address( "11.0.0.1" ).get() ); },
          "!network || inNetworkContainsAddress( network.get(), address )" },
    } );
}

} // namespace
