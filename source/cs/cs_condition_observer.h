// csConditionObserver: the value of a condition that is given itself or by the name of its record. A name is looked up
// in the running configurations and followed: the record may appear later, go, and come back. Threads: any; with
// monitors of a rank below 95 held.
#ifndef CS_CONDITION_OBSERVER_H
#define CS_CONDITION_OBSERVER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csCondition;
struct csConditionObserver;
struct pbSignalable;
struct pbString;
struct trAnchor;

PB_API const struct pbSort *csConditionObserverSort( void );
PB_API struct csConditionObserver *csConditionObserverRetain( const struct csConditionObserver *obj );
PB_API void csConditionObserverRelease( const struct csConditionObserver *obj );
PB_API struct pbObj *csConditionObserverObj( const struct csConditionObserver *obj );
PB_API struct csConditionObserver *csConditionObserverFrom( struct pbObj *obj );
PB_API struct pbString *csConditionObserverToString( const struct csConditionObserver *obj );
PB_API pbInt csConditionObserverCompare( const struct csConditionObserver *a, const struct csConditionObserver *b );
PB_API pbBool csConditionObserverEquals( const struct csConditionObserver *a, const struct csConditionObserver *b );

// Nothing is configured at first.
PB_API struct csConditionObserver *csConditionObserverCreate( struct trAnchor *optionalAnchor );
// A given condition goes before the name; both null: nothing is configured. The name is a record name
// (csObjectRecordNameOk).
PB_API void csConditionObserverConfigure( struct csConditionObserver *observer, const struct pbString *optionalName,
                                          struct csCondition *optionalCondition );
// The fallback only while nothing is configured; a name without a condition of that name is false.
PB_API pbBool csConditionObserverValue( const struct csConditionObserver *observer, pbBool fallback );
// Signalled when the value may have changed: the condition's value, the condition behind the name, the configuration.
// Register before reading.
PB_API void csConditionObserverUpdateAddSignalable( struct csConditionObserver *observer,
                                                    struct pbSignalable *signalable );
PB_API void csConditionObserverUpdateDelSignalable( struct csConditionObserver *observer,
                                                    struct pbSignalable *signalable );

PB_DECLS_END

#endif
