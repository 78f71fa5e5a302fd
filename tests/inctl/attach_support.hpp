// A running configuration with a board, and clients of its socket that do as the test says, for tests of attaching.
#ifndef INCTL_ATTACH_SUPPORT_HPP
#define INCTL_ATTACH_SUPPORT_HPP

#include "inctl/attach_server.hpp"
#include "inctl/configuration.hpp"
#include "inctl/run_board.hpp"

#include "cs/cs_json.h"
#include "pb/pb_fd.hpp"
#include "support/module_host.hpp"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/socket.h>

namespace test {

inline const std::string configurationText = R"({"objects": {
    "loop": {"sort": "IN_STACK", "config": {"interface": "lo", "addressVersion": "IN_ADDRESS_VERSION_4"}},
    "active": {"sort": "CS_CONDITION", "config": {"value": true}},
    "peers": {"sort": "IN_FILTER", "config": {"entries": [
        {"host": "192.0.2.0", "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS", "addressMatchingBits": 24}]}},
    "voice": {"sort": "IN_QOS_STACK"}}})";

// The run directory of the test, gone with it.
class RunDirectory {
  public:
    RunDirectory()
    {
        char name[] = "/tmp/inctl-test-XXXXXX";
        path = mkdtemp( name );
        setenv( "RUNTIME_DIRECTORY", path.c_str(), 1 );
    }
    ~RunDirectory() { std::filesystem::remove_all( path ); }
    RunDirectory( const RunDirectory & ) = delete;
    RunDirectory &operator=( const RunDirectory & ) = delete;

    std::string path;
};

// A host in this process.
struct Running {
    RunDirectory directory;
    support::ModuleHost modules;
    inctl::Configuration configuration;
    inctl::RunBoard board;
    std::optional<inctl::AttachServer> server;

    explicit Running( const std::string &text = configurationText ) : configuration( text, "test.json" )
    {
        configuration.start();
        server.emplace( inctl::AttachChoice{ .name = "test" }, configuration, board );
    }
    std::string socket() const { return directory.path + "/test.sock"; }
};

// A client that waits for what it expects as long as the test may take.
class Peer {
  public:
    explicit Peer( const std::string &path ) : connection_( ::socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0 ) )
    {
        const sockaddr_un address = inctl::socketAddress( path );
        connected = connect( connection_.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ) == 0;
    }

    bool send( const std::string &bytes ) const
    {
        return ::send( connection_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL ) ==
               static_cast<ssize_t>( bytes.size() );
    }
    // What is there now is enough.
    void sendWithoutWaiting( const std::string &bytes ) const
    {
        (void)!::send( connection_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT );
    }
    // The next line; nothing at the end.
    std::optional<std::string> line()
    {
        for ( size_t end; ( end = input_.find( '\n' ) ) == input_.npos; ) {
            char bytes[4096];
            const ssize_t count = recv( connection_.get(), bytes, sizeof bytes, 0 );
            if ( count <= 0 )
                return std::nullopt;
            input_.append( bytes, static_cast<size_t>( count ) );
        }
        const size_t end = input_.find( '\n' );
        std::string line = input_.substr( 0, end );
        input_.erase( 0, end + 1 );
        return line;
    }
    // Lines up to one that holds the text; that one, or at the end what came before.
    std::string lineWith( const std::string &text )
    {
        std::string seen;
        while ( auto next = line() ) {
            if ( next->find( text ) != next->npos )
                return *next;
            seen += *next + "\n";
        }
        return "(no " + text + " in)\n" + seen;
    }
    std::string ask( const std::string &request )
    {
        send( request + "\n" );
        return line().value_or( "(closed)" );
    }

    bool connected;

  private:
    pb::Fd connection_;
    std::string input_;
};

// One that has been greeted.
inline Peer greeted( const std::string &path )
{
    Peer peer( path );
    peer.lineWith( "\"hello\"" );
    return peer;
}

} // namespace test

#endif
