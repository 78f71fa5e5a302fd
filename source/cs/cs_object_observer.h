// csObjectObserver: an object of one sort that is given itself or by the name of its record. A name is looked up in the
// running configurations and followed: the record may appear later, go, and come back as another object.
// Threads: any; with monitors of a rank below 95 held. Configure and the last Release may drop the last
// reference of an object, so no monitor is held around these.
#ifndef CS_OBJECT_OBSERVER_H
#define CS_OBJECT_OBSERVER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csObjectObserver;
struct pbSignalable;
struct pbString;
struct trAnchor;

PB_API const struct pbSort *csObjectObserverSort( void );
PB_API struct csObjectObserver *csObjectObserverRetain( const struct csObjectObserver *obj );
PB_API void csObjectObserverRelease( const struct csObjectObserver *obj );
PB_API struct pbObj *csObjectObserverObj( const struct csObjectObserver *obj );
PB_API struct csObjectObserver *csObjectObserverFrom( struct pbObj *obj );
PB_API struct pbString *csObjectObserverToString( const struct csObjectObserver *obj );
PB_API pbInt csObjectObserverCompare( const struct csObjectObserver *a, const struct csObjectObserver *b );
PB_API pbBool csObjectObserverEquals( const struct csObjectObserver *a, const struct csObjectObserver *b );

// Nothing is configured at first.
PB_API struct csObjectObserver *csObjectObserverCreate( const struct pbSort *sort, struct trAnchor *optionalAnchor );
// A given object, which is of the observer's sort, goes before the name; both null: nothing is configured. The name is
// a record name (csObjectRecordNameOk).
PB_API void csObjectObserverConfigure( struct csObjectObserver *observer, const struct pbString *optionalName,
                                       struct pbObj *optionalObject );
// The object given, else that of the record with the name when it is of the sort, else null.
PB_API struct pbObj *csObjectObserverObject( const struct csObjectObserver *observer );
// Signalled when the object becomes another or null. Register before reading.
PB_API void csObjectObserverUpdateAddSignalable( struct csObjectObserver *observer, struct pbSignalable *signalable );
PB_API void csObjectObserverUpdateDelSignalable( struct csObjectObserver *observer, struct pbSignalable *signalable );

PB_DECLS_END

#endif
