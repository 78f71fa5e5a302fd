// pbMonitor: a mutex as an object, not recursive. Enter and Leave on the same thread.
#ifndef PB_MONITOR_H
#define PB_MONITOR_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbMonitor;

PB_API const struct pbSort *pbMonitorSort( void );
PB_API struct pbMonitor *pbMonitorRetain( const struct pbMonitor *obj );
PB_API void pbMonitorRelease( const struct pbMonitor *obj );
PB_API struct pbObj *pbMonitorObj( const struct pbMonitor *obj );
PB_API struct pbMonitor *pbMonitorFrom( struct pbObj *obj );
PB_API struct pbString *pbMonitorToString( const struct pbMonitor *obj );
PB_API pbInt pbMonitorCompare( const struct pbMonitor *a, const struct pbMonitor *b );
PB_API pbBool pbMonitorEquals( const struct pbMonitor *a, const struct pbMonitor *b );

PB_API struct pbMonitor *pbMonitorCreate( void );
PB_API void pbMonitorEnter( struct pbMonitor *monitor );
PB_API void pbMonitorLeave( struct pbMonitor *monitor );

PB_DECLS_END

#endif
