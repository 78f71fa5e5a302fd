// pbThread: a named thread with all signals blocked. Every thread is joined by its owner.
#ifndef PB_THREAD_H
#define PB_THREAD_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbThread;
struct pbString;

PB_API const struct pbSort *pbThreadSort( void );
PB_API struct pbThread *pbThreadRetain( const struct pbThread *obj );
PB_API void pbThreadRelease( const struct pbThread *obj );
PB_API struct pbObj *pbThreadObj( const struct pbThread *obj );
PB_API struct pbThread *pbThreadFrom( struct pbObj *obj );
PB_API struct pbString *pbThreadToString( const struct pbThread *obj );
PB_API pbInt pbThreadCompare( const struct pbThread *a, const struct pbThread *b );
PB_API pbBool pbThreadEquals( const struct pbThread *a, const struct pbThread *b );

// Null when the system refuses. The kernel shows the first 15 bytes of the name.
// priority 0 is normal; 1..4 are hints that need privilege and are ignored without it.
PB_API struct pbThread *pbThreadTrySpawnCstr( const char *name, pbInt nameLength, void ( *function )( struct pbObj * ),
                                              struct pbObj *optionalArgument, pbInt priority );
PB_API struct pbString *pbThreadName( const struct pbThread *thread );
// Waits for the end; once.
PB_API void pbThreadJoin( struct pbThread *thread );

PB_DECLS_END

#endif
