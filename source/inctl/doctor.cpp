// What is looked at on a host: each subject is tried or read where it shows, and is a function of its own.
#include "inctl/doctor.hpp"

#include "inctl/items.hpp"

#include "in/base/in_address.h"
#include "in/dns/in_system_dns_servers.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_string.hpp"

#include <fmt/format.h>
#include <linux/capability.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace inctl {
namespace {

constexpr pbInt channels = 16384; // that the library's table holds
constexpr pbInt otherDescriptors = 256;

std::string firstLine( const char *path )
{
    std::ifstream file( path );
    std::string line;
    std::getline( file, line );
    return line;
}

std::optional<pbInt> number( const char *path )
{
    std::ifstream file( path );
    pbInt value = 0;
    if ( file >> value )
        return value;
    return std::nullopt;
}

bool hasCapability( int capability )
{
    std::ifstream file( "/proc/self/status" );
    for ( std::string line; std::getline( file, line ); )
        if ( line.starts_with( "CapEff:" ) )
            return std::strtoull( line.c_str() + 7, nullptr, 16 ) >> capability & 1;
    return false;
}

Finding capability( const char *name, int capability, const char *use )
{
    if ( hasCapability( capability ) )
        return { name, State::Good, std::string( "this process has it: " ) + use, "" };
    return { name, State::Bad, fmt::format( "this process lacks it, which is needed: {}", use ),
             fmt::format( "run as root, or in the unit file: AmbientCapabilities={}", name ) };
}

Finding networkAdministration()
{
    return capability( "CAP_NET_ADMIN", CAP_NET_ADMIN,
                       "to set the status and addresses of interfaces, and priorities above 6" );
}

Finding rawPackets()
{
    return capability( "CAP_NET_RAW", CAP_NET_RAW, "to announce a new IPv4 address on its link (gratuitous ARP)" );
}

Finding lowPorts()
{
    const pbInt first = number( "/proc/sys/net/ipv4/ip_unprivileged_port_start" ).value_or( 1024 );
    const std::string detail = fmt::format( "ports below {}", first );
    if ( hasCapability( CAP_NET_BIND_SERVICE ) || first == 0 )
        return { "low ports", State::Good, detail + " can be opened", "" };
    return { "low ports", State::Note, detail + " cannot be opened",
             "if one is wanted: CAP_NET_BIND_SERVICE, or lower net.ipv4.ip_unprivileged_port_start" };
}

// A channel sets the priority and goes on when it is refused.
Finding socketPriority()
{
    const pb::Fd fd( ::socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
    const int highest = 7;
    if ( fd && ::setsockopt( fd.get(), SOL_SOCKET, SO_PRIORITY, &highest, sizeof highest ) == 0 )
        return { "socket priority", State::Good, "every layer2Pcp can be set as SO_PRIORITY", "" };
    return { "socket priority", State::Bad,
             fmt::format( "SO_PRIORITY 7 is refused ({}): a layer2Pcp of IN_QOS_LAYER2_PCP_NETWORK_CONTROL is silently "
                          "not set",
                          std::system_category().message( errno ) ),
             "give the process CAP_NET_ADMIN, or use a layer2Pcp up to IN_QOS_LAYER2_PCP_INTERNETWORK_CONTROL" };
}

// Linux compares the prefix length before it deletes an IPv6 address (net/ipv6/addrconf.c, inet6_addr_del).
Finding ipv6Removal()
{
    if ( ::access( "/proc/net/if_inet6", F_OK ) != 0 )
        return { "IPv6", State::Note, "this host has none: nothing binds to an IPv6 address",
                 "if it is wanted: net.ipv6.conf.all.disable_ipv6=0, or boot without ipv6.disable=1" };
    return { "IPv6 removal", State::Note,
             "the kernel keeps an IPv6 address that was added with a prefix length below 128 when an interface stack "
             "lets go of it",
             "give IN_NW_STACK a layer3Network of /128, and remove what is left behind with: ip -6 address del" };
}

Finding program( const char *name, const char *package )
{
    const char *variable = std::getenv( "PATH" );
    const std::string path = variable ? variable : "/usr/bin:/bin";
    for ( size_t begin = 0; begin <= path.size(); ) {
        const size_t end = std::min( path.find( ':', begin ), path.size() );
        const std::string file = path.substr( begin, end - begin ) + "/" + name;
        if ( ::access( file.c_str(), X_OK ) == 0 )
            return { name, State::Good, "is " + file, "" };
        begin = end + 1;
    }
    return { name, State::Bad, "is not in PATH: the link address of a peer is not found",
             fmt::format( "install it (Debian: apt-get install {})", package ) };
}

Finding pingProgram()
{
    return program( "ping", "iputils-ping" );
}

Finding ipProgram()
{
    return program( "ip", "iproute2" );
}

Finding resolver()
{
    std::string text;
    for ( const auto &server : items( pb::adopt( inSystemEnumerateDnsServers() ), inAddressFrom ) )
        text += ( text.empty() ? "asks " : ", " ) + pb::utf8( pb::adopt( inAddressToString( server.get() ) ) );
    if ( !text.empty() )
        return { "resolver", State::Good, text, "" };
    return { "resolver", State::Bad, "no DNS server is configured: names are not found, but for those in /etc/hosts",
             "put \"nameserver ADDRESS\" into /etc/resolv.conf" };
}

Finding ephemeralPorts()
{
    std::ifstream file( "/proc/sys/net/ipv4/ip_local_port_range" );
    pbInt first = 0, last = 0;
    if ( !( file >> first >> last ) )
        return { "ephemeral ports", State::Note, "net.ipv4.ip_local_port_range cannot be read", "" };
    const std::string reserved = firstLine( "/proc/sys/net/ipv4/ip_local_reserved_ports" );
    return { "ephemeral ports", State::Good,
             fmt::format( "{}..{}, given to whoever names no port{}", first, last,
                          reserved.empty() ? "" : "; never: " + reserved ),
             "" };
}

// Channels take the default buffers; a burst that does not fit is dropped by the kernel without a word.
Finding buffers()
{
    constexpr pbInt usual = 212992; // of a Linux kernel with pages of 4 KiB
    const pbInt receive = number( "/proc/sys/net/core/rmem_default" ).value_or( 0 );
    const pbInt send = number( "/proc/sys/net/core/wmem_default" ).value_or( 0 );
    const pbInt most = number( "/proc/sys/net/core/rmem_max" ).value_or( 0 );
    const std::string detail =
        fmt::format( "{} bytes to receive (at most {}), {} to send, for each channel", receive, most, send );
    if ( receive >= usual && send >= usual )
        return { "socket buffers", State::Good, detail, "" };
    return { "socket buffers", State::Bad, detail + ": bursts are dropped early",
             fmt::format( "sysctl net.core.rmem_default={} net.core.wmem_default={}", usual, usual ) };
}

Finding descriptors()
{
    rlimit limit{};
    if ( ::getrlimit( RLIMIT_NOFILE, &limit ) != 0 )
        return { "descriptors", State::Note, "RLIMIT_NOFILE cannot be read", "" };
    const std::string detail = limit.rlim_cur == RLIM_INFINITY ? "without limit" : fmt::format( "{}", limit.rlim_cur );
    if ( limit.rlim_cur >= static_cast<rlim_t>( channels + otherDescriptors ) )
        return { "descriptors", State::Good, detail + fmt::format( ", enough for {} channels", channels ), "" };
    return { "descriptors", State::Bad, detail + fmt::format( ", too few for {} channels, one each", channels ),
             fmt::format( "ulimit -n {}, or in the unit file: LimitNOFILE={}", 2 * channels, 2 * channels ) };
}

constexpr Finding ( *subjects[] )() = { networkAdministration, rawPackets, lowPorts,       socketPriority, ipv6Removal,
                                        pingProgram,           ipProgram,  resolver,       ephemeralPorts, buffers,
                                        descriptors };

} // namespace

std::vector<Finding> examineHost()
{
    std::vector<Finding> findings;
    std::transform( std::begin( subjects ), std::end( subjects ), std::back_inserter( findings ),
                    []( Finding ( *subject )() ) { return subject(); } );
    return findings;
}

} // namespace inctl
