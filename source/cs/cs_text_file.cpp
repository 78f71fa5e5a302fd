// Reads the files that people write.
#include "cs/cs_text_file_internal.h"

#include "cs/cs_json_reader_internal.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_string.hpp"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace cs {
namespace {

Origin originOf( int error )
{
    switch ( error ) {
    case EACCES:
    case EPERM:
        return Origin::Permission;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case EIO:
    case EAGAIN:
    case ENOBUFS:
        return Origin::System;
    default:
        return Origin::Text;
    }
}

Unreadable failure( int error )
{
    return { std::system_category().message( error ), originOf( error ) };
}

Unreadable readFile( const char *path, std::string &bytes )
{
    const pb::Fd file( ::open( path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK ) );
    struct stat status;
    if ( !file || ::fstat( file.get(), &status ) != 0 )
        return failure( errno );
    if ( !S_ISREG( status.st_mode ) )
        return S_ISDIR( status.st_mode ) ? failure( EISDIR ) : Unreadable{ "not a regular file" };
    char block[65536];
    while ( bytes.size() <= JsonBytesMaximum ) {
        const ssize_t count = ::read( file.get(), block, sizeof block );
        if ( count < 0 && errno != EINTR )
            return failure( errno );
        if ( count == 0 )
            break;
        if ( count > 0 )
            bytes.append( block, static_cast<size_t>( count ) );
    }
    return {};
}

} // namespace

Unreadable readTextFile( const struct pbString *path, std::string &bytes )
{
    // A path with a NUL in it is no path.
    const std::unique_ptr<char, decltype( &pbBytesZFree )> pathZ( pbStringTryConvertToBytesZ( path ), pbBytesZFree );
    return pathZ ? readFile( pathZ.get(), bytes ) : failure( EINVAL );
}

Finding unreadableFile( const Unreadable &unreadable )
{
    return { .what = "cannot be read (" + unreadable.reason + ")",
             .expected = unreadable.origin == Origin::Text ? "a configuration file" : "",
             .origin = unreadable.origin };
}

} // namespace cs
