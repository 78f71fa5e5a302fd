// pbBuffer: bytes with copy on write and a bit view; bit 0 is the most significant bit of byte 0.
// A buffer whose bit length is no multiple of 8 has a last byte padded with zero bits; its length counts whole bytes.
#ifndef PB_BUFFER_H
#define PB_BUFFER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBuffer;

PB_API const struct pbSort *pbBufferSort( void );
PB_API struct pbBuffer *pbBufferRetain( const struct pbBuffer *obj );
PB_API void pbBufferRelease( const struct pbBuffer *obj );
PB_API struct pbObj *pbBufferObj( const struct pbBuffer *obj );
PB_API struct pbBuffer *pbBufferFrom( struct pbObj *obj );
PB_API struct pbString *pbBufferToString( const struct pbBuffer *obj );
PB_API pbInt pbBufferCompare( const struct pbBuffer *a, const struct pbBuffer *b );
PB_API pbBool pbBufferEquals( const struct pbBuffer *a, const struct pbBuffer *b );

PB_API struct pbBuffer *pbBufferCreate( void );
PB_API struct pbBuffer *pbBufferCreateFrom( const struct pbBuffer *source );
PB_API struct pbBuffer *pbBufferCreateFromBytes( const void *bytes, pbInt count );
// count bytes of unspecified content, to be written through pbBufferBackingForWrite.
PB_API struct pbBuffer *pbBufferCreateUninitialized( pbInt count );

PB_API pbInt pbBufferLength( const struct pbBuffer *buffer );
PB_API pbInt pbBufferBitLength( const struct pbBuffer *buffer );
// How many more bytes the buffer can take.
PB_API pbInt pbBufferSpace( const struct pbBuffer *buffer );
PB_API const uint8_t *pbBufferBacking( const struct pbBuffer *buffer );
PB_API uint8_t *pbBufferBackingForWrite( struct pbBuffer **buffer );
PB_API pbInt pbBufferByteAt( const struct pbBuffer *buffer, pbInt index );

PB_API void pbBufferAppendBytes( struct pbBuffer **buffer, const void *bytes, pbInt count );
// The source may be the buffer itself in all append forms.
PB_API void pbBufferAppend( struct pbBuffer **buffer, const struct pbBuffer *source );
PB_API void pbBufferAppendInner( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt offset, pbInt count );
PB_API void pbBufferAppendLeading( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt count );
PB_API void pbBufferAppendTrailing( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt count );
// The source without its bytes offset..offset + count - 1.
PB_API void pbBufferAppendOuter( struct pbBuffer **buffer, const struct pbBuffer *source, pbInt offset, pbInt count );
// Amortised constant time per byte, so that a buffer serves as a byte queue.
PB_API void pbBufferDelLeading( struct pbBuffer **buffer, pbInt count );
PB_API void pbBufferClear( struct pbBuffer **buffer );

// Keeps only the bits bitOffset..bitOffset + bitCount - 1, moved to the front.
PB_API void pbBufferBitDelOuter( struct pbBuffer **buffer, pbInt bitOffset, pbInt bitCount );
PB_API void pbBufferBitAppendZero( struct pbBuffer **buffer, pbInt bitCount );

PB_DECLS_END

#endif
