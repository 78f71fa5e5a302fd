// pbBuffer: one block that holds header and bytes; bytes are taken from the front by moving its start.
#include "pb/pb_buffer.h"

#include "pb/pb_object.hpp"

#include <algorithm>
#include <functional>
#include <span>

PB_SORT_DECLARE( pb___sort_PB_BUFFER )

struct pbBuffer final : pb::Object<struct pbBuffer, pb___sort_PB_BUFFER> {
    const pbInt capacity; // bytes behind the header
    pbInt start = 0;      // of the content
    pbInt length = 0;
    pbInt padding = 0;    // zero bits at the end of the last byte that are not content, 0..7

    explicit pbBuffer( pbInt capacity ) noexcept : capacity( capacity ) {}
    static void operator delete( pbBuffer *buffer, std::destroying_delete_t )
    {
        const size_t size = sizeof( pbBuffer ) + static_cast<size_t>( buffer->capacity );
        buffer->~pbBuffer();
        pb___MemoryFree( buffer, size );
    }

    uint8_t *block() { return reinterpret_cast<uint8_t *>( this + 1 ); }
    uint8_t *bytes() { return block() + start; }
    const uint8_t *bytes() const { return const_cast<pbBuffer *>( this )->bytes(); }
    std::span<const uint8_t> view() const { return { bytes(), static_cast<size_t>( length ) }; }
    pbInt bits() const { return 8 * length - padding; }
    pbInt space() const { return PB_INT_MAX / 8 - length; }

    std::strong_ordering operator<=>( const pbBuffer &other ) const
    {
        const auto common = static_cast<size_t>( std::min( length, other.length ) );
        const int order = std::memcmp( bytes(), other.bytes(), common );
        return order ? order <=> 0 : bits() <=> other.bits();
    }
    bool operator==( const pbBuffer &other ) const { return ( *this <=> other ) == 0; }
};

PB_OBJECT_DEFINE( pbBuffer, pb___sort_PB_BUFFER )

namespace {

using Buffer = pb::Ref<struct pbBuffer>;

// An empty buffer with room for at least count bytes; blocks end on the allocator's granularity.
[[gnu::always_inline]] inline Buffer allocate( pbInt count )
{
    constexpr pbInt header = sizeof( pbBuffer );
    constexpr pbInt granularity = 32;
    const pbInt size = ( header + count + granularity - 1 ) / granularity * granularity;
    return pb::adopt( new ( pb___MemoryAllocate( static_cast<size_t>( size ) ) ) pbBuffer( size - header ) );
}

void replace( struct pbBuffer **buffer, Buffer by ) { pb::adopt( std::exchange( *buffer, by.release() ) ).reset(); }

// What can be appended to is the caller's own, with room for more bytes behind the content.
// Deleting from the front pays for moving the rest there, doubling pays for moving everything.
pbBuffer &reserve( struct pbBuffer **buffer, pbInt more )
{
    pbBuffer *current = *buffer;
    const pbInt length = current->length + more;
    if ( !pb::isShared( current ) && length <= current->capacity - current->start )
        return *current;
    if ( !pb::isShared( current ) && length <= current->capacity && current->length <= current->start ) {
        std::copy_n( current->bytes(), current->length, current->block() );
        current->start = 0;
        return *current;
    }
    Buffer larger = allocate( std::max( length, more ? 2 * current->length : 0 ) );
    std::copy_n( current->bytes(), current->length, larger->block() );
    larger->length = current->length;
    larger->padding = current->padding;
    replace( buffer, std::move( larger ) );
    return **buffer;
}

// Appends the first bits of bytes that are not the buffer's own.
void appendBits( struct pbBuffer **buffer, const uint8_t *bytes, pbInt bitCount )
{
    const pbInt count = bitCount / 8 + ( bitCount % 8 != 0 );
    PB_ASSERT( count <= pbBufferSpace( *buffer ) );
    pbBuffer &target = reserve( buffer, count );
    const pbInt bits = target.bits() + bitCount;
    uint8_t *end = target.bytes() + target.length;
    if ( const auto filled = 8 - target.padding; filled == 8 )
        std::copy_n( bytes, count, end );
    else
        for ( pbInt i = 0; i < count; ++i ) {
            end[i - 1] = static_cast<uint8_t>( end[i - 1] | bytes[i] >> filled );
            end[i] = static_cast<uint8_t>( bytes[i] << target.padding );
        }
    target.length = bits / 8 + ( bits % 8 != 0 );
    target.padding = 8 * target.length - bits;
    if ( target.padding ) // the last byte taken may hold more than was asked for
        target.bytes()[target.length - 1] &= static_cast<uint8_t>( 0xFF << target.padding );
}

// Appends bytes of another buffer. A range that reaches into its padded last byte takes the content of that byte only.
void appendRange( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt offset, pbInt count )
{
    const pbInt end = std::min( 8 * ( offset + count ), source->bits() );
    if ( count )
        appendBits( buffer, source->bytes() + offset, end - 8 * offset );
}

bool holds( const struct pbBuffer *buffer, const uint8_t *byte )
{
    return !std::less<>{}( byte, buffer->bytes() ) && std::less<>{}( byte, buffer->bytes() + buffer->length );
}

} // namespace

