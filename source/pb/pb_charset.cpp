// Conversion of whole byte buffers to text.
#include "pb/pb_charset.h"

#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"

#include <algorithm>

namespace {

std::string_view viewOf( const struct pbBuffer *buffer )
{
    return { reinterpret_cast<const char *>( pbBufferBacking( buffer ) ),
             static_cast<size_t>( pbBufferLength( buffer ) ) };
}

pb::String convertAscii( std::string_view bytes, bool replace )
{
    const auto isAscii = []( char c ) { return static_cast<unsigned char>( c ) < 0x80; };
    if ( std::all_of( bytes.begin(), bytes.end(), isAscii ) )
        return pb::string( bytes );
    if ( !replace )
        return nullptr;
    auto text = pb::adopt( pbStringCreate() );
    for ( const char c : bytes )
        pbStringAppendChar( text.address(), isAscii( c ) ? static_cast<pbChar>( c ) : 0xFFFD );
    return text;
}

pb::String convertUtf8( std::string_view bytes, bool replace )
{
    if ( constexpr std::string_view mark = "\xEF\xBB\xBF"; bytes.starts_with( mark ) )
        bytes.remove_prefix( mark.size() );
    return replace ? pb::string( bytes )
                   : pb::adopt( pbStringTryCreateFromUtf8( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
}

} // namespace

struct pbString *pbCharsetTryConvertBufferToStringWithFlags( pbInt charset, const struct pbBuffer *buffer,
                                                             uint64_t flags )
{
    PB_ASSERT( charset == PB_CHARSET_ASCII || charset == PB_CHARSET_UTF8 );
    PB_ASSERT( buffer );
    const bool replace = flags & PB_CHARSET_FLAG_REPLACE;
    const std::string_view bytes = viewOf( buffer );
    return ( charset == PB_CHARSET_ASCII ? convertAscii( bytes, replace ) : convertUtf8( bytes, replace ) ).release();
}
