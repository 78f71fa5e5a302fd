// Interface configuration stacks on a host of their own: what they change, and that nothing of it stays.
#include "in/nw/in_nw_stack.h"

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/nw/in_nw_interface_imp_linux_internal.h"
#include "in/nw/in_nw_interface_status.h"
#include "in/nw/in_nw_options.h"
#include "in/nw/in_nw_stack_state.h"
#include "pb/pb_barrier.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/in_tables.hpp"
#include "support/module_host.hpp"
#include "support/net_namespace.hpp"
#include "support/trace_catcher.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <net/ethernet.h>
#include <sys/socket.h>

namespace {

using support::shell, support::TraceCatcher;
using testing::Contains, testing::ElementsAre;
using Stack = pb::Ref<struct inNwStack>;

// One host with the module running on it, where time passes only as the scenario says.
struct RunningHost {
    support::DrivenClock clock; // before the module: its timers count from here
    support::ModuleHost modules;
};

void onHost( const char *setUp, const std::function<void( RunningHost & )> &scenario )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( setUp );
    host.scenario( [&] {
        RunningHost running;
        scenario( running );
    } );
}

pb::Ref<struct inNwOptions> optionsOf( const std::string &json )
{
    return pb::adopt( inNwOptionsRestore( support::store( json ).get() ) );
}
Stack makeStack( const std::string &json )
{
    return pb::adopt( inNwStackCreate( optionsOf( json ).get(), nullptr ) );
}

constexpr const char *upWithAddress =
    R"({"interfaceIdentifier":"eth0","status":true,"layer3UnicastAddress":"10.1.0.2","layer3Network":"10.1.0.0/24"})";

// "up 10.1.0.2/24": what the kernel says of eth0, without link-local addresses.
std::string kernel()
{
    const std::unique_ptr<FILE, int ( * )( FILE * )> pipe(
        popen( "ip -o link show dev eth0 2>&- | grep -q '[<,]UP[,>]' && printf up || printf down;"
               "ip -o addr show dev eth0 scope global 2>&- | awk '{printf \" %s\",$4}'",
               "re" ),
        pclose );
    char text[1000];
    return std::string( text, fread( text, 1, sizeof text, pipe.get() ) );
}

std::string item( const Stack &stack, const char *key )
{
    const auto items = pb::adopt( csStatusReporterItems( pb::adopt( inNwStackCsStatus( stack.get() ) ).get() ) );
    const auto value = pb::adopt( pbStoreValueCstr( items.get(), key, -1 ) );
    return value ? pb::utf8( value ) : "";
}

TEST( NwStack, RaisesTheLinkAndAnnouncesTheAddress )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host, neighbour;
    host.connect( "eth0", neighbour, "peer0" );
    host.run( "ip link set eth0 address 0a:1b:2c:3d:4e:5f" );
    neighbour.run( "ip link set peer0 up" );
    int listening[2];
    ASSERT_EQ( pipe( listening ), 0 );
    auto ear = neighbour.start( [&] {
        const pb::Fd socket( ::socket( AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons( ETH_P_ARP ) ) );
        ASSERT_EQ( write( listening[1], "", 1 ), 1 );
        const std::string mac = "\x0a\x1b\x2c\x3d\x4e\x5f", address( "\x0a\1\0\2", 4 ), broadcast( 6, '\xff' );
        const std::string request( "\x08\x06\0\1\x08\0\6\4\0\1", 10 );
        for ( int frame = 0; frame < 3; ++frame ) {
            char bytes[100];
            const auto length = recv( socket.get(), bytes, sizeof bytes, 0 );
            EXPECT_EQ( std::string( bytes, static_cast<size_t>( length ) ),
                       broadcast + mac + request + mac + address + std::string( 6, '\0' ) + address );
        }
    } );
    char byte;
    ASSERT_EQ( read( listening[0], &byte, 1 ), 1 );
    host.scenario( [] {
        RunningHost running;
        TraceCatcher catcher;
        const Stack stack = makeStack( upWithAddress );
        EXPECT_EQ( kernel(), "up 10.1.0.2/24" ); // at once
        EXPECT_EQ( item( stack, "inNwStackInterface" ), "eth0" );
        EXPECT_THAT(
            catcher.texts( "IN_NW_INTERFACE" ),
            ElementsAre( "[in___NwInterfaceImpTrySetStatus()] IN_NW_INTERFACE_STATUS_UP",
                         "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] inAddress: 10.1.0.2",
                         "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] optionalInNetwork: 10.1.0.0/24" ) );
        using Link = TraceCatcher::Link;
        EXPECT_THAT( catcher.links(), Contains( Link{ "IN_NW_STACK", "IN_NW_INTERFACE", 0, "inNwInterface" } ) );
    } );
    EXPECT_TRUE( ear.wait() );
}

