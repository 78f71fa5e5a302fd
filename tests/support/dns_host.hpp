// Name servers for scenarios in network namespaces, and the files that lead the system's resolver to them.
#ifndef SUPPORT_DNS_HOST_HPP
#define SUPPORT_DNS_HOST_HPP

#include "support/dns_wire.hpp"
#include "support/net_namespace.hpp"

#include <arpa/inet.h>
#include <fstream>
#include <optional>
#include <poll.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <vector>

namespace support {

// A folder of temporary files, in a file system that goes with the process.
inline const std::string &ownFolder()
{
    static const std::string folder = "/mnt";
    return folder;
}

inline void writeOwnFile( const std::string &name, const std::string &text )
{
    std::ofstream( ownFolder() + "/" + name ) << text;
}

// For scenarios: from now on this process asks the name server on 127.0.0.1, once, for a second at most, and nothing
// else but its own, empty, list of hosts, which a small system may not have at all.
inline void useLoopbackResolver()
{
    const auto require = []( int result, const char *what ) {
        if ( result != 0 )
            throw std::runtime_error( std::string( what ) + " failed" );
    };
    require( unshare( CLONE_NEWNS ), "unshare" );
    require( mount( "none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr ), "mount" );
    require( mount( "tmpfs", ownFolder().c_str(), "tmpfs", 0, nullptr ), "mount tmpfs" );
    writeOwnFile( "resolv.conf", "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n" );
    writeOwnFile( "nsswitch.conf", "hosts: files dns\n" );
    writeOwnFile( "hosts", "" );
    for ( const std::string name : { "resolv.conf", "nsswitch.conf", "hosts" } )
        if ( const std::string hidden = "/etc/" + name; name != "hosts" || access( hidden.c_str(), F_OK ) == 0 )
            require( mount( ( ownFolder() + "/" + name ).c_str(), hidden.c_str(), nullptr, MS_BIND, nullptr ),
                     name.c_str() );
}

// Knot DNS on 127.0.0.1 with the zones given, name and text each. One without a text has no contents. Answers when the
// constructor returns.
class KnotServer {
  public:
    static bool installed() { return access( program, X_OK ) == 0; }

    explicit KnotServer( const std::vector<std::pair<std::string, std::string>> &zones )
    {
        std::string configuration = "server:\n    rundir: " + ownFolder() + "\n    listen: 127.0.0.1@53\n"
                                    "database:\n    storage: " + ownFolder() + "\n"
                                    "log:\n  - target: stdout\n    any: info\nzone:\n";
        for ( const auto &[name, text] : zones ) {
            configuration += "  - domain: " + name + "\n    file: " + ownFolder() + "/" + name + ".zone\n";
            if ( !text.empty() )
                writeOwnFile( name + ".zone", "$TTL 60\n$ORIGIN " + name + ".\n@ SOA ns hostmaster 1 60 60 60 60\n"
                                              "@ NS ns\nns A 127.0.0.1\n" + text );
        }
        writeOwnFile( "knot.conf", configuration );
        int ends[2];
        if ( pipe( ends ) != 0 )
            throw std::runtime_error( "pipe failed" );
        const pb::Fd output( ends[0] );
        server_.emplace( [&] {
            dup2( ends[1], 1 );
            execl( program, program, "-c", ( ownFolder() + "/knot.conf" ).c_str(), nullptr );
            _exit( 127 );
        } );
        close( ends[1] );
        std::string log;
        for ( char piece[4096]; log.find( "server started" ) == std::string::npos; ) {
            const ssize_t count = read( output.get(), piece, sizeof piece );
            if ( count <= 0 )
                throw std::runtime_error( "knotd did not start:\n" + log );
            log.append( piece, static_cast<size_t>( count ) );
        }
    }

  private:
    static constexpr const char *program = "/usr/sbin/knotd";
    std::optional<Child> server_;
};

// A name server on 127.0.0.1 by the test's own rules: what it answers to a query, nothing when it stays silent.
class HandmadeServer {
  public:
    using Rules = std::function<std::optional<std::string>( const std::string &query, bool tcp )>;

    explicit HandmadeServer( const Rules &rules )
        : udp_( open( SOCK_DGRAM ) ), tcp_( open( SOCK_STREAM ) ), server_( [this, &rules] { serve( rules ); } )
    {
    }

  private:
    static pb::Fd open( int type )
    {
        pb::Fd socket( ::socket( AF_INET, type | SOCK_CLOEXEC, 0 ) );
        sockaddr_in address{ .sin_family = AF_INET, .sin_port = htons( 53 ), .sin_addr = {}, .sin_zero = {} };
        address.sin_addr.s_addr = htonl( INADDR_LOOPBACK );
        const int on = 1;
        setsockopt( socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on );
        if ( bind( socket.get(), reinterpret_cast<sockaddr *>( &address ), sizeof address ) != 0 ||
             ( type == SOCK_STREAM && listen( socket.get(), 100 ) != 0 ) )
            throw std::runtime_error( "cannot bind port 53" );
        return socket;
    }

    [[noreturn]] void serve( const Rules &rules ) const
    {
        for ( ;; ) {
            pollfd fds[] = { { udp_.get(), POLLIN, 0 }, { tcp_.get(), POLLIN, 0 } };
            (void)poll( fds, 2, -1 );
            if ( fds[0].revents )
                answerDatagram( rules );
            if ( fds[1].revents )
                answerConnection( rules );
        }
    }
    void answerDatagram( const Rules &rules ) const
    {
        char query[4096];
        sockaddr_in peer;
        socklen_t length = sizeof peer;
        const ssize_t count =
            recvfrom( udp_.get(), query, sizeof query, 0, reinterpret_cast<sockaddr *>( &peer ), &length );
        if ( const auto answer = rules( std::string( query, static_cast<size_t>( count ) ), false ) )
            (void)sendto( udp_.get(), answer->data(), answer->size(), 0, reinterpret_cast<sockaddr *>( &peer ),
                          length );
    }
    void answerConnection( const Rules &rules ) const
    {
        const pb::Fd peer( accept( tcp_.get(), nullptr, nullptr ) );
        const auto number = []( const std::string &bytes ) {
            return size_t( static_cast<unsigned char>( bytes[0] ) ) << 8 | static_cast<unsigned char>( bytes[1] );
        };
        std::string queries; // each behind its length; addresses of both versions are asked for in one connection
        char piece[4096];
        for ( ssize_t count; ( count = read( peer.get(), piece, sizeof piece ) ) > 0; ) {
            queries.append( piece, static_cast<size_t>( count ) );
            while ( queries.size() >= 2 && queries.size() >= 2 + number( queries ) ) {
                if ( const auto answer = rules( queries.substr( 2, number( queries ) ), true ) ) {
                    const std::string framed = dns16( answer->size() ) + *answer;
                    (void)send( peer.get(), framed.data(), framed.size(), MSG_NOSIGNAL );
                }
                queries.erase( 0, 2 + number( queries ) );
            }
        }
    }

    const pb::Fd udp_, tcp_;
    Child server_;
};

} // namespace support

#endif
