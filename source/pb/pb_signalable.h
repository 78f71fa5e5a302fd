// pbSignalable: what a signal wakes, a barrier to unblock or a process to schedule. Waking never runs foreign code and
// never takes a foreign lock in the waking thread, so it is done with monitors held.
#ifndef PB_SIGNALABLE_H
#define PB_SIGNALABLE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbSignalable;
struct pbBarrier;

PB_API const struct pbSort *pbSignalableSort( void );
PB_API struct pbSignalable *pbSignalableRetain( const struct pbSignalable *obj );
PB_API void pbSignalableRelease( const struct pbSignalable *obj );
PB_API struct pbObj *pbSignalableObj( const struct pbSignalable *obj );
PB_API struct pbSignalable *pbSignalableFrom( struct pbObj *obj );
PB_API struct pbString *pbSignalableToString( const struct pbSignalable *obj );
PB_API pbInt pbSignalableCompare( const struct pbSignalable *a, const struct pbSignalable *b );
PB_API pbBool pbSignalableEquals( const struct pbSignalable *a, const struct pbSignalable *b );

PB_API struct pbSignalable *pbSignalableCreateBarrier( struct pbBarrier *barrier );
PB_API void pbSignalableSignal( struct pbSignalable *signalable );

PB_DECLS_END

#endif
