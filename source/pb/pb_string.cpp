// pbString: one block that holds header and code points; a string that outgrows its block moves to a larger one.
#include "pb/pb_string.h"

#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"

#include <algorithm>
#include <bit>
#include <cwchar>

PB_SORT_DECLARE( pb___sort_PB_STRING )

struct pbString final : pb::Object<struct pbString, pb___sort_PB_STRING> {
    pbInt length = 0;
    const pbInt capacity;

    explicit pbString( pbInt capacity ) noexcept : capacity( capacity ) {}
    static void operator delete( pbString *string, std::destroying_delete_t )
    {
        const size_t size = blockSize( string->capacity );
        string->~pbString();
        pb___MemoryFree( string, size );
    }
    static size_t blockSize( pbInt capacity )
    {
        return sizeof( pbString ) + static_cast<size_t>( capacity ) * sizeof( char32_t );
    }

    char32_t *chars() { return reinterpret_cast<char32_t *>( this + 1 ); }
    const char32_t *chars() const { return reinterpret_cast<const char32_t *>( this + 1 ); }
    std::u32string_view view() const { return { chars(), static_cast<size_t>( length ) }; }

    std::strong_ordering operator<=>( const pbString &other ) const { return view() <=> other.view(); }
    bool operator==( const pbString &other ) const { return view() == other.view(); }
    pb::String toString() const { return pb::share( this ); }
};

PB_OBJECT_DEFINE( pbString, pb___sort_PB_STRING )

namespace {

constexpr pbInt longest = PB_INT_MAX / 64; // far beyond memory, so that sizes and sums of lengths cannot overflow

// An empty string with room for at least count code points; blocks end on the allocator's granularity.
[[gnu::always_inline]] inline pb::String allocate( pbInt count )
{
    PB_ASSERT( count <= longest );
    constexpr size_t granularity = 32;
    const size_t size = ( pbString::blockSize( count ) + granularity - 1 ) / granularity * granularity;
    const auto capacity = static_cast<pbInt>( ( size - sizeof( pbString ) ) / sizeof( char32_t ) );
    return pb::adopt( new ( pb___MemoryAllocate( size ) ) pbString( capacity ) );
}

pb::String create( std::u32string_view text )
{
    pb::String string = allocate( static_cast<pbInt>( text.size() ) );
    std::copy( text.begin(), text.end(), string->chars() );
    string->length = static_cast<pbInt>( text.size() );
    return string;
}

// Opens a gap of count code points of unspecified content in a string made the caller's own.
char32_t *openGap( struct pbString **string, pbInt index, pbInt count )
{
    pbString *current = *string;
    const pbInt length = current->length + count;
    if ( pb::isShared( current ) || length > current->capacity ) {
        pb::String larger = allocate( std::max( length, count ? 2 * current->length : 0 ) );
        std::copy_n( current->chars(), index, larger->chars() );
        std::copy( current->chars() + index, current->chars() + current->length, larger->chars() + index + count );
        pb::adopt( std::exchange( *string, larger.release() ) ).reset();
    }
    else {
        char32_t *gap = current->chars() + index;
        std::copy_backward( gap, current->chars() + current->length, current->chars() + length );
    }
    ( *string )->length = length;
    return ( *string )->chars() + index;
}

void insert( struct pbString **string, pbInt index, const struct pbString *text )
{
    const pb::String source = pb::share( text ); // it may be the string itself, which then counts as shared
    std::copy_n( source->chars(), source->length, openGap( string, index, source->length ) );
}

// Removes all but count code points from offset.
void keep( struct pbString **string, pbInt offset, pbInt count )
{
    pbString *current = *string;
    const char32_t *first = current->chars() + offset;
    if ( pb::isShared( current ) )
        pb::adopt( std::exchange( *string, create( { first, static_cast<size_t>( count ) } ).release() ) ).reset();
    else {
        std::copy_n( first, count, current->chars() );
        current->length = count;
    }
}

pbInt countLeadingSpace( std::u32string_view text )
{
    return std::find_if_not( text.begin(), text.end(), pb::text::isSpace ) - text.begin();
}

size_t sizeOf( const char *bytes, pbInt byteCount )
{
    return byteCount < 0 ? std::strlen( bytes ) : static_cast<size_t>( byteCount );
}

bool isAscii( const char *bytes, size_t count )
{
    uint64_t seen = 0;
    for ( ; count >= sizeof seen; bytes += sizeof seen, count -= sizeof seen ) {
        uint64_t word;
        std::memcpy( &word, bytes, sizeof word );
        seen |= word;
    }
    for ( size_t i = 0; i < count; ++i )
        seen |= static_cast<unsigned char>( bytes[i] );
    return !( seen & 0x8080808080808080u );
}

// Eight bytes at a time by interleaving with zeros, which leaves each byte as the low one of four.
void widenEight( const char *bytes, char32_t *chars )
{
    using Words __attribute__( ( vector_size( 16 ) ) ) = uint64_t;
    using Bytes __attribute__( ( vector_size( 16 ) ) ) = uint8_t;
    using Pairs __attribute__( ( vector_size( 16 ) ) ) = uint16_t;
    uint64_t word;
    std::memcpy( &word, bytes, sizeof word );
    const auto narrow = reinterpret_cast<Bytes>( Words{ word, 0 } );
    const auto pairs = reinterpret_cast<Pairs>(
        __builtin_shufflevector( narrow, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23 ) );
    const Pairs low = __builtin_shufflevector( pairs, Pairs{}, 0, 8, 1, 9, 2, 10, 3, 11 );
    const Pairs high = __builtin_shufflevector( pairs, Pairs{}, 4, 12, 5, 13, 6, 14, 7, 15 );
    std::memcpy( chars, &low, sizeof low );
    std::memcpy( chars + 4, &high, sizeof high );
}

void widen( const char *bytes, size_t count, char32_t *chars )
{
    constexpr size_t step = 8;
    if ( std::endian::native != std::endian::little || count < step ) {
        for ( size_t i = 0; i < count; ++i )
            chars[i] = static_cast<unsigned char>( bytes[i] );
        return;
    }
    for ( size_t done = 0; done + step < count; done += step )
        widenEight( bytes + done, chars + done );
    widenEight( bytes + count - step, chars + count - step ); // what it repeats comes out the same
}

// Null when strict and malformed.
pb::String createFromUtf8( const char *bytes, size_t size, bool strict )
{
    if ( isAscii( bytes, size ) )
        return pb::adopt( pb___StringCreateFromAscii( bytes, static_cast<pbInt>( size ) ) );
    pb::String string = allocate( static_cast<pbInt>( size ) ); // at most one code point for each byte
    char32_t *end = string->chars();
    pb::text::Utf8Reader reader( { bytes, size } );
    while ( !reader.atEnd() )
        *end++ = reader.next();
    if ( strict && reader.malformed() )
        return nullptr;
    string->length = end - string->chars();
    return string;
}

} // namespace

