// Writes a temporary file beside the old one, syncs it, and renames it over the old one.
#include "cs/cs_saved_file_internal.h"

#include "pb/pb_fd.hpp"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <signal.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace cs {
namespace {

std::string failure( const char *step, int error )
{
    return std::string( step ) + ": " + std::system_category().message( error );
}

// A write beyond RLIMIT_FSIZE fails with EFBIG and sends SIGXFSZ to its thread, which would end the process. Held back
// and taken away again, unless the program had it pending already.
class FileSizeSignalBlocked {
public:
    FileSizeSignalBlocked()
    {
        sigset_t pending;
        sigemptyset( &signal_ );
        sigaddset( &signal_, SIGXFSZ );
        sigpending( &pending );
        wasPending_ = sigismember( &pending, SIGXFSZ ) == 1;
        pthread_sigmask( SIG_BLOCK, &signal_, &before_ );
    }
    ~FileSizeSignalBlocked()
    {
        const timespec now = {};
        while ( !wasPending_ && sigtimedwait( &signal_, nullptr, &now ) < 0 && errno == EINTR )
            ;
        pthread_sigmask( SIG_SETMASK, &before_, nullptr );
    }
    FileSizeSignalBlocked( const FileSizeSignalBlocked & ) = delete;
    FileSizeSignalBlocked &operator=( const FileSizeSignalBlocked & ) = delete;

private:
    sigset_t signal_, before_;
    bool wasPending_;
};

class SavedFile {
public:
    Saved save( const std::string &path, std::string_view bytes )
    {
        const bool renamed = open( path ) && sweep() && create() && keepOwnerAndMode() && write( bytes ) && rename();
        if ( !renamed && temporary_ )
            (void)::unlinkat( directory_.get(), temporaryName_.c_str(), 0 ); // left behind, it is swept up next time
        if ( renamed )
            (void)syncDirectory(); // its reason is told
        return { renamed, problem_, permitted_ };
    }

private:
    bool fail( const char *step )
    {
        problem_ = failure( step, errno );
        permitted_ = errno != EACCES && errno != EPERM && errno != EROFS;
        return false;
    }

    // The file itself, behind symbolic links, or where a new one would be.
    bool open( const std::string &path )
    {
        const std::unique_ptr<char, decltype( &std::free )> real( ::realpath( path.c_str(), nullptr ), std::free );
        struct stat status;
        if ( !real && ( errno != ENOENT || ::lstat( path.c_str(), &status ) == 0 ) )
            return fail( "finding the file" ); // also a symbolic link to nothing
        const std::string target = real ? real.get() : path;
        const size_t slash = target.rfind( '/' );
        name_ = target.substr( slash + 1 ); // of no slash, too
        const std::string directory = slash == target.npos ? "." : target.substr( 0, slash + 1 );
        directory_ = pb::Fd( ::open( directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC ) );
        return directory_ || fail( "opening its directory" );
    }

    // ".NAME.cs-save-": NAME cut, so that six more characters still make a name of at most NAME_MAX bytes.
    std::string prefix() const { return "." + name_.substr( 0, NAME_MAX - 32 ) + ".cs-save-"; }

    // A temporary file is locked as long as its process lives: one that can be locked was left behind.
    bool sweep()
    {
        const std::string prefix = this->prefix();
        const std::unique_ptr<DIR, int ( * )( DIR * )> entries(
            ::fdopendir( ::openat( directory_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC ) ), ::closedir );
        while ( const dirent *entry = entries ? ::readdir( entries.get() ) : nullptr ) {
            const std::string name = entry->d_name;
            if ( name.size() != prefix.size() + RandomLength || !name.starts_with( prefix ) )
                continue;
            const pb::Fd left(
                ::openat( directory_.get(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK ) );
            if ( left && ::flock( left.get(), LOCK_EX | LOCK_NB ) == 0 )
                (void)::unlinkat( directory_.get(), name.c_str(), 0 ); // somebody else's: left where it is
        }
        return true;
    }

    bool create()
    {
        for ( int attempt = 0; attempt < 100; ++attempt ) {
            temporaryName_ = prefix() + randomText();
            temporary_ = pb::Fd( ::openat( directory_.get(), temporaryName_.c_str(),
                                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600 ) );
            if ( !temporary_ && errno != EEXIST )
                return fail( "creating a file beside it" );
            // Before it was locked another process may have swept it up, or be about to. File systems without locks
            // have no sweeping either.
            struct stat status;
            if ( temporary_ && ( ::flock( temporary_.get(), LOCK_EX | LOCK_NB ) == 0 || errno != EWOULDBLOCK ) &&
                 ::fstat( temporary_.get(), &status ) == 0 && status.st_nlink > 0 )
                return true;
        }
        errno = EBUSY;
        return fail( "creating a file beside it" );
    }
    static std::string randomText()
    {
        unsigned char bytes[RandomLength];
        if ( ::getrandom( bytes, sizeof bytes, 0 ) != sizeof bytes ) // so few bytes come whole
            return std::string( RandomLength, '0' );
        std::string text;
        for ( const unsigned char byte : bytes )
            text += "abcdefghijklmnopqrstuvwxyz012345"[byte % 32];
        return text;
    }

    bool keepOwnerAndMode()
    {
        struct stat old, now;
        if ( ::fstatat( directory_.get(), name_.c_str(), &old, AT_SYMLINK_NOFOLLOW ) != 0 )
            return errno == ENOENT || fail( "finding the file" );
        if ( !S_ISREG( old.st_mode ) ) {
            errno = EINVAL;
            return fail( "not a regular file" );
        }
        if ( ::fstat( temporary_.get(), &now ) != 0 )
            return fail( "keeping its owner" );
        if ( ( now.st_uid != old.st_uid || now.st_gid != old.st_gid ) &&
             ::fchown( temporary_.get(), old.st_uid, old.st_gid ) != 0 )
            return fail( "keeping its owner" );
        return ::fchmod( temporary_.get(), old.st_mode & 07777 ) == 0 || fail( "keeping its mode" );
    }

    bool write( std::string_view bytes )
    {
        const FileSizeSignalBlocked blocked;
        while ( !bytes.empty() ) {
            const ssize_t count = ::write( temporary_.get(), bytes.data(), bytes.size() );
            if ( count < 0 && errno != EINTR )
                return fail( "writing" );
            if ( count > 0 )
                bytes.remove_prefix( static_cast<size_t>( count ) );
        }
        return ::fsync( temporary_.get() ) == 0 || fail( "writing to the disk" );
    }
    bool rename()
    {
        return ::renameat( directory_.get(), temporaryName_.c_str(), directory_.get(), name_.c_str() ) == 0 ||
               fail( "renaming" );
    }
    bool syncDirectory()
    {
        // EINVAL: a file system whose directories need no sync.
        return ::fsync( directory_.get() ) == 0 || errno == EINVAL || fail( "writing its directory to the disk" );
    }

    static constexpr size_t RandomLength = 6;

    pb::Fd directory_, temporary_;
    std::string name_, temporaryName_;
    std::string problem_;
    bool permitted_ = true;
};

} // namespace

Saved saveFile( const std::string &path, std::string_view bytes )
{
    return SavedFile().save( path, bytes );
}

} // namespace cs