TEST( NwStack, FollowsOptionsInterfaceAndCondition )
{
    onHost( "ip link add eth0 type bridge; ip link add eth1 type bridge; ip addr add 10.9.9.9/32 dev eth0",
            []( RunningHost &running ) {
                TraceCatcher catcher;
                const auto condition = pb::adopt( csConditionCreate( true ) );
                const Stack stack = makeStack( upWithAddress );
                const auto set = [&]( const std::string &json ) {
                    auto options = optionsOf( json );
                    inNwOptionsSetCsCondition( options.address(), condition.get() );
                    inNwStackSetOptions( stack.get(), options.get() );
                };
                const std::string on = R"({"interfaceIdentifier":"eth0",)",
                                  other = on + R"("layer3UnicastAddress":"10.1.0.3"})",
                                  version6 = on + R"("layer3UnicastAddress":"fd00::9"})",
                                  network6 = on + R"("layer3UnicastAddress":"fd00::1","layer3Network":"fd00::/64"})";
                // The kernel wants the prefix with which the address was added; nobody tries again.
                const char *const left = "left behind: fd00::1 on eth0, Cannot assign requested address";
                const struct {
                    std::function<void()> step;
                    const char *kernel, *reason;
                    bool signals;
                } rows[] = {
                    { [&] { set( upWithAddress ); }, "up 10.9.9.9/32 10.1.0.2/24", "", true },
                    { [&] { set( other ); }, "down 10.9.9.9/32 10.1.0.3/32", "", true },
                    { [&] { set( version6 ); }, "down 10.9.9.9/32 fd00::9/128", "", true },
                    { [&] { set( version6 ); }, "down 10.9.9.9/32 fd00::9/128", "", false }, // equal: no change
                    { [&] { set( R"({"interfaceIdentifier":"eth1"})" ); }, "down 10.9.9.9/32", "", true },
                    { [&] { set( network6 ); }, "down 10.9.9.9/32 fd00::1/64", "", true },
                    { [&] { set( upWithAddress ); }, "up 10.9.9.9/32 10.1.0.2/24 fd00::1/64", left, true },
                    { [] {}, "up 10.9.9.9/32 10.1.0.2/24 fd00::1/64", left, false },
                    { [] { shell( "ip addr del fd00::1/64 dev eth0; ip link add eth3 type bridge" ); },
                      "up 10.9.9.9/32 10.1.0.2/24", "", false },
                    { [&] { csConditionSetValue( condition.get(), false ); }, "down 10.9.9.9/32",
                      "the condition is false", false },
                    { [] { shell( "ip link set eth0 up; ip link add eth2 type bridge" ); }, // held down on every run
                      "down 10.9.9.9/32", "the condition is false", false },
                    { [&] { csConditionSetValue( condition.get(), true ); }, "up 10.9.9.9/32 10.1.0.2/24", "", false },
                    { [] { shell( "ip addr del 10.1.0.2/24 dev eth0" ); }, "up 10.9.9.9/32 10.1.0.2/24", "", false },
                    { [] { shell( "ip link del eth0" ); }, "down", "no interface eth0", true },
                    { [] { shell( "ip link add eth0 type bridge" ); }, "up 10.1.0.2/24", "", true },
                    { [&] { set( R"({"status":true})" ); }, "down", "no interface configured", true },
                };
                for ( const auto &row : rows ) {
                    SCOPED_TRACE( &row - rows );
                    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
                    inNwStackUpdateAddSignalable( stack.get(),
                                                  pb::adopt( pbSignalableCreateBarrier( barrier.get() ) ).get() );
                    row.step();
                    pr___Quiesce();
                    running.clock.advance( 5000 );
                    EXPECT_EQ( kernel(), row.kernel );
                    EXPECT_EQ( item( stack, "inNwStackReason" ), row.reason );
                    EXPECT_EQ( pbBarrierPassTimed( barrier.get(), 0 ), row.signals );
                }
                // One failed removal for fd00::1 and one for the interface that is gone; nobody tried again.
                const auto texts = catcher.texts( "IN_NW_STACK" );
                EXPECT_EQ( std::count( texts.begin(), texts.end(),
                                       "[in___NwStackImpRevert()] in___NwInterfaceTryDelLayer3UnicastAddress(): false" ),
                           2 );
                EXPECT_FALSE( inNwStackStateHasInterface( pb::adopt( inNwStackState( stack.get() ) ).get() ) );
            } );
}

