// pbString: folded case, and text as UTF-8 bytes.
#include "pb/pb_buffer.h"
#include "pb/pb_string.h"
#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <unicase.h>

namespace {

bool isAscii( std::u32string_view text )
{
    return std::all_of( text.begin(), text.end(), []( char32_t c ) { return c < 0x80; } );
}

pb::String create( const uint32_t *chars, size_t count )
{
    return pb::adopt( pbStringCreateFromChars( chars, static_cast<pbInt>( count ) ) );
}

pb::String foldCase( std::u32string_view text )
{
    if ( isAscii( text ) ) {
        std::u32string folded( text );
        std::transform( folded.begin(), folded.end(), folded.begin(), pb::text::asciiLower );
        return create( reinterpret_cast<const uint32_t *>( folded.data() ), folded.size() );
    }
    const auto *chars = reinterpret_cast<const uint32_t *>( text.data() );
    size_t count = 0;
    const std::unique_ptr<uint32_t, void ( * )( void * )> folded(
        u32_casefold( chars, text.size(), nullptr, nullptr, nullptr, &count ), std::free );
    if ( !folded )
        throw std::bad_alloc();
    return create( folded.get(), count );
}

// What is no Unicode scalar value is written as U+FFFD.
void appendUtf8( std::string &bytes, char32_t c )
{
    if ( c < 0x80 ) {
        bytes.push_back( static_cast<char>( c ) );
        return;
    }
    uint8_t encoded[6];
    int count = u8_uctomb( encoded, c, sizeof encoded );
    if ( count < 0 )
        count = u8_uctomb( encoded, pb::text::replacement, sizeof encoded );
    bytes.append( reinterpret_cast<const char *>( encoded ), static_cast<size_t>( count ) );
}

} // namespace

std::string pb::utf8( const struct pbString *string )
{
    if ( !string )
        return "null";
    std::string bytes;
    bytes.reserve( static_cast<size_t>( pbStringLength( string ) ) );
    for ( const char32_t c : pb::view( string ) )
        appendUtf8( bytes, c );
    return bytes;
}

extern "C" {

struct pbString *pbStringToCaseFold( const struct pbString *string )
{
    PB_ASSERT( string );
    return foldCase( pb::view( string ) ).release();
}

pbBool pbStringEqualsCaseFold( const struct pbString *a, const struct pbString *b )
{
    PB_ASSERT( a );
    PB_ASSERT( b );
    const std::u32string_view left = pb::view( a );
    const std::u32string_view right = pb::view( b );
    if ( isAscii( left ) && isAscii( right ) )
        return std::equal( left.begin(), left.end(), right.begin(), right.end(), []( char32_t c, char32_t d ) {
            return pb::text::asciiLower( c ) == pb::text::asciiLower( d );
        } );
    return pb::view( foldCase( left ).get() ) == pb::view( foldCase( right ).get() );
}

struct pbBuffer *pbStringToUtf8( const struct pbString *string )
{
    PB_ASSERT( string );
    const std::string bytes = pb::utf8( string );
    return pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) );
}

char *pbStringTryConvertToBytesZ( const struct pbString *string )
{
    PB_ASSERT( string );
    const std::string bytes = pb::utf8( string );
    if ( bytes.find( '\0' ) != bytes.npos )
        return nullptr;
    char *copy = static_cast<char *>( std::malloc( bytes.size() + 1 ) );
    if ( !copy )
        throw std::bad_alloc();
    std::memcpy( copy, bytes.c_str(), bytes.size() + 1 );
    return copy;
}

void pbBytesZFree( char *bytes ) { std::free( bytes ); }

} // extern "C"
