// pbAlert: a level, set exactly while there is something to take.
#ifndef PB_ALERT_H
#define PB_ALERT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbAlert;
struct pbAlertable;

PB_API const struct pbSort *pbAlertSort( void );
PB_API struct pbAlert *pbAlertRetain( const struct pbAlert *obj );
PB_API void pbAlertRelease( const struct pbAlert *obj );
PB_API struct pbObj *pbAlertObj( const struct pbAlert *obj );
PB_API struct pbAlert *pbAlertFrom( struct pbObj *obj );
PB_API struct pbString *pbAlertToString( const struct pbAlert *obj );
PB_API pbInt pbAlertCompare( const struct pbAlert *a, const struct pbAlert *b );
PB_API pbBool pbAlertEquals( const struct pbAlert *a, const struct pbAlert *b );

PB_API struct pbAlert *pbAlertCreate( void );
// Alerts every attached alertable when it goes from unset to set.
PB_API void pbAlertSet( struct pbAlert *alert );
PB_API void pbAlertUnset( struct pbAlert *alert );
PB_API pbBool pbAlertIsSet( const struct pbAlert *alert );
// Adding twice keeps one entry. Adding to a set alert alerts at once, also when already attached.
PB_API void pbAlertAddAlertable( struct pbAlert *alert, struct pbAlertable *alertable );
PB_API void pbAlertDelAlertable( struct pbAlert *alert, struct pbAlertable *alertable );

PB_DECLS_END

#endif
