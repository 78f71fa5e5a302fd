// Interface configuration stacks on a host of their own: what they change, and that nothing of it stays.
#include "in/nw/in_nw_stack.h"

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/nw/in_nw_interface.h"
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

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>

namespace {

using support::shell, support::TraceCatcher;
using testing::Contains, testing::ElementsAre, testing::HasSubstr, testing::IsSupersetOf;
using Stack = pb::Ref<struct inNwStack>;

// One host with the module running on it, where time passes only as the scenario says.
struct RunningHost {
    support::DrivenClock clock; // before the module: its timers count from here
    support::ModuleHost modules;
};

pb::Ref<struct inNwOptions> optionsOf( const std::string &json )
{
    return pb::adopt( inNwOptionsRestore( support::store( json ).get() ) );
}
Stack makeStack( const std::string &json ) { return pb::adopt( inNwStackCreate( optionsOf( json ).get(), nullptr ) ); }

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
bool isUp( const Stack &stack ) { return csStatusReporterUp( pb::adopt( inNwStackCsStatus( stack.get() ) ).get() ); }

// ARP frames that arrive at the interface, from the moment on that the object is made.
class ArpEar {
public:
    explicit ArpEar( const char *interface )
    {
        sockaddr_ll place = {};
        place.sll_family = AF_PACKET;
        place.sll_protocol = htons( ETH_P_ARP );
        place.sll_ifindex = static_cast<int>( if_nametoindex( interface ) );
        EXPECT_EQ( bind( socket_.get(), reinterpret_cast<sockaddr *>( &place ), sizeof place ), 0 );
    }
    std::string next() // in hexadecimal; empty when none comes
    {
        pollfd ready{ socket_.get(), POLLIN, 0 };
        uint8_t bytes[100];
        const ssize_t length = poll( &ready, 1, 10'000 ) == 1 ? recv( socket_.get(), bytes, sizeof bytes, 0 ) : 0;
        std::string text;
        for ( ssize_t i = 0; i < length; ++i ) {
            text += "0123456789abcdef"[bytes[i] >> 4];
            text += "0123456789abcdef"[bytes[i] & 15];
        }
        return text;
    }

private:
    pb::Fd socket_{ socket( AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, htons( ETH_P_ARP ) ) };
};

TEST( NwStack, RaisesTheLinkAndAnnouncesTheAddress )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host, neighbour;
    host.connect( "eth0", neighbour, "peer0" );
    host.run( "ip link set eth0 address 0a:1b:2c:3d:4e:5f" );
    neighbour.run( "ip link set peer0 up" );
    int ready[2];
    ASSERT_EQ( pipe( ready ), 0 );
    auto listening = neighbour.start( [&] {
        ArpEar ear( "peer0" );
        ASSERT_EQ( write( ready[1], "", 1 ), 1 );
        for ( int request = 0; request < 3; ++request )
            EXPECT_EQ( ear.next(), "ffffffffffff" "0a1b2c3d4e5f" "0806" "0001" "0800" "06" "04" "0001"
                                   "0a1b2c3d4e5f" "0a010002" "000000000000" "0a010002" );
    } );
    char byte;
    ASSERT_EQ( read( ready[0], &byte, 1 ), 1 );
    host.scenario( [] {
        RunningHost running;
        TraceCatcher catcher;
        const Stack stack = makeStack( upWithAddress );
        EXPECT_EQ( kernel(), "up 10.1.0.2/24" ); // at once
        EXPECT_TRUE( isUp( stack ) );
        EXPECT_EQ( item( stack, "inNwStackInterface" ), "eth0" );
        EXPECT_FALSE( catcher.notable( "IN_NW_STACK" ) );
        EXPECT_THAT( catcher.texts( "IN_NW_INTERFACE" ),
                     ElementsAre( "[in___NwInterfaceImpTrySetStatus()] IN_NW_INTERFACE_STATUS_UP",
                                  "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] inAddress: 10.1.0.2",
                                  "[in___NwInterfaceImpTrySetLayer3UnicastAddress()] optionalInNetwork: 10.1.0.0/24" ) );
        using Link = TraceCatcher::Link;
        const Link links[] = { { "IN_NW_STACK", "IN_NW_INTERFACE", 0, "inNwInterface" },
                               { "IN_NW_STACK", "CS_CONDITION_OBSERVER", 0, "inCsConditionObserver" } };
        EXPECT_THAT( catcher.links(), IsSupersetOf( links ) );
    } );
    EXPECT_TRUE( listening.wait() );
}

TEST( NwStack, FollowsOptionsInterfaceAndCondition )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge; ip link add eth1 type bridge; ip addr add 10.9.9.9/32 dev eth0" );
    host.scenario( [] {
        RunningHost running;
        const auto condition = pb::adopt( csConditionCreate( true ) );
        Stack stack = makeStack( upWithAddress );
        const auto setOptions = [&]( const std::string &json ) {
            return [&stack, &condition, json] {
                auto options = optionsOf( json );
                inNwOptionsSetCsCondition( options.address(), condition.get() );
                inNwStackSetOptions( stack.get(), options.get() );
            };
        };
        const auto setCondition = [&condition]( bool value ) {
            return [&condition, value] { csConditionSetValue( condition.get(), value ); };
        };
        const auto run = []( const char *command ) { return [command] { shell( command ); }; };
        const std::string address6 = R"({"interfaceIdentifier":"eth0","layer3UnicastAddress":"fd00::9"})";
        const struct {
            std::function<void()> step;
            const char *kernel, *reason;
            bool signals;
        } rows[] = {
            { [] {}, "up 10.9.9.9/32 10.1.0.2/24", "", false },
            { setOptions( R"({"interfaceIdentifier":"eth0","layer3UnicastAddress":"10.1.0.3"})" ),
              "down 10.9.9.9/32 10.1.0.3/32", "", true },
            { setOptions( address6 ), "down 10.9.9.9/32 fd00::9/128", "", true },
            { run( "ip link set eth0 up" ), "up 10.9.9.9/32 fd00::9/128", "", false },
            { setOptions( address6 ), "up 10.9.9.9/32 fd00::9/128", "", false }, // equal: no change
            { setOptions( R"({"interfaceIdentifier":"eth1","status":true})" ), "up 10.9.9.9/32", "", true },
            { setOptions( upWithAddress ), "up 10.9.9.9/32 10.1.0.2/24", "", true },
            { setCondition( false ), "down 10.9.9.9/32", "the condition is false", false },
            { run( "ip link set eth0 up; ip link add eth2 type bridge" ), "down 10.9.9.9/32", // held down on every run
              "the condition is false", false },
            { setCondition( true ), "up 10.9.9.9/32 10.1.0.2/24", "", false },
            { run( "ip addr del 10.1.0.2/24 dev eth0" ), "up 10.9.9.9/32 10.1.0.2/24", "", false },
            { run( "ip link del eth0" ), "down", "no interface eth0", true },
            { run( "ip link add eth0 type bridge" ), "up 10.1.0.2/24", "", true },
            { setOptions( R"({"status":true})" ), "down", "no interface configured", true },
        };
        const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
        const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
        for ( const auto &row : rows ) {
            SCOPED_TRACE( &row - rows );
            pbBarrierBlock( barrier.get() );
            inNwStackUpdateAddSignalable( stack.get(), signalable.get() );
            row.step();
            pr___Quiesce();
            running.clock.advance( 5000 );
            EXPECT_EQ( kernel(), row.kernel );
            EXPECT_EQ( item( stack, "inNwStackReason" ), row.reason );
            EXPECT_EQ( isUp( stack ), !*row.reason );
            EXPECT_EQ( bool( pbBarrierPassTimed( barrier.get(), 0 ) ), row.signals );
            pbBarrierUnblock( barrier.get() );
        }
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
                Stack stack = makeStack( upWithAddress );
                if ( round % 2 )
                    inNwStackSetOptions( stack.get(), optionsOf( R"({"interfaceIdentifier":"eth0"})" ).get() );
                stack.reset();
                if ( round % 3 )
                    pr___Quiesce();
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
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge" );
    host.scenario( [] {
        RunningHost running;
        const std::string text = R"({"objects": {"active": {"sort": "CS_CONDITION"}, "nw": {"sort": "IN_NW_STACK",
            "config": {"csConditionName": "active", )" + std::string( upWithAddress + 1 ) + "}}}";
        pb::Ref<struct pbVector> problems;
        const auto configuration = pb::adopt( csConfigurationTryParse(
            text.data(), PB_INT_FROM( text.size() ), pb::string( "f" ).get(), problems.address() ) );
        ASSERT_TRUE( configuration ) << pb::utf8( pb::adopt( pbVectorToString( problems.get() ) ) );
        csConfigurationStart( configuration.get() );
        const auto condition = pb::adopt( csConditionFrom(
            csConfigurationObject( configuration.get(), pb::string( "active" ).get(), csConditionSort() ) ) );
        const auto status = pb::adopt( csConfigurationStatusAt( configuration.get(), 1 ) );
        EXPECT_FALSE( csStatusReporterUp( status.get() ) );
        for ( int flip = 1; flip <= 1001; ++flip ) {
            csConditionSetValue( condition.get(), flip % 2 );
            if ( flip % 50 == 0 || flip >= 1000 ) {
                pr___Quiesce();
                EXPECT_EQ( kernel(), flip % 2 ? "up 10.1.0.2/24" : "down" );
                EXPECT_EQ( csStatusReporterUp( status.get() ), flip % 2 );
            }
        }
        csConfigurationStop( configuration.get() );
        pr___Quiesce();
        EXPECT_EQ( kernel(), "down" );
    } );
}

