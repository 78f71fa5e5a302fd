// Interfaces and stacks on a host of their own, whose links come and go.
#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interfaces.h"
#include "pb/pb_barrier.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/in_tables.hpp"
#include "support/module_host.hpp"
#include "support/net_namespace.hpp"

#include <gmock/gmock.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace {

using support::shell;
using testing::ElementsAre, testing::HasSubstr, testing::Not;
using Interface = pb::Ref<struct inNwInterface>;

// One host with the module running on it, where time passes only as the scenario says.
struct RunningHost {
    support::DrivenClock clock; // before the module: its timers count from here
    support::ModuleHost modules;

    // The next look at the interfaces, and all that follows from it.
    void poll() { clock.advance( 5000 ); }
};

pb::Ref<struct inStack> makeStack( const char *interfaceName )
{
    auto options = pb::adopt( inOptionsCreate() );
    if ( interfaceName )
        inOptionsSetInterface( options.address(), pb::string( interfaceName ).get() );
    return pb::adopt( inStackCreate( options.get(), nullptr ) );
}

Interface find( const char *name )
{
    return pb::adopt( inNwInterfacesInterfaceByIdentifier( pb::string( name ).get() ) );
}

std::string stateOf( const char *name )
{
    return support::json( inNwInterfaceStateStore( pb::adopt( inNwInterfaceState( find( name ).get() ) ).get() ) );
}

std::vector<std::string> names( struct pbVector *interfaces )
{
    const auto owner = pb::adopt( interfaces );
    std::vector<std::string> found;
    for ( pbInt index = 0; index < pbVectorLength( interfaces ); ++index ) {
        const auto iface = pb::adopt( inNwInterfaceFrom( pbVectorObjAt( interfaces, index ) ) );
        found.push_back( pb::utf8( pb::adopt( inNwInterfaceIdentifier( iface.get() ) ) ) );
    }
    return found;
}

std::string item( const pb::Ref<struct inStack> &stack, const char *key )
{
    const auto items = pb::adopt( csStatusReporterItems( pb::adopt( inStackCsStatus( stack.get() ) ).get() ) );
    return pb::utf8( pb::adopt( pbStoreValueCstr( items.get(), key, -1 ) ) );
}

// "10.1.0.1 of eth0 on eth0 up", as published in one piece; the status reporter must agree.
std::string describe( const pb::Ref<struct inStack> &stack )
{
    pb::Ref<struct inAddress> address;
    Interface primary;
    pb::Ref<struct pbVector> interfaces;
    pbBool up = false;
    inStackConfiguration( stack.get(), nullptr, address.address(), primary.address(), interfaces.address(), &up );
    const auto status = pb::adopt( inStackCsStatus( stack.get() ) );
    const std::string addressText = address ? pb::utf8( pb::adopt( inAddressToString( address.get() ) ) ) : "null";
    EXPECT_EQ( addressText, item( stack, "inStackAddress" ) );
    EXPECT_EQ( up, csStatusReporterUp( status.get() ) );

    std::string text = addressText + " of " +
                       ( primary ? pb::utf8( pb::adopt( inNwInterfaceIdentifier( primary.get() ) ) ) : "null" ) + " on";
    for ( const std::string &name : names( interfaces.share() ) )
        text += " " + name;
    return text + ( up ? " up" : " down" );
}

