// pbTimer: a one-shot timer that signals a signalable.
#ifndef PB_TIMER_H
#define PB_TIMER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbTimer;
struct pbSignalable;

PB_API const struct pbSort *pbTimerSort( void );
PB_API struct pbTimer *pbTimerRetain( const struct pbTimer *obj );
PB_API void pbTimerRelease( const struct pbTimer *obj );
PB_API struct pbObj *pbTimerObj( const struct pbTimer *obj );
PB_API struct pbTimer *pbTimerFrom( struct pbObj *obj );
PB_API struct pbString *pbTimerToString( const struct pbTimer *obj );
PB_API pbInt pbTimerCompare( const struct pbTimer *a, const struct pbTimer *b );
PB_API pbBool pbTimerEquals( const struct pbTimer *a, const struct pbTimer *b );

// Not scheduled at first. Releasing the last reference unschedules it.
PB_API struct pbTimer *pbTimerCreate( struct pbSignalable *signalable );
// milliseconds >= 0; replaces a pending expiry.
PB_API void pbTimerSchedule( struct pbTimer *timer, pbInt milliseconds );
PB_API void pbTimerUnschedule( struct pbTimer *timer );
// Turns false before the signalable is signalled by the expiry.
PB_API pbBool pbTimerScheduled( const struct pbTimer *timer );

PB_DECLS_END

#endif
