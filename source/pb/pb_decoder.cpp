// pbDecoder: a buffer and the position up to which it was read.
#include "pb/pb_decoder.h"

#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( pb___sort_PB_DECODER )

struct pbDecoder final : pb::Object<struct pbDecoder, pb___sort_PB_DECODER> {
    const pb::Ref<struct pbBuffer> buffer;
    pbInt offset = 0;

    explicit pbDecoder( const struct pbBuffer *source ) : buffer( pb::share( source ) ) {}
    pbInt remaining() const { return pbBufferLength( buffer.get() ) - offset; }
    const uint8_t *bytes() const { return pbBufferBacking( buffer.get() ) + offset; }
};

PB_OBJECT_DEFINE( pbDecoder, pb___sort_PB_DECODER )

extern "C" {

struct pbDecoder *pbDecoderCreate( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return new pbDecoder( buffer );
}

pbInt pbDecoderRemaining( const struct pbDecoder *decoder )
{
    PB_ASSERT( decoder );
    return decoder->remaining();
}

pbInt pbDecoderOffset( const struct pbDecoder *decoder )
{
    PB_ASSERT( decoder );
    return decoder->offset;
}

pbBool pbDecoderTryReadByte( struct pbDecoder *decoder, uint8_t *byte )
{
    return pbDecoderTryReadBytes( decoder, byte, 1 );
}

pbBool pbDecoderTryReadBytes( struct pbDecoder *decoder, uint8_t *bytes, pbInt count )
{
    PB_ASSERT( decoder );
    PB_ASSERT( bytes || count == 0 );
    PB_ASSERT( count >= 0 );
    if ( count > decoder->remaining() )
        return false;
    if ( count )
        std::memcpy( bytes, decoder->bytes(), static_cast<size_t>( count ) );
    decoder->offset += count;
    return true;
}

pbBool pbDecoderTryRead( struct pbDecoder *decoder, struct pbBuffer **buffer, pbInt count )
{
    PB_ASSERT( decoder );
    PB_ASSERT( buffer );
    PB_ASSERT( count >= 0 );
    if ( count > decoder->remaining() )
        return false;
    auto read = pb::adopt( pbBufferCreateFromBytes( decoder->bytes(), count ) );
    pb::adopt( std::exchange( *buffer, read.release() ) ).reset();
    decoder->offset += count;
    return true;
}

pbBool pbDecoderTrySkip( struct pbDecoder *decoder, pbInt count )
{
    PB_ASSERT( decoder );
    PB_ASSERT( count >= 0 );
    if ( count > decoder->remaining() )
        return false;
    decoder->offset += count;
    return true;
}

} // extern "C"
