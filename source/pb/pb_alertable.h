// pbAlertable: what an alert wakes, a barrier to unblock or a process to schedule; see pbSignalable.
#ifndef PB_ALERTABLE_H
#define PB_ALERTABLE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbAlertable;
struct pbBarrier;

PB_API const struct pbSort *pbAlertableSort( void );
PB_API struct pbAlertable *pbAlertableRetain( const struct pbAlertable *obj );
PB_API void pbAlertableRelease( const struct pbAlertable *obj );
PB_API struct pbObj *pbAlertableObj( const struct pbAlertable *obj );
PB_API struct pbAlertable *pbAlertableFrom( struct pbObj *obj );
PB_API struct pbString *pbAlertableToString( const struct pbAlertable *obj );
PB_API pbInt pbAlertableCompare( const struct pbAlertable *a, const struct pbAlertable *b );
PB_API pbBool pbAlertableEquals( const struct pbAlertable *a, const struct pbAlertable *b );

PB_API struct pbAlertable *pbAlertableCreateBarrier( struct pbBarrier *barrier );
PB_API void pbAlertableAlert( struct pbAlertable *alertable );

PB_DECLS_END

#endif