TEST( Interfaces, ReadWhatTheHostHas )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host, neighbour;
    host.connect( "v0", neighbour, "v1" );
    host.run( "ip link add eth0 address 0a:1b:2c:3d:4e:5f type bridge; ip link set eth0 mtu 1400 up;"
              "ip addr add 10.1.0.1/16 dev eth0; ip addr add 10.9.9.9/32 dev eth0;"
              "ip addr add fd00:1::1/64 dev eth0 nodad; ip addr add 10.2.0.1/8 dev eth0 label eth0:1;"
              "ip link add fifteen-chars-x type bridge; odd=$(printf 'a\\377'); ip link add $odd type bridge;"
              "ip link set $odd up; ip addr add 10.3.0.1/8 dev $odd" );
    host.scenario( [] {
        RunningHost running;
        // An address label makes an interface of its own; some have no address and are found in /proc/net/dev alone.
        EXPECT_THAT( names( inNwInterfacesVector() ), ElementsAre( "a\\xff", "eth0", "eth0:1", "fifteen-chars-x", "lo", "v0" ) );
        EXPECT_EQ( describe( makeStack( "a\\xff" ) ), "10.3.0.1 of a\\xff on a\\xff up" ); // a name that is no UTF-8
        EXPECT_EQ(
            stateOf( "eth0" ),
            R"({"end":false,"displayName":"eth0","status":"IN_NW_INTERFACE_STATUS_UP","flags":"",)"
            R"("layer2Addresses":[{"type":"IN_NW_ADDRESS_TYPE_MAC","mac":"0a:1b:2c:3d:4e:5f"}],"layer2Mtu":1400,)"
            R"("layer2SpeedReceive":4294967295000000,"layer2SpeedTransmit":4294967295000000,)" // unknown
            R"("layer3UnicastAddresses":["10.1.0.1","10.9.9.9","fd00:1::1"],)"
            R"("layer3Networks":["10.1.0.0/16","fd00:1::/64"]})" );
        EXPECT_THAT( stateOf( "v0" ), HasSubstr( R"("layer2SpeedTransmit":10000000000)" ) );
        EXPECT_THAT( stateOf( "fifteen-chars-x" ), HasSubstr( "IN_NW_INTERFACE_STATUS_DOWN" ) );
        EXPECT_THAT( stateOf( "lo" ), Not( HasSubstr( "mac" ) ) ); // its family is not Ethernet
    } );
}

TEST( Stack, FollowsLinkAndAddresses )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge; ip link set eth0 up; ip addr add 10.1.0.1/16 dev eth0; ip link add eth1 "
              "type bridge" );
    host.scenario( [] {
        RunningHost running;
        const auto onEth0 = makeStack( "eth0" ), anywhere = makeStack( nullptr );
        EXPECT_EQ( describe( onEth0 ), "10.1.0.1 of eth0 on eth0 up" );
        EXPECT_EQ( describe( anywhere ), "10.1.0.1 of eth0 on eth0 up" );
        const struct {
            const char *command;
            const char *onEth0, *anywhere;
        } rows[] = {
            { "ip link set eth0 down", "10.1.0.1 of eth0 on eth0 down", "10.1.0.1 of eth0 on eth0 down" },
            { "ip link set eth0 up", "10.1.0.1 of eth0 on eth0 up", "10.1.0.1 of eth0 on eth0 up" },
            { "ip addr add 10.0.0.1/24 dev eth0", "10.1.0.1 of eth0 on eth0 up", "10.1.0.1 of eth0 on eth0 up" },
            { "ip addr del 10.1.0.1/16 dev eth0", "10.0.0.1 of eth0 on eth0 up", "10.0.0.1 of eth0 on eth0 up" },
            { "ip addr add 10.0.0.1/24 dev eth1", "10.0.0.1 of eth0 on eth0 eth1 up",
              "10.0.0.1 of eth0 on eth0 eth1 up" },
            { "ip link set eth0 down", "10.0.0.1 of eth0 on eth0 eth1 down", "10.0.0.1 of eth0 on eth0 eth1 down" },
            { "ip link set eth1 up", "10.0.0.1 of eth0 on eth0 eth1 up", "10.0.0.1 of eth0 on eth0 eth1 up" },
            { "ip -4 addr flush dev eth0", "null of eth0 on eth0 down", "10.0.0.1 of eth1 on eth1 up" },
            { "ip addr add 10.1.0.1/16 dev eth0", "10.1.0.1 of eth0 on eth0 down", "10.0.0.1 of eth1 on eth1 up" },
        };
        const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
        const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
        for ( const auto &row : rows ) {
            SCOPED_TRACE( row.command );
            const std::string before = describe( onEth0 );
            pbBarrierBlock( barrier.get() );
            inStackUpdateAddSignalable( onEth0.get(), signalable.get() );
            shell( row.command );
            running.poll();
            EXPECT_EQ( describe( onEth0 ), row.onEth0 );
            EXPECT_EQ( bool( pbBarrierPassTimed( barrier.get(), 0 ) ), before != row.onEth0 );
            pbBarrierUnblock( barrier.get() );
            EXPECT_EQ( describe( anywhere ), row.anywhere );
        }
    } );
}

