// csCondition: a boolean that an operator sets and objects follow, such as "this host is the active one". The
// configurable sort "CS_CONDITION" with the one key "value", true or false, false when absent. A value set at run time
// is part of the configuration and saved with it. Threads: any; with monitors of a rank below 95 held.
#ifndef CS_CONDITION_H
#define CS_CONDITION_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csCondition;
struct pbSignalable;
struct trAnchor;

PB_API const struct pbSort *csConditionSort( void );
PB_API struct csCondition *csConditionRetain( const struct csCondition *obj );
PB_API void csConditionRelease( const struct csCondition *obj );
PB_API struct pbObj *csConditionObj( const struct csCondition *obj );
PB_API struct csCondition *csConditionFrom( struct pbObj *obj );
PB_API struct pbString *csConditionToString( const struct csCondition *obj );
PB_API pbInt csConditionCompare( const struct csCondition *a, const struct csCondition *b );
PB_API pbBool csConditionEquals( const struct csCondition *a, const struct csCondition *b );

PB_API struct csCondition *csConditionCreate( pbBool value );
PB_API pbBool csConditionValue( const struct csCondition *condition );
// Any value but 0 is true. Observers are signalled before it returns, and only when the value changed.
PB_API void csConditionSetValue( struct csCondition *condition, pbBool value );
PB_API void csConditionTraceCompleteAnchor( struct csCondition *condition, struct trAnchor *anchor );
// Signalled at the next change; register before reading.
PB_API void csConditionUpdateAddSignalable( struct csCondition *condition, struct pbSignalable *signalable );
PB_API void csConditionUpdateDelSignalable( struct csCondition *condition, struct pbSignalable *signalable );

PB_DECLS_END

#endif