TEST( NwStack, LetsGoOfEverything )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge" );
    host.scenario( [] {
        {
            RunningHost running;
            for ( int round = 0; round < 30; ++round ) {
                const Stack stack = makeStack( upWithAddress );
                if ( round % 2 )
                    inNwStackSetOptions( stack.get(), optionsOf( R"({"interfaceIdentifier":"eth0"})" ).get() );
            }
            pr___Quiesce();
            EXPECT_EQ( kernel(), "down" );
            (void)makeStack( upWithAddress );
        }
        EXPECT_EQ( kernel(), "down" ); // the module's end waited for the last one
    } );
}

TEST( NwStack, EndsRightAfterManyFlips )
{
    onHost( "ip link add eth0 type bridge", []( RunningHost & ) {
        const std::string text = R"({"objects": {"active": {"sort": "CS_CONDITION"}, "nw": {"sort": "IN_NW_STACK",
            "config": {"csConditionName": "active", )" +
                                 std::string( upWithAddress + 1 ) + "}}}";
        pb::Ref<struct pbVector> problems;
        const auto configuration = pb::adopt( csConfigurationTryParse( text.data(), PB_INT_FROM( text.size() ),
                                                                       pb::string( "f" ).get(), problems.address() ) );
        csConfigurationStart( configuration.get() );
        const auto condition = pb::adopt( csConditionFrom( csConfigurationObjectAt( configuration.get(), 0 ) ) );
        const auto status = pb::adopt( csConfigurationStatusAt( configuration.get(), 1 ) );
        for ( int flip = 1; flip <= 1001; ++flip ) {
            csConditionSetValue( condition.get(), flip % 2 );
            if ( flip % 50 && flip < 1000 )
                continue;
            pr___Quiesce();
            EXPECT_EQ( kernel(), flip % 2 ? "up 10.1.0.2/24" : "down" );
            EXPECT_EQ( csStatusReporterUp( status.get() ), flip % 2 );
        }
        csConfigurationStop( configuration.get() );
        pr___Quiesce();
        EXPECT_EQ( kernel(), "down" );
    } );
}

