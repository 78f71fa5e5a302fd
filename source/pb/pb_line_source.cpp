// pbLineSource: lines of a C stream.
#include "pb/pb_line_source.h"
#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>

PB_SORT_DECLARE( pb___sort_PB_LINE_SOURCE )

struct pbLineSource final : pb::Object<struct pbLineSource, pb___sort_PB_LINE_SOURCE> {
    struct Closer {
        void operator()( std::FILE *file ) const { (void)std::fclose( file ); } // nothing was written
    };
    std::unique_ptr<std::FILE, Closer> file;

    explicit pbLineSource( std::FILE *file ) : file( file ) {}
};

PB_OBJECT_DEFINE( pbLineSource, pb___sort_PB_LINE_SOURCE )

namespace {

// The next line without its LF; of negative length where there is none.
struct Line {
    char *bytes = nullptr;
    ssize_t length;

    explicit Line( std::FILE *file )
    {
        size_t size = 0;
        length = getline( &bytes, &size, file );
        if ( length > 0 && bytes[length - 1] == '\n' )
            --length;
    }
    ~Line() { std::free( bytes ); }
    Line( const Line & ) = delete;
    Line &operator=( const Line & ) = delete;
};

} // namespace

extern "C" {

struct pbLineSource *pbLineSourceTryOpenFileCstr( const char *path )
{
    PB_ASSERT( path );
    std::FILE *file = std::fopen( path, "re" ); // "e": close on exec
    return file ? new pbLineSource( file ) : nullptr;
}

struct pbString *pbLineSourceTryReadLine( struct pbLineSource *source )
{
    PB_ASSERT( source );
    const Line line( source->file.get() );
    return line.length < 0 ? nullptr : pbStringCreateFromCstr( line.bytes, line.length );
}

struct pbBuffer *pbLineSourceTryReadLineBytes( struct pbLineSource *source )
{
    PB_ASSERT( source );
    const Line line( source->file.get() );
    return line.length < 0 ? nullptr : pbBufferCreateFromBytes( line.bytes, line.length );
}

} // extern "C"
