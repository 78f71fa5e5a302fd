// Addresses and endpoints as people write them on a command line.
#include "inctl/endpoint.hpp"

#include "inctl/exit_code.hpp"

#include "pb/pb_string.hpp"

#include <charconv>
#include <fmt/format.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <optional>
#include <string_view>
#include <sys/socket.h>

namespace inctl {
namespace {

std::optional<pbInt> parsePort( std::string_view text )
{
    pbInt port = 0;
    const auto [end, error] = std::from_chars( text.data(), text.data() + text.size(), port );
    if ( error != std::errc() || end != text.data() + text.size() || !IN_UDP_PORT_OK( port ) )
        return std::nullopt;
    return port;
}

pb::Ref<struct inAddress> tryAddress( std::string_view text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text.data(), static_cast<pbInt>( text.size() ) ) );
}

pb::Ref<struct inAddress> fromSockaddr( const sockaddr *address )
{
    if ( address->sa_family == AF_INET )
        return pb::adopt( inAddressCreateV4( &reinterpret_cast<const sockaddr_in *>( address )->sin_addr ) );
    return pb::adopt( inAddressCreateV6( &reinterpret_cast<const sockaddr_in6 *>( address )->sin6_addr ) );
}

pb::Ref<struct inAddress> lookUp( const std::string &host )
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo *found = nullptr;
    const int code = getaddrinfo( host.c_str(), nullptr, &hints, &found );
    if ( code != 0 )
        throw Failure{ code == EAI_NONAME ? Exit::No : Exit::System,
                       fmt::format( "{} is no address, and looking it up gave: {}", host, gai_strerror( code ) ) };
    const std::unique_ptr<addrinfo, decltype( &freeaddrinfo )> owner( found, freeaddrinfo );
    return fromSockaddr( found->ai_addr );
}

} // namespace

pb::Ref<struct inAddress> parseAddress( const std::string &option, const std::string &text )
{
    if ( auto address = tryAddress( text ) )
        return address;
    throw Failure{ Exit::Usage, fmt::format( "{}: {} is no IP address", option, text ) };
}

pb::Ref<struct inUdpAddress> parseEndpoint( const std::string &text )
{
    const std::string_view whole( text );
    const size_t colon = whole.rfind( ':' );
    std::string_view host = whole.substr( 0, colon == whole.npos ? 0 : colon );
    const auto port = parsePort( colon == whole.npos ? whole : whole.substr( colon + 1 ) );
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if ( bracketed )
        host = host.substr( 1, host.size() - 2 );
    if ( host.empty() || ( !bracketed && host.find( ':' ) != host.npos ) )
        throw Failure{ Exit::Usage,
                       fmt::format( "{} is not HOST:PORT; an IPv6 address goes in brackets, as in [::1]:5004", text ) };
    if ( !port )
        throw Failure{ Exit::Usage, fmt::format( "{}: the port must be 1..65535", text ) };
    auto address = tryAddress( host );
    if ( bracketed && !address )
        throw Failure{ Exit::Usage, fmt::format( "{}: {} is no IPv6 address", text, host ) };
    if ( !address )
        address = lookUp( std::string( host ) );
    return pb::adopt( inUdpAddressCreate( address.get(), *port ) );
}

PortSpan parsePorts( const std::string &option, const std::string &text )
{
    const size_t dash = text.find( '-' );
    const auto first = parsePort( std::string_view( text ).substr( 0, dash ) );
    const auto last = dash == text.npos ? first : parsePort( std::string_view( text ).substr( dash + 1 ) );
    if ( !first || !last || *last < *first )
        throw Failure{ Exit::Usage, fmt::format( "{}: {} is not FIRST-LAST with ports 1..65535", option, text ) };
    return { *first, *last - *first + 1 };
}

std::string text( const pb::Ref<struct inUdpAddress> &address )
{
    return pb::utf8( pb::adopt( inUdpAddressToString( address.get() ) ) );
}

std::string text( const pb::Ref<struct inAddress> &address )
{
    return pb::utf8( pb::adopt( inAddressToString( address.get() ) ) );
}

} // namespace inctl