TEST( NwStack, TriesAgainLaterAndLater )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge" );
    host.scenario( [] {
        RunningHost running;
        TraceCatcher catcher;
        const uid_t nobody = 65534;
        ASSERT_EQ( seteuid( nobody ), 0 ); // in all threads; without capabilities
        const Stack stack = makeStack( upWithAddress );
        const std::string notApplied = "[in___NwStackImpProcessFunc()] in___NwStackImpTryApply(): false",
                          notUp = "[in___NwStackImpTryApply()] in___NwInterfaceTrySetStatus(): false";
        EXPECT_TRUE( catcher.notable( "IN_NW_STACK" ) );
        for ( const pbInt wait : { 100, 200, 400, 800, 1600, 3200, 6400, 12800, 25600, 51200, 102400, 204800, 300000,
                                   300000 } ) {
            EXPECT_THAT( catcher.texts( "IN_NW_STACK" ),
                         ElementsAre( notUp, notApplied + ", starting timer (" + std::to_string( wait ) + " ms)" ) );
            EXPECT_EQ( item( stack, "inNwStackReason" ), "retry: next try in " + std::to_string( wait )
                                                             + " ms: interface not set up, needs CAP_NET_ADMIN" );
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
        // The interval survives the success, but no change of the options.
        catcher.clear();
        for ( const auto &[options, wait] : { std::pair( upWithAddress, "(300000 ms)" ),
                                              { R"({"interfaceIdentifier":"eth0","status":true})", "(100 ms)" } } ) {
            inNwStackSetOptions( stack.get(), optionsOf( options ).get() );
            pr___Quiesce();
            shell( "ip link set eth0 down" );
            ASSERT_EQ( seteuid( nobody ), 0 );
            running.clock.advance( 5000 );
            EXPECT_THAT( catcher.texts( "IN_NW_STACK" ), Contains( HasSubstr( wait ) ) );
            ASSERT_EQ( seteuid( 0 ), 0 );
            running.clock.advance( 300000 );
        }
        ASSERT_EQ( prctl( PR_SET_DUMPABLE, 1 ), 0 ); // for the leak check
    } );
}

