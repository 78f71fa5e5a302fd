// trStream: the trace of one active object: a name, properties, the configuration in effect, a notable mark, texts, and
// links to the streams of the objects that it works with. Callable from any thread with monitors held; nothing calls back.
#ifndef TR_STREAM_H
#define TR_STREAM_H

#include "pb/pb_format.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct trStream;
struct trAnchor;
struct pbBuffer;
struct pbStore;
struct pbString;

PB_API const struct pbSort *trStreamSort( void );
PB_API struct trStream *trStreamRetain( const struct trStream *obj );
PB_API void trStreamRelease( const struct trStream *obj );
PB_API struct pbObj *trStreamObj( const struct trStream *obj );
PB_API struct trStream *trStreamFrom( struct pbObj *obj );
PB_API struct pbString *trStreamToString( const struct trStream *obj );
PB_API pbInt trStreamCompare( const struct trStream *a, const struct trStream *b );
PB_API pbBool trStreamEquals( const struct trStream *a, const struct trStream *b );

PB_API struct trStream *trStreamCreateCstr( const char *name, pbInt nameLength );
PB_API struct pbString *trStreamName( const struct trStream *stream );
// Unique in the process, from 1.
PB_API pbInt trStreamIdentifier( const struct trStream *stream );
// The type of the payloads attached to messages, such as "PB_BUFFER".
PB_API void trStreamSetPayloadTypeCstr( struct trStream *stream, const char *type, pbInt typeLength );

PB_API void trStreamSetPropertyCstrString( struct trStream *stream, const char *key, pbInt keyLength, const struct pbString *value );
PB_API void trStreamSetPropertyCstrBool( struct trStream *stream, const char *key, pbInt keyLength, pbBool value );
PB_API void trStreamSetPropertyCstrInt( struct trStream *stream, const char *key, pbInt keyLength, pbInt value );
PB_API void trStreamSetPropertyCstrStore( struct trStream *stream, const char *key, pbInt keyLength, const struct pbStore *value );
PB_API void trStreamDelPropertyCstr( struct trStream *stream, const char *key, pbInt keyLength );
// Values and stores by key.
PB_API struct pbStore *trStreamProperties( const struct trStream *stream );
// The options in effect.
PB_API void trStreamSetConfiguration( struct trStream *stream, const struct pbStore *configuration );
PB_API struct pbStore *trStreamConfiguration( const struct trStream *stream ); // or null
// A sticky mark on a stream that a person should look at.
PB_API void trStreamSetNotable( struct trStream *stream );
PB_API void trStreamDelNotable( struct trStream *stream );
PB_API pbBool trStreamNotable( const struct trStream *stream );

PB_API void trStreamTextCstr( struct trStream *stream, const char *text, pbInt textLength );
PB_API void trStreamTextFormatCstr( struct trStream *stream, const char *format, pbInt formatLength,
                                    const struct pbFormatArgument *arguments, pbInt argumentCount );
// With a payload, of the stream's payload type.
PB_API void trStreamMessageFormatCstr( struct trStream *stream, const struct pbBuffer *payload, const char *format, pbInt formatLength,
                                       const struct pbFormatArgument *arguments, pbInt argumentCount );

PB_DECLS_END

#endif
