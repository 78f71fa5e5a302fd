// pbSignal: a one-shot latch. Once asserted it stays so.
#ifndef PB_SIGNAL_H
#define PB_SIGNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbSignal;
struct pbSignalable;
struct pbBarrier;

PB_API const struct pbSort *pbSignalSort( void );
PB_API struct pbSignal *pbSignalRetain( const struct pbSignal *obj );
PB_API void pbSignalRelease( const struct pbSignal *obj );
PB_API struct pbObj *pbSignalObj( const struct pbSignal *obj );
PB_API struct pbSignal *pbSignalFrom( struct pbObj *obj );
PB_API struct pbString *pbSignalToString( const struct pbSignal *obj );
PB_API pbInt pbSignalCompare( const struct pbSignal *a, const struct pbSignal *b );
PB_API pbBool pbSignalEquals( const struct pbSignal *a, const struct pbSignal *b );

PB_API struct pbSignal *pbSignalCreate( void );
// Signals every attached signalable and unblocks every attached barrier, once; later calls do nothing.
// What it woke stays referenced until Del or the end of the signal: the caller may hold monitors.
PB_API void pbSignalAssert( struct pbSignal *signal );
PB_API pbBool pbSignalAsserted( const struct pbSignal *signal );
// Adding twice keeps one entry. Adding to an asserted signal signals at once, every time, and keeps nothing.
PB_API void pbSignalAddSignalable( struct pbSignal *signal, struct pbSignalable *signalable );
// After it returns, this signal starts no new notification. Not attached: nothing happens.
PB_API void pbSignalDelSignalable( struct pbSignal *signal, struct pbSignalable *signalable );
PB_API void pbSignalAddBarrier( struct pbSignal *signal, struct pbBarrier *barrier );
PB_API void pbSignalDelBarrier( struct pbSignal *signal, struct pbBarrier *barrier );

PB_DECLS_END

#endif
