// Whole-file reading.
#include "pb/pb_file.h"
#include "pb/pb_buffer.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_string.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>

extern "C" {

struct pbBuffer *pbFileTryReadAll( const struct pbString *path )
{
    PB_ASSERT( path );
    const std::unique_ptr<char, decltype( &pbBytesZFree )> bytes( pbStringTryConvertToBytesZ( path ), pbBytesZFree );
    return bytes ? pbFileTryReadAllCstr( bytes.get() ) : nullptr;
}

struct pbBuffer *pbFileTryReadAllCstr( const char *path )
{
    PB_ASSERT( path );
    const pb::Fd file( open( path, O_RDONLY | O_CLOEXEC ) );
    if ( !file )
        return nullptr;
    auto content = pb::adopt( pbBufferCreate() );
    std::array<uint8_t, 16384> piece;
    for ( ;; ) {
        const ssize_t count = read( file.get(), piece.data(), piece.size() );
        if ( count == 0 )
            return content.release();
        if ( count > 0 )
            pbBufferAppendBytes( content.address(), piece.data(), count );
        else if ( errno != EINTR )
            return nullptr;
    }
}

} // extern "C"
