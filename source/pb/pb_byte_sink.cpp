// pbByteSink: a file or a buffer that bytes are written to.
#include "pb/pb_byte_sink.h"
#include "pb/pb_buffer.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_string.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>

PB_SORT_DECLARE( pb___sort_PB_BYTE_SINK )

struct pbByteSink final : pb::Object<struct pbByteSink, pb___sort_PB_BYTE_SINK> {
    // One of the two.
    const pb::Fd file;
    pb::Ref<struct pbBuffer> buffer;
    bool error = false;

    explicit pbByteSink( pb::Fd file ) : file( std::move( file ) ) {}
    explicit pbByteSink( pb::Ref<struct pbBuffer> buffer ) : buffer( std::move( buffer ) ) {}
};

PB_OBJECT_DEFINE( pbByteSink, pb___sort_PB_BYTE_SINK )

namespace {

bool tryWriteAll( int file, const uint8_t *bytes, pbInt count )
{
    while ( count > 0 ) {
        const ssize_t written = write( file, bytes, static_cast<size_t>( count ) );
        if ( written < 0 && errno == EINTR )
            continue;
        if ( written <= 0 )
            return false;
        bytes += written;
        count -= written;
    }
    return true;
}

} // namespace

extern "C" {

struct pbByteSink *pbByteSinkTryCreateFile( const struct pbString *path )
{
    PB_ASSERT( path );
    const std::unique_ptr<char, decltype( &pbBytesZFree )> bytes( pbStringTryConvertToBytesZ( path ), pbBytesZFree );
    if ( !bytes )
        return nullptr;
    pb::Fd file( open( bytes.get(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666 ) );
    return file ? new pbByteSink( std::move( file ) ) : nullptr;
}

struct pbByteSink *pbByteSinkCreateBuffer( void ) { return new pbByteSink( pb::adopt( pbBufferCreate() ) ); }

void pbByteSinkWrite( struct pbByteSink *sink, const void *bytes, pbInt count )
{
    PB_ASSERT( sink );
    PB_ASSERT( count >= 0 );
    PB_ASSERT( bytes || count == 0 );
    if ( sink->buffer )
        pbBufferAppendBytes( sink->buffer.address(), bytes, count );
    else if ( !sink->error )
        sink->error = !tryWriteAll( sink->file.get(), static_cast<const uint8_t *>( bytes ), count );
}

pbBool pbByteSinkError( const struct pbByteSink *sink )
{
    PB_ASSERT( sink );
    return sink->error;
}

struct pbBuffer *pbByteSinkBuffer( const struct pbByteSink *sink )
{
    PB_ASSERT( sink );
    return sink->buffer.share();
}

} // extern "C"