TEST( NwStack, TellsWhatItLeftBehind )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge; ip link set eth0 up" );
    host.scenario( [] {
        RunningHost running;
        const Stack stack = makeStack(
            R"({"interfaceIdentifier":"eth0","layer3UnicastAddress":"fd00::1","layer3Network":"fd00::/64"})" );
        EXPECT_EQ( kernel(), "up fd00::1/64" );
        TraceCatcher catcher;
        const auto nextOptions = [&]( const char *json ) {
            inNwStackSetOptions( stack.get(), optionsOf( json ).get() );
            running.clock.advance( 600'000 );
        };
        nextOptions( R"({"interfaceIdentifier":"eth0"})" );
        EXPECT_EQ( kernel(), "up fd00::1/64" ); // the kernel wants the prefix with which it was added
        const char *const text = "[in___NwStackImpRevert()] in___NwInterfaceTryDelLayer3UnicastAddress(): false";
        EXPECT_THAT( catcher.texts( "IN_NW_STACK" ), ElementsAre( text ) );
        EXPECT_EQ( item( stack, "inNwStackReason" ),
                   "left behind: fd00::1 on eth0, Cannot assign requested address" );
        EXPECT_EQ( item( stack, "inNwStackLeftBehind" ), "fd00::1 on eth0, Cannot assign requested address" );
        EXPECT_TRUE( isUp( stack ) );
        shell( "ip addr del fd00::1/64 dev eth0" );
        running.clock.advance( 5000 );
        nextOptions( R"({"interfaceIdentifier":"eth0","status":true})" );
        EXPECT_EQ( item( stack, "inNwStackReason" ), "" );
    } );
}

