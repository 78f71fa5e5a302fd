// pbByteSink: where bytes are written to. A failed write leaves a sticky error that is asked for afterwards.
#ifndef PB_BYTE_SINK_H
#define PB_BYTE_SINK_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbByteSink;
struct pbBuffer;
struct pbString;

PB_API const struct pbSort *pbByteSinkSort( void );
PB_API struct pbByteSink *pbByteSinkRetain( const struct pbByteSink *obj );
PB_API void pbByteSinkRelease( const struct pbByteSink *obj );
PB_API struct pbObj *pbByteSinkObj( const struct pbByteSink *obj );
PB_API struct pbByteSink *pbByteSinkFrom( struct pbObj *obj );
PB_API struct pbString *pbByteSinkToString( const struct pbByteSink *obj );
PB_API pbInt pbByteSinkCompare( const struct pbByteSink *a, const struct pbByteSink *b );
PB_API pbBool pbByteSinkEquals( const struct pbByteSink *a, const struct pbByteSink *b );

// Null when the file cannot be created. An existing file is emptied.
PB_API struct pbByteSink *pbByteSinkTryCreateFile( const struct pbString *path );
PB_API struct pbByteSink *pbByteSinkCreateBuffer( void );
PB_API void pbByteSinkWrite( struct pbByteSink *sink, const void *bytes, pbInt count );
PB_API pbBool pbByteSinkError( const struct pbByteSink *sink );
// What a buffer sink holds; null for other sinks.
PB_API struct pbBuffer *pbByteSinkBuffer( const struct pbByteSink *sink );

PB_DECLS_END

#endif
