// AttachSocket: the listening socket of a host and the lock beside it.
#include "inctl/attach_socket.hpp"

#include "inctl/exit_code.hpp"
#include "inctl/run_directory.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace inctl {
namespace {

constexpr int waitingClients = 128;

[[noreturn]] void refuse( const std::string &what )
{
    const Exit exit = errno == EACCES || errno == EPERM || errno == EROFS ? Exit::Permission : Exit::System;
    throw Failure{ exit, fmt::format( "{}: {}", what, std::strerror( errno ) ) };
}

// Who holds the lock wrote its number there; what cannot be read is left out.
std::string holder( int lock )
{
    char text[32];
    const ssize_t length = pread( lock, text, sizeof text, 0 );
    const std::string_view digits( text, length > 0 ? static_cast<size_t>( length ) : 0 );
    const size_t end = digits.find_first_not_of( "0123456789" );
    return end == 0 || end == digits.npos ? "" : fmt::format( " (process {})", digits.substr( 0, end ) );
}

// A host that ends removes its lock: one that waited meanwhile may hold a file that no longer has the name.
bool hasName( int lock, const std::string &path )
{
    struct stat held {
    }, named{};
    return fstat( lock, &held ) == 0 && lstat( path.c_str(), &named ) == 0 && held.st_ino == named.st_ino &&
           held.st_dev == named.st_dev;
}

// Empty, or with the number of a process and no more: what a host that was killed may leave.
bool isLock( int file )
{
    char bytes[32];
    const ssize_t length = pread( file, bytes, sizeof bytes, 0 );
    if ( length <= 0 )
        return length == 0;
    const std::string_view text( bytes, static_cast<size_t>( length ) );
    return text.size() < sizeof bytes && text.find_first_not_of( "0123456789" ) == text.size() - 1 && text.back() == '\n';
}

// Somebody listens at the address, without a lock of ours: another program.
bool isServed( const sockaddr_un &address )
{
    const pb::Fd probe( socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 ) );
    return probe && ( connect( probe.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ) == 0 ||
                      errno == EAGAIN );
}

} // namespace

sockaddr_un socketAddress( const std::string &path )
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if ( path.size() >= sizeof address.sun_path )
        throw Failure{ Exit::Usage,
                       fmt::format( "the socket {} cannot be used: its path has {} bytes, at most {} are possible",
                                    path, path.size(), sizeof address.sun_path - 1 ) };
    std::memcpy( address.sun_path, path.c_str(), path.size() );
    return address;
}

AttachSocket::AttachSocket( const AttachChoice &choice, const std::string &file )
    : name_( choice.name.empty() ? hostName( choice.socket.empty() ? file : choice.socket ) : choice.name )
{
    if ( choice.socket.empty() ) {
        const std::string directory = runDirectory();
        requireRunDirectory( directory );
        path_ = directory + "/" + name_ + ".sock";
    }
    else
        path_ = choice.socket;
    lockPath_ = ( path_.ends_with( ".sock" ) ? path_.substr( 0, path_.size() - 5 ) : path_ ) + ".lock";
    lock_ = takeLock();
    try {
        listening_ = listen();
    } catch ( const Failure & ) {
        (void)unlink( lockPath_.c_str() ); // under the lock; nobody is to find what never was a host's
        throw;
    }
}

AttachSocket::~AttachSocket()
{
    // Under the lock, so that nobody else's go; what is left over the next host replaces.
    (void)unlink( path_.c_str() );
    (void)unlink( lockPath_.c_str() );
}

pb::Fd AttachSocket::takeLock() const
{
    for ( ;; ) {
        pb::Fd lock( open( lockPath_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600 ) );
        if ( !lock )
            refuse( lockPath_ );
        if ( flock( lock.get(), LOCK_EX | LOCK_NB ) != 0 ) {
            if ( errno != EWOULDBLOCK )
                refuse( lockPath_ );
            throw Failure{ Exit::System,
                           fmt::format( "a host named {} runs already{}; --name gives this one another name", name_,
                                        holder( lock.get() ) ) };
        }
        if ( !hasName( lock.get(), lockPath_ ) )
            continue;
        if ( !isLock( lock.get() ) )
            throw Failure{ Exit::System,
                           fmt::format( "{} is there already and is no lock of a host; --socket gives the socket "
                                        "another name", lockPath_ ) };
        const std::string number = fmt::format( "{}\n", getpid() );
        // For people; a full disk takes away the number and nothing else.
        (void)!ftruncate( lock.get(), 0 );
        (void)!pwrite( lock.get(), number.data(), number.size(), 0 );
        return lock;
    }
}

pb::Fd AttachSocket::listen() const
{
    const sockaddr_un address = socketAddress( path_ );
    struct stat there {};
    if ( lstat( path_.c_str(), &there ) == 0 ) {
        if ( !S_ISSOCK( there.st_mode ) )
            throw Failure{ Exit::System, fmt::format( "{} is there already and is no socket", path_ ) };
        if ( isServed( address ) )
            throw Failure{ Exit::System, fmt::format( "{} is the socket of another program that runs", path_ ) };
        (void)unlink( path_.c_str() ); // of a dead host, since we have the lock; bind tells when that failed
    }
    pb::Fd listening( socket( AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0 ) );
    // Before bind, so that the socket never is there with another mode.
    if ( !listening || fchmod( listening.get(), 0600 ) != 0 ||
         bind( listening.get(), reinterpret_cast<const sockaddr *>( &address ), sizeof address ) != 0 ||
         ::listen( listening.get(), waitingClients ) != 0 )
        refuse( path_ );
    return listening;
}

} // namespace inctl
