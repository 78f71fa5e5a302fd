// What a person should know about a stack's configuration although it is valid.
#include "in/base/in_stack_warnings_internal.h"

#include "cs/cs_nearest.hpp"
#include "cs/cs_warnings.h"
#include "in/base/in_address.h"
#include "in/base/in_flags.h"
#include "in/base/in_network.h"
#include "in/base/in_options.h"
#include "in/dns/in_dns_options_internal.h"
#include "in/nw/in_nw_address_choice.h"
#include "in/nw/in_nw_interface.h"
#include "in/nw/in_nw_interfaces.h"
#include "in/nw/in_nw_util.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <fstream>

namespace {

using Options = pb::Ref<struct inOptions>;
using Store = pb::Ref<struct pbStore>;

void add( struct csWarnings *warnings, const std::string &key, const std::string &text )
{
    csWarningsAdd( warnings, key.c_str(), pb::string( text ).get() );
}

Store storeAt( const struct pbStore *store, const char *key )
{
    return store ? pb::adopt( pbStoreStoreCstr( store, key, -1 ) ) : nullptr;
}

// An address or a network that the other options do not admit leaves nothing to choose from on any host.
void warnOfContradictions( const Options &options, struct csWarnings *warnings )
{
    const auto address = pb::adopt( inOptionsAddress( options.get() ) );
    const auto network = pb::adopt( inOptionsNetwork( options.get() ) );
    const auto tell = [&]( const char *key, const struct inAddress *of ) {
        for ( const char *excluding : in::excludingOptions( options.get(), of ) )
            if ( std::string_view( excluding ) != key )
                add( warnings, key,
                     std::string( "\"" ) + excluding + "\" admits nothing of it: the stack never has an address" );
    };
    if ( address )
        tell( "address", address.get() );
    if ( !network || address )
        return;
    const auto inside = pb::adopt( inNetworkAddress( network.get() ) );
    const auto loopback = pb::adopt( inAddressTryCreateFromString(
        pb::string( inAddressIsV4( inside.get() ) ? "127.0.0.1" : "::1" ).get() ) );
    tell( "network", inNetworkContainsAddress( network.get(), loopback.get() ) ? loopback.get() : inside.get() );
}

std::vector<std::string> interfaceNames()
{
    const auto interfaces = pb::adopt( inNwInterfacesVector() );
    std::vector<std::string> names;
    for ( pbInt i = 0; i < pbVectorLength( interfaces.get() ); ++i ) {
        const auto iface = pb::adopt( inNwInterfaceFrom( pbVectorObjAt( interfaces.get(), i ) ) );
        names.push_back( pb::utf8( pb::adopt( inNwInterfaceIdentifier( iface.get() ) ) ) );
    }
    return names;
}

// The keys that leave no candidate: those without which there would be one, or all that exclude something.
std::vector<std::string> guiltyKeys( const Store &explanation )
{
    std::vector<std::string> alone, any;
    const auto note = []( std::vector<std::string> &keys, const std::string &key ) {
        if ( std::find( keys.begin(), keys.end(), key ) == keys.end() )
            keys.push_back( key );
    };
    const Store candidates = storeAt( explanation.get(), "candidates" );
    for ( pbInt i = 0; i < pbStoreArrayLength( candidates.get() ); ++i ) {
        const Store candidate = pb::adopt( pbStoreArrayStoreAt( candidates.get(), i ) );
        const Store keys = storeAt( candidate.get(), "excludedBy" );
        const pbInt count = pbStoreArrayLength( keys.get() );
        for ( pbInt k = 0; k < count; ++k )
            note( count == 1 ? alone : any, pb::utf8( pb::adopt( pbStoreArrayValueAt( keys.get(), k ) ) ) );
    }
    return alone.empty() ? any : alone;
}

void warnOfThisHost( const Options &options, struct csWarnings *warnings )
{
    const auto wanted = pb::adopt( inOptionsInterface( options.get() ) );
    if ( wanted && !in::warnOfAbsentInterface( wanted.get(), "interface", warnings ) )
        return;
    const Store explanation = pb::adopt( inNwExplainAddressChoice( options.get(), nullptr ) );
    if ( pbStoreHasValueCstr( explanation.get(), "address", -1 ) )
        return;
    for ( const std::string &key : guiltyKeys( explanation ) )
        add( warnings, key, "admits no address that this host has now: the stack stays without one" );
}

// First and last port from which the system takes those that nobody asked for (ip(7)).
bool readEphemeralPorts( pbInt &first, pbInt &last )
{
    std::ifstream file( "/proc/sys/net/ipv4/ip_local_port_range" );
    return static_cast<bool>( file >> first >> last );
}

void warnOfPortRange( const struct pbStore *config, const std::string &key, pbBool online,
                      struct csWarnings *warnings )
{
    const Store range = storeAt( storeAt( config, key.c_str() ).get(), "portRange" );
    pbInt first = 0, count = 0;
    if ( !range || !pbStoreValueIntCstr( range.get(), &first, "firstPort", -1 ) ||
         !pbStoreValueIntCstr( range.get(), &count, "count", -1 ) )
        return;
    const pbInt last = std::min<pbInt>( first + count - 1, 65535 );
    if ( count == 0 )
        add( warnings, key + ".portRange.count", "a range of no ports: no channel opens that does not name its port" );
    else if ( first + count - 1 > 65535 )
        add( warnings, key + ".portRange.count",
             "goes beyond port 65535: only " + std::to_string( last - first + 1 ) + " ports are there" );
    pbInt firstEphemeral = 0, lastEphemeral = 0;
    if ( online && count > 0 && readEphemeralPorts( firstEphemeral, lastEphemeral ) && first <= lastEphemeral &&
         last >= firstEphemeral )
        add( warnings, key + ".portRange",
             "overlaps the ports " + std::to_string( firstEphemeral ) + ".." + std::to_string( lastEphemeral ) +
                 " that the system gives to others: set net.ipv4.ip_local_reserved_ports to " +
                 std::to_string( first ) + "-" + std::to_string( last ) );
}

} // namespace

namespace in {

bool warnOfAbsentInterface( const struct pbString *identifier, const char *key, struct csWarnings *warnings )
{
    if ( pb::adopt( inNwInterfacesInterfaceByIdentifier( identifier ) ) )
        return true;
    const std::vector<std::string> near = cs::nearestNames( pb::utf8( identifier ), interfaceNames() );
    add( warnings, key,
         "this host has no interface of that name now" +
             ( near.empty() ? std::string() : ", did you mean \"" + near[0] + "\"?" ) );
    return false;
}

} // namespace in

void in___StackWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings )
{
    const Options options = pb::adopt( inOptionsRestore( config ) );
    warnOfContradictions( options, warnings );
    in___DnsOptionsWarn( storeAt( config, "dnsOptions" ).get(), "dnsOptions", warnings );
    for ( const char *key : { "udpOptions", "tcpOptions" } )
        warnOfPortRange( config, key, online, warnings );
    if ( online )
        warnOfThisHost( options, warnings );
}
