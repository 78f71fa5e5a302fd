// Namespaces and the resolver's files.
#include "inctl/own_host.hpp"

#include "inctl/exit_code.hpp"

#include "pb/pb_fd.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace inctl {
namespace {

constexpr const char *serverProgram = "/usr/sbin/dnsmasq"; // not on the path of every user
constexpr int startMilliseconds = 5000;

bool tryWrite( const char *path, const std::string &text )
{
    const pb::Fd file( open( path, O_WRONLY | O_CLOEXEC ) );
    return file && write( file.get(), text.data(), text.size() ) == static_cast<ssize_t>( text.size() );
}

// Root inside is the user outside.
bool tryEnterNamespaces()
{
    constexpr int both = CLONE_NEWNET | CLONE_NEWNS;
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if ( unshare( both ) == 0 )
        return true;
    return unshare( CLONE_NEWUSER | both ) == 0 && tryWrite( "/proc/self/setgroups", "deny" ) &&
           tryWrite( "/proc/self/uid_map", fmt::format( "0 {} 1", user ) ) &&
           tryWrite( "/proc/self/gid_map", fmt::format( "0 {} 1", group ) );
}

bool trySetLoopbackUp()
{
    const pb::Fd control( socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 ) );
    ifreq request{};
    std::strcpy( request.ifr_name, "lo" );
    request.ifr_flags = IFF_UP;
    return control && ioctl( control.get(), SIOCSIFFLAGS, &request ) == 0;
}

// The file has no name any more when this returns: it goes with the last namespace in which it covers the other.
bool tryCover( const char *path, const std::string &text )
{
    std::string temporary = "/tmp/inctl-XXXXXX";
    const pb::Fd file( mkostemp( temporary.data(), O_CLOEXEC ) );
    if ( !file )
        return false;
    const bool covered = fchmod( file.get(), 0644 ) == 0 &&
                         write( file.get(), text.data(), text.size() ) == static_cast<ssize_t>( text.size() ) &&
                         mount( temporary.c_str(), path, nullptr, MS_BIND, nullptr ) == 0;
    (void)unlink( temporary.c_str() ); // nobody to tell, and nothing depends on it
    return covered;
}

} // namespace

std::optional<std::string> tryEnterOwnHost()
{
    if ( !tryEnterNamespaces() )
        return fmt::format( "this system permits no namespaces here ({})", std::strerror( errno ) );
    if ( !trySetLoopbackUp() )
        return fmt::format( "the loopback interface of a new host does not come up ({})", std::strerror( errno ) );
    if ( mount( "none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr ) != 0 ||
         !tryCover( "/etc/resolv.conf", "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n" ) )
        return fmt::format( "/etc/resolv.conf cannot be covered ({})", std::strerror( errno ) );
    // Without this file the C library asks name servers, too.
    if ( access( "/etc/nsswitch.conf", F_OK ) == 0 && !tryCover( "/etc/nsswitch.conf", "hosts: files dns\n" ) )
        return fmt::format( "/etc/nsswitch.conf cannot be covered ({})", std::strerror( errno ) );
    // A cache of names on the host would answer in the server's place.
    if ( access( "/run/nscd", F_OK ) == 0 && mount( "tmpfs", "/run/nscd", "tmpfs", 0, nullptr ) != 0 )
        return fmt::format( "/run/nscd cannot be covered ({})", std::strerror( errno ) );
    return std::nullopt;
}

NameServer::NameServer( const std::vector<std::string> &arguments )
{
    std::vector<std::string> all = { serverProgram, "--keep-in-foreground", "--conf-file=/dev/null", "--no-resolv",
                                     "--no-hosts", "--listen-address=127.0.0.1", "--bind-interfaces", "--pid-file=",
                                     "--user=root", "--group=", "--log-facility=-" };
    all.insert( all.end(), arguments.begin(), arguments.end() );
    std::vector<char *> pointers;
    for ( std::string &argument : all )
        pointers.push_back( argument.data() );
    pointers.push_back( nullptr );

    int ends[2];
    if ( access( serverProgram, X_OK ) != 0 )
        throw Failure{ Exit::System, fmt::format( "{} is not installed", serverProgram ) };
    if ( pipe2( ends, O_CLOEXEC ) != 0 )
        throw Failure{ Exit::System, fmt::format( "pipe: {}", std::strerror( errno ) ) };
    const pb::Fd output( ends[0] );
    pb::Fd input( ends[1] );
    const pid_t parent = getpid();
    process_ = fork();
    if ( process_ == 0 ) {
        (void)prctl( PR_SET_PDEATHSIG, SIGKILL ); // cannot fail for a signal that there is
        if ( getppid() == parent && dup2( input.get(), STDERR_FILENO ) >= 0 && dup2( input.get(), STDOUT_FILENO ) >= 0 )
            (void)execv( serverProgram, pointers.data() );
        _exit( 127 );
    }
    input = pb::Fd();
    std::string log;
    pollfd waiting{ output.get(), POLLIN, 0 };
    for ( char piece[1024]; log.find( "started" ) == log.npos; ) {
        const ssize_t count =
            poll( &waiting, 1, startMilliseconds ) > 0 ? read( output.get(), piece, sizeof piece ) : 0;
        if ( count <= 0 ) {
            this->~NameServer();
            throw Failure{ Exit::System, fmt::format( "{} does not start: {}", serverProgram, log ) };
        }
        log.append( piece, static_cast<size_t>( count ) );
    }
}

NameServer::~NameServer()
{
    if ( process_ <= 0 )
        return;
    (void)kill( process_, SIGKILL ); // it may have ended already
    (void)waitpid( process_, nullptr, 0 );
}

} // namespace inctl