extern "C" {

struct pbString *pb___StringCreateFromAscii( const char *bytes, pbInt count )
{
    pb::String string = allocate( count );
    widen( bytes, static_cast<size_t>( count ), string->chars() );
    string->length = count;
    return string.release();
}

struct pbString *pbStringCreate( void ) { return allocate( 0 ).release(); }

struct pbString *pbStringCreateFrom( const struct pbString *source )
{
    PB_ASSERT( source );
    return create( source->view() ).release();
}

struct pbString *pbStringCreateFromCstr( const char *bytes, pbInt byteCount )
{
    PB_ASSERT( bytes || byteCount == 0 );
    PB_ASSERT( byteCount >= -1 );
    return createFromUtf8( bytes, sizeOf( bytes, byteCount ), false ).release();
}

struct pbString *pbStringTryCreateFromUtf8( const void *bytes, pbInt byteCount )
{
    PB_ASSERT( bytes || byteCount == 0 );
    PB_ASSERT( byteCount >= 0 );
    return createFromUtf8( static_cast<const char *>( bytes ), static_cast<size_t>( byteCount ), true ).release();
}

struct pbString *pbStringCreateFromChars( const pbChar *chars, pbInt count )
{
    PB_ASSERT( chars || count == 0 );
    PB_ASSERT( count >= 0 );
    pb::String string = allocate( count );
    std::copy_n( chars, count, string->chars() );
    string->length = count;
    return string.release();
}

struct pbString *pbStringCreateFromWcstr( const wchar_t *chars, pbInt count )
{
    PB_ASSERT( chars || count == 0 );
    PB_ASSERT( count >= -1 );
    const pbInt length = count < 0 ? static_cast<pbInt>( std::wcslen( chars ) ) : count;
    pb::String string = allocate( length );
    std::copy_n( chars, length, string->chars() );
    string->length = length;
    return string.release();
}

pbInt pbStringLength( const struct pbString *string )
{
    PB_ASSERT( string );
    return string->length;
}

const pbChar *pbStringBacking( const struct pbString *string )
{
    PB_ASSERT( string );
    return reinterpret_cast<const pbChar *>( string->chars() );
}

pbChar pbStringCharAt( const struct pbString *string, pbInt index )
{
    PB_ASSERT( string );
    PB_ASSERT( index >= 0 && index < string->length );
    return string->chars()[index];
}

void pbStringAppend( struct pbString **string, const struct pbString *text )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    PB_ASSERT( text );
    insert( string, ( *string )->length, text );
}

void pbStringAppendCstr( struct pbString **string, const char *bytes, pbInt byteCount )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    const pb::String text = pb::adopt( pbStringCreateFromCstr( bytes, byteCount ) );
    insert( string, ( *string )->length, text.get() );
}

void pbStringAppendChar( struct pbString **string, pbChar c )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    *openGap( string, ( *string )->length, 1 ) = c;
}

void pbStringPrepend( struct pbString **string, const struct pbString *text )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    PB_ASSERT( text );
    insert( string, 0, text );
}

void pbStringDelLeading( struct pbString **string, pbInt count )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    PB_ASSERT( count >= 0 && count <= ( *string )->length );
    keep( string, count, ( *string )->length - count );
}

void pbStringDelTrailing( struct pbString **string, pbInt count )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    PB_ASSERT( count >= 0 && count <= ( *string )->length );
    keep( string, 0, ( *string )->length - count );
}

void pbStringTrim( struct pbString **string )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    pbInt end = ( *string )->length;
    while ( end > 0 && pb::text::isSpace( ( *string )->chars()[end - 1] ) )
        --end;
    const pbInt leading = std::min( end, countLeadingSpace( ( *string )->view() ) );
    if ( end - leading < ( *string )->length )
        keep( string, leading, end - leading );
}

void pbStringTrimLeading( struct pbString **string )
{
    PB_ASSERT( string );
    PB_ASSERT( *string );
    if ( const pbInt leading = countLeadingSpace( ( *string )->view() ) )
        keep( string, leading, ( *string )->length - leading );
}

} // extern "C"