extern "C" {

struct pbBuffer *pbBufferCreate( void ) { return allocate( 0 ).release(); }

struct pbBuffer *pbBufferCreateFrom( const struct pbBuffer *source )
{
    PB_ASSERT( source );
    Buffer copy = pb::share( source );
    reserve( copy.address(), 0 );
    return copy.release();
}

struct pbBuffer *pbBufferCreateFromBytes( const void *bytes, pbInt count )
{
    PB_ASSERT( bytes || count == 0 );
    PB_ASSERT( count >= 0 && count <= PB_INT_MAX / 8 );
    Buffer buffer = allocate( count );
    buffer->length = count;
    if ( count )
        std::memcpy( buffer->block(), bytes, static_cast<size_t>( count ) );
    return buffer.release();
}

struct pbBuffer *pbBufferCreateUninitialized( pbInt count )
{
    PB_ASSERT( count >= 0 && count <= PB_INT_MAX / 8 );
    Buffer buffer = allocate( count );
    buffer->length = count;
    return buffer.release();
}

pbInt pbBufferLength( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return buffer->length;
}

pbInt pbBufferBitLength( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return buffer->bits();
}

pbInt pbBufferSpace( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return buffer->space();
}

const uint8_t *pbBufferBacking( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return buffer->bytes();
}

uint8_t *pbBufferBackingForWrite( struct pbBuffer **buffer )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    return reserve( buffer, 0 ).bytes();
}

pbInt pbBufferByteAt( const struct pbBuffer *buffer, pbInt index )
{
    PB_ASSERT( buffer );
    PB_ASSERT( index >= 0 && index < buffer->length );
    return buffer->bytes()[index];
}

void pbBufferAppendBytes( struct pbBuffer **buffer, const void *bytes, pbInt count )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( bytes || count == 0 );
    PB_ASSERT( count >= 0 && count <= ( *buffer )->space() );
    const auto *first = static_cast<const uint8_t *>( bytes );
    // Bytes of the buffer itself stay where they are while it counts as shared.
    const Buffer source = holds( *buffer, first ) ? pb::share( *buffer ) : nullptr;
    if ( count )
        appendBits( buffer, first, 8 * count );
}

void pbBufferAppend( struct pbBuffer **buffer, const struct pbBuffer *source )
{
    PB_ASSERT( source );
    pbBufferAppendInner( buffer, source, 0, source->length );
}

void pbBufferAppendInner( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt offset, pbInt count )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( source );
    PB_ASSERT( offset >= 0 && offset <= source->length );
    PB_ASSERT( count >= 0 && count <= source->length - offset );
    const Buffer held = pb::share( source ); // it may be the buffer itself, which then counts as shared
    appendRange( buffer, source, offset, count );
}

void pbBufferAppendLeading( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt count )
{
    PB_ASSERT( source );
    PB_ASSERT( count >= 0 && count <= source->length );
    pbBufferAppendInner( buffer, source, 0, count );
}

void pbBufferAppendTrailing( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt count )
{
    PB_ASSERT( source );
    PB_ASSERT( count >= 0 && count <= source->length );
    pbBufferAppendInner( buffer, source, source->length - count, count );
}

void pbBufferAppendOuter( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt offset, pbInt count )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( source );
    PB_ASSERT( offset >= 0 && offset <= source->length );
    PB_ASSERT( count >= 0 && count <= source->length - offset );
    const Buffer held = pb::share( source );
    appendRange( buffer, source, 0, offset );
    appendRange( buffer, source, offset + count, source->length - offset - count );
}

void pbBufferDelLeading( struct pbBuffer **buffer, pbInt count )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( count >= 0 && count <= ( *buffer )->length );
    if ( pb::isShared( *buffer ) ) {
        Buffer rest = pb::adopt( pbBufferCreate() );
        appendRange( rest.address(), *buffer, count, ( *buffer )->length - count );
        replace( buffer, std::move( rest ) );
        return;
    }
    pbBuffer &own = **buffer;
    own.start += count;
    own.length -= count;
    if ( own.length == 0 ) {
        own.start = 0;
        own.padding = 0;
    }
}

void pbBufferClear( struct pbBuffer **buffer )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    if ( pb::isShared( *buffer ) )
        replace( buffer, pb::adopt( pbBufferCreate() ) );
    else
        pbBufferDelLeading( buffer, ( *buffer )->length );
}

void pbBufferBitDelOuter( struct pbBuffer **buffer, pbInt bitOffset, pbInt bitCount )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( bitOffset >= 0 && bitOffset <= ( *buffer )->bits() );
    PB_ASSERT( bitCount >= 0 && bitCount <= ( *buffer )->bits() - bitOffset );
    const pbInt first = bitOffset / 8;
    const pbInt shift = bitOffset % 8;
    const uint8_t *bytes = ( *buffer )->bytes() + first;
    const pbInt available = ( *buffer )->length - first;
    const pbInt count = bitCount / 8 + ( bitCount % 8 != 0 );
    Buffer kept = allocate( count );
    for ( pbInt i = 0; i < count; ++i ) {
        const int next = i + 1 < available ? bytes[i + 1] : 0;
        kept->block()[i] = static_cast<uint8_t>( bytes[i] << shift | next >> ( 8 - shift ) );
    }
    kept->length = count;
    kept->padding = 8 * count - bitCount;
    if ( kept->padding )
        kept->block()[count - 1] &= static_cast<uint8_t>( 0xFF << kept->padding );
    replace( buffer, std::move( kept ) );
}

void pbBufferBitAppendZero( struct pbBuffer **buffer, pbInt bitCount )
{
    PB_ASSERT( buffer );
    PB_ASSERT( *buffer );
    PB_ASSERT( bitCount >= 0 && bitCount / 8 < ( *buffer )->space() );
    const pbInt bits = ( *buffer )->bits() + bitCount;
    const pbInt length = bits / 8 + ( bits % 8 != 0 );
    pbBuffer &own = reserve( buffer, length - ( *buffer )->length );
    std::fill( own.bytes() + own.length, own.bytes() + length, uint8_t{ 0 } );
    own.length = length;
    own.padding = 8 * length - bits;
}

} // extern "C"
