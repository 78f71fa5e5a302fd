// pbLineSource: the lines of a file, one after the other. One thread at a time.
#ifndef PB_LINE_SOURCE_H
#define PB_LINE_SOURCE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBuffer;
struct pbLineSource;
struct pbString;

PB_API const struct pbSort *pbLineSourceSort( void );
PB_API struct pbLineSource *pbLineSourceRetain( const struct pbLineSource *obj );
PB_API void pbLineSourceRelease( const struct pbLineSource *obj );
PB_API struct pbObj *pbLineSourceObj( const struct pbLineSource *obj );
PB_API struct pbLineSource *pbLineSourceFrom( struct pbObj *obj );
PB_API struct pbString *pbLineSourceToString( const struct pbLineSource *obj );
PB_API pbInt pbLineSourceCompare( const struct pbLineSource *a, const struct pbLineSource *b );
PB_API pbBool pbLineSourceEquals( const struct pbLineSource *a, const struct pbLineSource *b );

PB_API struct pbLineSource *pbLineSourceTryOpenFileCstr( const char *path );
// The next line without its LF, malformed UTF-8 as U+FFFD; null at the end and on a read error.
PB_API struct pbString *pbLineSourceTryReadLine( struct pbLineSource *source );
// The same as it stands.
PB_API struct pbBuffer *pbLineSourceTryReadLineBytes( struct pbLineSource *source );

PB_DECLS_END

#endif
