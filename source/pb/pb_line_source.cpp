// pbLineSource: lines of a C stream.
#include "pb/pb_line_source.h"
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
    char *text = nullptr;
    size_t size = 0;
    ssize_t length = getline( &text, &size, source->file.get() );
    const std::unique_ptr<char, decltype( &std::free )> owner( text, std::free );
    if ( length < 0 )
        return nullptr;
    if ( length > 0 && text[length - 1] == '\n' )
        --length;
    return pbStringCreateFromCstr( text, length );
}

} // extern "C"
