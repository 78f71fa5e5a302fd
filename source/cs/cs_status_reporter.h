// csStatusReporter: what a configured object says of its state: up or down, and named items.
#ifndef CS_STATUS_REPORTER_H
#define CS_STATUS_REPORTER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct trAnchor;
struct pbSignalable;
struct pbStore;
struct pbString;

PB_API const struct pbSort *csStatusReporterSort( void );
PB_API struct csStatusReporter *csStatusReporterRetain( const struct csStatusReporter *obj );
PB_API void csStatusReporterRelease( const struct csStatusReporter *obj );
PB_API struct pbObj *csStatusReporterObj( const struct csStatusReporter *obj );
PB_API struct csStatusReporter *csStatusReporterFrom( struct pbObj *obj );
PB_API struct pbString *csStatusReporterToString( const struct csStatusReporter *obj );
PB_API pbInt csStatusReporterCompare( const struct csStatusReporter *a, const struct csStatusReporter *b );
PB_API pbBool csStatusReporterEquals( const struct csStatusReporter *a, const struct csStatusReporter *b );

// Down at first, without items.
PB_API struct csStatusReporter *csStatusReporterCreate( struct trAnchor *optionalAnchor );
PB_API void csStatusReporterSetUp( struct csStatusReporter *reporter, pbBool up );
PB_API pbBool csStatusReporterUp( const struct csStatusReporter *reporter );
PB_API void csStatusReporterSetItemCstr( struct csStatusReporter *reporter, const char *key, pbInt keyLength,
                                         const struct pbString *value );
PB_API void csStatusReporterDelItemCstr( struct csStatusReporter *reporter, const char *key, pbInt keyLength );
PB_API struct pbStore *csStatusReporterItems( const struct csStatusReporter *reporter );
// Signalled at the next change; register before reading.
PB_API void csStatusReporterUpdateAddSignalable( struct csStatusReporter *reporter, struct pbSignalable *signalable );
PB_API void csStatusReporterUpdateDelSignalable( struct csStatusReporter *reporter, struct pbSignalable *signalable );

PB_DECLS_END

#endif