TEST( Stack, FollowsAnInterfaceThatGoesAndComesBack )
{
    SKIP_WITHOUT_NAMESPACES();
    const support::NetNamespace host;
    host.scenario( [] {
        RunningHost running;
        const auto stack = makeStack( "eth0" );
        EXPECT_EQ( describe( stack ), "null of null on down" );
        EXPECT_EQ( item( stack, "inStackReason" ), "no address: no interface eth0" );
        const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
        const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
        const auto after = [&]( const char *command ) { // and whether the registry has signalled
            pbBarrierBlock( barrier.get() );
            inNwInterfacesUpdateAddSignalable( signalable.get() );
            shell( command );
            running.poll();
            return bool( pbBarrierPassTimed( barrier.get(), 0 ) );
        };

        EXPECT_TRUE( after( "ip link add eth0 type bridge; ip addr add 10.1.0.1/16 dev eth0; ip link set eth0 up" ) );
        const Interface first = find( "eth0" );
        EXPECT_EQ( describe( stack ), "10.1.0.1 of eth0 on eth0 up" );
        EXPECT_TRUE( after( "ip link del eth0" ) );
        EXPECT_FALSE( find( "eth0" ) );
        EXPECT_TRUE( inNwInterfaceStateEnd( pb::adopt( inNwInterfaceState( first.get() ) ).get() ) );
        EXPECT_EQ( describe( stack ), "null of null on down" );
        EXPECT_EQ( item( stack, "inStackReason" ), "no address: no interface eth0" );
        EXPECT_TRUE( after( "ip link add eth0 type bridge; ip addr add 10.1.0.2/16 dev eth0; ip link set eth0 up" ) );
        EXPECT_NE( find( "eth0" ).get(), first.get() );
        EXPECT_EQ( describe( stack ), "10.1.0.2 of eth0 on eth0 up" );
        EXPECT_FALSE( after( "ip link set eth0 down" ) ); // only the interface itself says so
        EXPECT_EQ( describe( stack ), "10.1.0.2 of eth0 on eth0 down" );
        EXPECT_EQ( item( stack, "inStackReason" ), "interface eth0 is down" );
    } );
}

TEST( Stack, EndsRightAfterManyFlaps )
{
    SKIP_WITHOUT_NAMESPACES();
    const int flaps = std::getenv( "IN_SOAK" ) ? 10'000 : 300;
    const support::NetNamespace host;
    host.run( "ip link add eth0 type bridge; ip addr add 10.1.0.1/16 dev eth0" );
    host.scenario( [flaps] {
        RunningHost running;
        const pb::Fd control( socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
        std::vector<pb::Ref<struct inStack>> stacks = { makeStack( "eth0" ), makeStack( nullptr ), nullptr };
        for ( int flap = 1; flap <= flaps; ++flap ) {
            ifreq request = {};
            strcpy( request.ifr_name, "eth0" );
            request.ifr_flags = flap % 2 ? IFF_UP : 0;
            ASSERT_EQ( ioctl( control.get(), SIOCSIFFLAGS, &request ), 0 );
            pb___ClockAdvance( 5000 );           // what this wakes runs beside the next flaps
            stacks.back() = makeStack( "eth0" ); // and stacks come and go meanwhile
            if ( flap >= flaps - 1 ) {
                running.poll();
                const char *const expected = flap % 2 ? "10.1.0.1 of eth0 on eth0 up" : "10.1.0.1 of eth0 on eth0 down";
                for ( const auto &stack : stacks )
                    EXPECT_EQ( describe( stack ), expected );
            }
        }
        shell( "ip link del eth0" );
        pb___ClockAdvance( 5000 ); // the module ends while the interface does
    } );
}

} // namespace
