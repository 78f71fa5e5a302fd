// pbDecoder: bounded reading of a buffer from front to back. One thread at a time.
// Each Try read returns false and does not move when fewer bytes remain; 0 bytes always succeed.
#ifndef PB_DECODER_H
#define PB_DECODER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbDecoder;
struct pbBuffer;

PB_API const struct pbSort *pbDecoderSort( void );
PB_API struct pbDecoder *pbDecoderRetain( const struct pbDecoder *obj );
PB_API void pbDecoderRelease( const struct pbDecoder *obj );
PB_API struct pbObj *pbDecoderObj( const struct pbDecoder *obj );
PB_API struct pbDecoder *pbDecoderFrom( struct pbObj *obj );
PB_API struct pbString *pbDecoderToString( const struct pbDecoder *obj );
PB_API pbInt pbDecoderCompare( const struct pbDecoder *a, const struct pbDecoder *b );
PB_API pbBool pbDecoderEquals( const struct pbDecoder *a, const struct pbDecoder *b );

PB_API struct pbDecoder *pbDecoderCreate( const struct pbBuffer *buffer );
PB_API pbInt pbDecoderRemaining( const struct pbDecoder *decoder );
PB_API pbInt pbDecoderOffset( const struct pbDecoder *decoder );
PB_API pbBool pbDecoderTryReadByte( struct pbDecoder *decoder, uint8_t *byte );
PB_API pbBool pbDecoderTryReadBytes( struct pbDecoder *decoder, uint8_t *bytes, pbInt count );
// *buffer is replaced by a new buffer.
PB_API pbBool pbDecoderTryRead( struct pbDecoder *decoder, struct pbBuffer **buffer, pbInt count );
PB_API pbBool pbDecoderTrySkip( struct pbDecoder *decoder, pbInt count );

PB_DECLS_END

#endif
