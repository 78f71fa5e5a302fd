// Clocks: the monotonic timestamp, sleeping, and pbTime, a wall-clock value.
#ifndef PB_TIME_H
#define PB_TIME_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbTime;

// Monotonic milliseconds since an unspecified start.
PB_API pbInt pbTimestamp( void );
// Blocks the caller; milliseconds >= 0.
PB_API void pbSleep( pbInt milliseconds );

PB_API const struct pbSort *pbTimeSort( void );
PB_API struct pbTime *pbTimeRetain( const struct pbTime *obj );
PB_API void pbTimeRelease( const struct pbTime *obj );
PB_API struct pbObj *pbTimeObj( const struct pbTime *obj );
PB_API struct pbTime *pbTimeFrom( struct pbObj *obj );
PB_API struct pbString *pbTimeToString( const struct pbTime *obj );
PB_API pbInt pbTimeCompare( const struct pbTime *a, const struct pbTime *b );
PB_API pbBool pbTimeEquals( const struct pbTime *a, const struct pbTime *b );

PB_API struct pbTime *pbTimeCreateNow( void );
// seconds and nanoseconds (0..999999999) since 1970-01-01 00:00:00 UTC
PB_API struct pbTime *pbTimeCreate( pbInt seconds, pbInt nanoseconds );
PB_API pbInt pbTimeSeconds( const struct pbTime *time );
PB_API pbInt pbTimeNanoseconds( const struct pbTime *time );
// a - b in whole seconds, towards minus infinity; false when it does not fit.
PB_API pbBool pbTimeTryDifferenceSeconds( const struct pbTime *a, const struct pbTime *b, pbInt *seconds );

PB_DECLS_END

#endif
