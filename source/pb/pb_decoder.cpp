// pbDecoder: a buffer and the position up to which it was read.
#include "pb/pb_decoder.h"

#include "pb/pb_buffer.h"
#include "pb/pb_decoder.hpp"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( pb___sort_PB_DECODER )

struct pbDecoder final : pb::Object<struct pbDecoder, pb___sort_PB_DECODER> {
    const pb::Ref<struct pbBuffer> buffer;
    pb::ByteReader reader;

    explicit pbDecoder( const struct pbBuffer *source )
        : buffer( pb::share( source ) ), reader( pbBufferBacking( source ), pbBufferLength( source ) )
    {
    }
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
    return decoder->reader.remaining();
}

pbInt pbDecoderOffset( const struct pbDecoder *decoder )
{
    PB_ASSERT( decoder );
    return decoder->reader.offset();
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
    return decoder->reader.tryRead( bytes, count );
}

pbBool pbDecoderTryRead( struct pbDecoder *decoder, struct pbBuffer **buffer, pbInt count )
{
    PB_ASSERT( decoder );
    PB_ASSERT( buffer );
    PB_ASSERT( count >= 0 );
    const uint8_t *bytes = decoder->reader.bytes();
    if ( !decoder->reader.trySkip( count ) )
        return false;
    auto read = pb::adopt( pbBufferCreateFromBytes( bytes, count ) );
    pb::adopt( std::exchange( *buffer, read.release() ) ).reset();
    return true;
}

pbBool pbDecoderTrySkip( struct pbDecoder *decoder, pbInt count )
{
    PB_ASSERT( decoder );
    PB_ASSERT( count >= 0 );
    return decoder->reader.trySkip( count );
}

} // extern "C"