TEST( NwStack, TriesAgainLaterAndLater )
{
    onHost( "ip link add eth0 type bridge", []( RunningHost &running ) {
        TraceCatcher catcher;
        constexpr uid_t nobody = 65534;
        ASSERT_EQ( seteuid( nobody ), 0 ); // in all threads; without capabilities
        const Stack stack = makeStack( upWithAddress );
        const std::string notApplied = "[in___NwStackImpProcessFunc()] in___NwStackImpTryApply(): false",
                          notUp = "[in___NwStackImpTryApply()] in___NwInterfaceTrySetStatus(): false";
        EXPECT_TRUE( catcher.notable( "IN_NW_STACK" ) );
        for ( const pbInt wait :
              { 100, 200, 400, 800, 1600, 3200, 6400, 12800, 25600, 51200, 102400, 204800, 300000, 300000 } ) {
            EXPECT_THAT( catcher.texts( "IN_NW_STACK" ),
                         ElementsAre( notUp, notApplied + ", starting timer (" + std::to_string( wait ) + " ms)" ) );
            EXPECT_EQ( item( stack, "inNwStackReason" ), "retry: next try in " + std::to_string( wait ) +
                                                             " ms: interface not set up, needs CAP_NET_ADMIN" );
            catcher.clear();
            running.clock.advance( wait - 1 );
            EXPECT_THAT( catcher.texts( "IN_NW_STACK" ), ElementsAre() );
            inNwStackSetOptions( stack.get(), optionsOf( upWithAddress ).get() ); // equal, but a run
            pr___Quiesce();
            EXPECT_THAT( catcher.texts( "IN_NW_STACK" ), ElementsAre( notUp, notApplied ) );
            catcher.clear();
            running.clock.advance( 1 );
        }
        ASSERT_EQ( seteuid( 0 ), 0 );
        running.clock.advance( 300000 );
        EXPECT_EQ( kernel(), "up 10.1.0.2/24" );
        EXPECT_EQ( item( stack, "inNwStackReason" ), "" );
        EXPECT_FALSE( catcher.notable( "IN_NW_STACK" ) );
        // The interval survives the success.
        shell( "ip link set eth0 down" );
        ASSERT_EQ( seteuid( nobody ), 0 );
        running.clock.advance( 5000 );
        EXPECT_EQ( catcher.texts( "IN_NW_STACK" ).back(), notApplied + ", starting timer (300000 ms)" );
        ASSERT_EQ( seteuid( 0 ), 0 );
        ASSERT_EQ( prctl( PR_SET_DUMPABLE, 1 ), 0 ); // for the leak check
    } );
}

TEST( NwInterface, ChangesFailForGivenReasons )
{
    onHost( "ip link add fifteen-chars-x type bridge", []( RunningHost & ) {
        const auto address = pb::adopt( inAddressTryCreateFromCstr( "10.0.0.1", -1 ) );
        for ( const auto &[name, ended, error] : { std::tuple( "fifteen-chars-x", false, -1 ),
                                                   { "fifteen-chars-x", true, ENODEV },
                                                   { "sixteen-chars-xx", false, ENAMETOOLONG },
                                                   { "absent0", false, ENODEV } } ) {
            const auto imp = pb::adopt( in___NwInterfaceImpCreate( pb::string( name ).get(), true, nullptr ) );
            if ( ended )
                in___NwInterfaceImpSetEnd( imp.get() );
            pr___Quiesce();
            pbInt up = -1, set = -1, del = -1;
            in___NwInterfaceImpTrySetStatus( imp.get(), IN_NW_INTERFACE_STATUS_UP, &up );
            in___NwInterfaceImpTrySetLayer3UnicastAddress( imp.get(), address.get(), nullptr, &set );
            in___NwInterfaceImpTryDelLayer3UnicastAddress( imp.get(), address.get(), &del );
            // What is not known to be there need not be taken away.
            EXPECT_THAT( ( std::array{ up, set, del } ), ElementsAre( error, error, ended ? ENODEV : -1 ) ) << name;
            in___NwInterfaceImpSetEnd( imp.get() );
            in___NwInterfaceImpEndWait( imp.get() );
        }
    } );
}

} // namespace
