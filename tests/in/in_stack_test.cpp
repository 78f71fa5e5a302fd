// Stacks on the loopback interface: what they follow, whom they avoid, and how the configuration service sees them.
#include "in/base/in_stack.h"

#include "cs/cs_configuration.h"
#include "cs/cs_json.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack_decisions.hpp"
#include "in/base/in_stack_internal.h"
#include "in/nw/in_nw_interface.h"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_options.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "support/trace_catcher.hpp"
#include "tr/tr_anchor.h"
#include "tr/tr_stream.h"

#include <gmock/gmock.h>

namespace {

using Options = pb::Ref<struct inOptions>;
using Stack = pb::Ref<struct inStack>;

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromString( pb::string( text ).get() ) );
}

Options loopbackOptions( pbInt version )
{
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddressVersion( options.address(), version );
    return options;
}

std::string addressText( const Stack &stack )
{
    const auto address = pb::adopt( inStackAddress( stack.get() ) );
    return pb::utf8( pb::adopt( pbObjToString( inAddressObj( address.get() ) ) ) );
}

TEST( Stack, FollowsItsOptions )
{
    support::TraceCatcher catcher;
    Options options = loopbackOptions( IN_ADDRESS_VERSION_4 );
    const auto owner = pb::adopt( trStreamCreateCstr( "OWNER", -1 ) );
    const auto anchor = pb::adopt( trAnchorCreate( owner.get(), TR_ANCHOR_KIND_STACK ) );
    Stack stack = pb::adopt( inStackCreate( options.get(), anchor.get() ) );
    EXPECT_EQ( addressText( stack ), "127.0.0.1" ); // at once, before any run of the scheduler
    EXPECT_TRUE( inStackUp( stack.get() ) );
    EXPECT_EQ(
        pb::utf8( pb::adopt( inNwInterfaceIdentifier( pb::adopt( inStackPrimaryInterface( stack.get() ) ).get() ) ) ),
        "lo" );
    using Link = support::TraceCatcher::Link;
    const Link links[] = { { "OWNER", "IN_STACK", TR_ANCHOR_KIND_STACK, "" },
                           { "IN_STACK", "in___StackImpUpdateInterfaces()", TR_ANCHOR_KIND_PLAIN, "" } };
    EXPECT_THAT( catcher.links(), testing::IsSupersetOf( links ) );
    EXPECT_THAT( catcher.links(), testing::Contains( testing::Field( &Link::annotation, "inPrimaryInterface" ) ) );

    // An address that the host does not have: the item goes, and observers are told.
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    inStackUpdateAddSignalable( stack.get(), signalable.get() );
    inOptionsSetAddress( options.address(), address( "192.0.2.77" ).get() );
    inStackSetOptions( stack.get(), options.get() );
    pbBarrierPass( barrier.get() );
    pr___Quiesce();
    const auto status = pb::adopt( inStackCsStatus( stack.get() ) );
    EXPECT_EQ( addressText( stack ), "null" );
    EXPECT_EQ( pb::utf8( pb::adopt( csJsonFromStore( pb::adopt( csStatusReporterItems( status.get() ) ).get(),
                                                     CS_JSON_SHORT ) ) ),
               R"({"inStackReason": "no address: no interface has one that the options allow"})" );
    EXPECT_FALSE( csStatusReporterUp( status.get() ) );
    EXPECT_EQ( pb::utf8( pb::adopt( pbStoreValueCstr( catcher.configuration( "IN_STACK" ).get(), "address", -1 ) ) ),
               "192.0.2.77" );

    // Options that change nothing in the binding tell nobody.
    pbBarrierBlock( barrier.get() );
    inStackUpdateAddSignalable( stack.get(), signalable.get() );
    inStackSetOptions( stack.get(), pb::adopt( inOptionsCreateFrom( options.get() ) ).get() );
    pr___Quiesce();
    EXPECT_FALSE( pbBarrierPassTimed( barrier.get(), 0 ) );

    stack.reset();
    EXPECT_EQ( catcher.texts( "IN_STACK" ).back(), "[in___StackImpHalt()]" );
}