TEST( NwInterface, ChangesFailForGivenReasons )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add fifteen-chars-x type bridge" );
    host.scenario( [] {
        RunningHost running;
        const auto address = pb::adopt( inAddressTryCreateFromCstr( "10.0.0.1", -1 ) );
        const std::string request = "[in___NwInterfaceImpRtnetlinkTryModifyAddress()] ";
        const struct {
            const char *name;
            bool ended;
            pbInt error;
            std::vector<std::string> texts; // of the request
        } rows[] = {
            { "fifteen-chars-x", false, -1, {} },
            { "sixteen-chars-xx", false, ENAMETOOLONG, { request + "fixIfname: invalid" } },
            { "absent0", false, ENODEV, { request + "ioctl(): No such device" } },
            { "fifteen-chars-x", true, ENODEV, {} },
        };
        for ( const auto &row : rows ) {
            SCOPED_TRACE( row.name );
            TraceCatcher catcher;
            const auto imp = pb::adopt( in___NwInterfaceImpCreate( pb::string( row.name ).get(), true, nullptr ) );
            const auto expect = [&row]( pbBool done, pbInt &error, pbInt expected ) {
                EXPECT_EQ( done, expected == -1 );
                EXPECT_EQ( std::exchange( error, -1 ), expected );
            };
            if ( row.ended ) {
                in___NwInterfaceImpSetEnd( imp.get() );
                in___NwInterfaceImpEndWait( imp.get() );
            }
            pbInt error = -1;
            for ( const pbInt status : { IN_NW_INTERFACE_STATUS_UP, IN_NW_INTERFACE_STATUS_UP,
                                         IN_NW_INTERFACE_STATUS_DOWN } )
                expect( in___NwInterfaceImpTrySetStatus( imp.get(), status, &error ), error, row.error );
            expect( in___NwInterfaceImpTrySetLayer3UnicastAddress( imp.get(), address.get(), nullptr, &error ), error,
                    row.error );
            EXPECT_THAT( catcher.texts( "IN_NW_INTERFACE" ), IsSupersetOf( row.texts ) );
            // What is not known to be there need not be taken away.
            for ( int time = 0; time < 2; ++time )
                expect( in___NwInterfaceImpTryDelLayer3UnicastAddress( imp.get(), address.get(), &error ), error,
                        row.ended ? row.error : -1 );
            in___NwInterfaceImpSetEnd( imp.get() );
            in___NwInterfaceImpEndWait( imp.get() );
        }
    } );
}

} // namespace
