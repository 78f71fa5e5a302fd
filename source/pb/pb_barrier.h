// pbBarrier: a count that threads pass at zero.
// Whatever was written before an Unblock is visible behind the Pass that it lets through. The thread that passed may
// release the barrier at once: Unblock does not touch it after opening it.
#ifndef PB_BARRIER_H
#define PB_BARRIER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBarrier;

PB_API const struct pbSort *pbBarrierSort( void );
PB_API struct pbBarrier *pbBarrierRetain( const struct pbBarrier *obj );
PB_API void pbBarrierRelease( const struct pbBarrier *obj );
PB_API struct pbObj *pbBarrierObj( const struct pbBarrier *obj );
PB_API struct pbBarrier *pbBarrierFrom( struct pbObj *obj );
PB_API struct pbString *pbBarrierToString( const struct pbBarrier *obj );
PB_API pbInt pbBarrierCompare( const struct pbBarrier *a, const struct pbBarrier *b );
PB_API pbBool pbBarrierEquals( const struct pbBarrier *a, const struct pbBarrier *b );

// count >= 0; 0 is open.
PB_API struct pbBarrier *pbBarrierCreate( pbInt count );
PB_API void pbBarrierBlock( struct pbBarrier *barrier );
// At zero it has no effect.
PB_API void pbBarrierUnblock( struct pbBarrier *barrier );
// Blocks the caller until the count is zero; does not change it.
PB_API void pbBarrierPass( struct pbBarrier *barrier );
// The same for at most the given time, >= 0; false when it ran out. 0 only looks.
PB_API pbBool pbBarrierPassTimed( struct pbBarrier *barrier, pbInt milliseconds );

PB_DECLS_END

#endif