TEST( Stack, AvoidsTcpPeersForATime )
{
    support::DrivenClock clock;
    Options options = loopbackOptions( IN_ADDRESS_VERSION_4 );
    const auto tcpWith = [&options]( bool enabled, pbInt timeout ) {
        auto tcp = pb::adopt( inTcpOptionsCreate() );
        inTcpOptionsSetBlacklistEnabled( tcp.address(), enabled );
        inTcpOptionsSetBlacklistTimeout( tcp.address(), timeout );
        inOptionsSetTcpOptions( options.address(), tcp.get() );
        return options;
    };
    const Stack stack = pb::adopt( inStackCreate( tcpWith( false, 1000 ).get(), nullptr ) );
    const auto peer = pb::adopt( inTcpAddressCreate( address( "127.0.0.9" ).get(), 5060 ) );
    const auto samePeer = pb::adopt( inTcpAddressCreate( address( "127.0.0.9" ).get(), 5060 ) );
    const auto other = pb::adopt( inTcpAddressCreate( address( "127.0.0.9" ).get(), 5061 ) );
    const auto avoids = [&stack]( const auto &peer ) {
        return bool( in___StackTcpIsBlacklisted( stack.get(), peer.get() ) );
    };

    const auto setOptions = [&stack]( const Options &options ) {
        inStackSetOptions( stack.get(), options.get() );
        pr___Quiesce(); // so that what follows does not profit from this run
    };
    in___StackTcpBlacklist( stack.get(), peer.get() );
    EXPECT_FALSE( avoids( peer ) ); // disabled
    setOptions( tcpWith( true, 1000 ) );
    in___StackTcpBlacklist( stack.get(), peer.get() );
    EXPECT_TRUE( avoids( samePeer ) );
    EXPECT_FALSE( avoids( other ) );
    clock.advance( 999 );
    EXPECT_TRUE( avoids( peer ) );
    clock.advance( 1 );
    EXPECT_FALSE( avoids( peer ) );

    setOptions( tcpWith( true, PB_INT_MAX ) );
    in___StackTcpBlacklist( stack.get(), other.get() );
    clock.advance( 1'000'000'000'000 );
    EXPECT_TRUE( avoids( other ) );
}

TEST( TcpBlacklist, ExpiresInOrder )
{
    const auto peer = []( pbInt port ) { return pb::adopt( inTcpAddressCreate( address( "::1" ).get(), port ) ); };
    in::TcpBlacklist list;
    EXPECT_EQ( list.earliestExpiry(), std::nullopt );
    for ( const auto &[port, expiry] : { std::pair( 1, 30 ), { 2, 10 }, { 3, 10 }, { 4, 20 }, { 2, 40 } } )
        list.set( peer( port ).get(), expiry );
    const struct {
        pbInt now;
        std::optional<pbInt> earliest;
        std::vector<pbInt> left;
    } rows[] = { { 9, 10, { 1, 2, 3, 4 } }, { 10, 20, { 1, 2, 4 } }, { 30, 40, { 2 } }, { 41, std::nullopt, {} } };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.now );
        list.expire( row.now );
        EXPECT_EQ( list.earliestExpiry(), row.earliest );
        for ( pbInt port = 1; port <= 4; ++port )
            EXPECT_EQ( list.contains( peer( port ).get() ), std::count( row.left.begin(), row.left.end(), port ) == 1 )
                << port;
    }
}

TEST( Stack, IsConfigured )
{
    const std::string text = R"({"objects": {
        "local": {"sort": "IN_STACK",
                  "config": {"flags": "IN_FLAG_LOOPBACK_ONLY", "addressVersion": "IN_ADDRESS_VERSION_4"}},
        "marks": {"sort": "IN_QOS_STACK", "config": {"defaults": "IN_QOS_DEFAULTS_VOICE", "layer3Tos": "0x2E"}}}})";
    pb::Ref<struct pbVector> problems;
    const auto parse = [&problems]( const std::string &json ) {
        return pb::adopt( csConfigurationTryParse( json.data(), static_cast<pbInt>( json.size() ),
                                                   pb::string( "f" ).get(), problems.address() ) );
    };
    const auto configuration = parse( text );
    ASSERT_TRUE( configuration ) << pb::utf8( pb::adopt( pbVectorToString( problems.get() ) ) );
    csConfigurationStart( configuration.get() );
    const auto status = pb::adopt( csConfigurationStatusAt( configuration.get(), 0 ) );
    EXPECT_TRUE( csStatusReporterUp( status.get() ) );
    EXPECT_FALSE( pb::adopt( csConfigurationStatusAt( configuration.get(), 1 ) ) );
    csConfigurationStop( configuration.get() );
    problems.reset();
    EXPECT_FALSE( parse( R"({"objects": {"x": {"sort": "IN_STACK", "config": {"network": "10.0.0.0/40"}}}})" ) );
    EXPECT_EQ( pbVectorLength( problems.get() ), 1 );
}

TEST( StackDeathTest, Preconditions )
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH( (void)inStackCreate( nullptr, nullptr ), ": options\n" );
    EXPECT_DEATH( inStackSetOptions( nullptr, nullptr ), ": stack\n" );
}

} // namespace
