// csRecord: a record of a configuration as it was at one moment, a value.
#ifndef CS_RECORD_H
#define CS_RECORD_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csRecord;
struct csStatusReporter;
struct pbStore;
struct pbString;
struct trAnchor;

PB_API const struct pbSort *csRecordSort( void );
PB_API struct csRecord *csRecordRetain( const struct csRecord *obj );
PB_API void csRecordRelease( const struct csRecord *obj );
PB_API struct pbObj *csRecordObj( const struct csRecord *obj );
PB_API struct csRecord *csRecordFrom( struct pbObj *obj );
PB_API struct pbString *csRecordToString( const struct csRecord *obj );
PB_API pbInt csRecordCompare( const struct csRecord *a, const struct csRecord *b );
PB_API pbBool csRecordEquals( const struct csRecord *a, const struct csRecord *b );

PB_API struct pbString *csRecordName( const struct csRecord *record );
PB_API struct pbString *csRecordSortName( const struct csRecord *record );
// As written in the file; empty when the record gives none.
PB_API struct pbStore *csRecordStore( const struct csRecord *record );
// Null while stopped and when the object could not be created.
PB_API struct pbObj *csRecordObject( const struct csRecord *record );
// Null also when the sort has no status.
PB_API struct csStatusReporter *csRecordStatus( const struct csRecord *record );
// Completes the anchor with the object's trace. False without an object, and when the sort has no trace.
PB_API pbBool csRecordTraceCompleteAnchor( const struct csRecord *record, struct trAnchor *anchor );

PB_DECLS_END

#endif
