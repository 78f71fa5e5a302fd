// csUpdateObject: a stored object as an update reads and rewrites it, a value: the name of its sort and its
// configuration.
#ifndef CS_UPDATE_OBJECT_H
#define CS_UPDATE_OBJECT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csUpdateObject;
struct pbStore;
struct pbString;

PB_API const struct pbSort *csUpdateObjectSort( void );
PB_API struct csUpdateObject *csUpdateObjectRetain( const struct csUpdateObject *obj );
PB_API void csUpdateObjectRelease( const struct csUpdateObject *obj );
PB_API struct pbObj *csUpdateObjectObj( const struct csUpdateObject *obj );
PB_API struct csUpdateObject *csUpdateObjectFrom( struct pbObj *obj );
PB_API struct pbString *csUpdateObjectToString( const struct csUpdateObject *obj );
PB_API pbInt csUpdateObjectCompare( const struct csUpdateObject *a, const struct csUpdateObject *b );
PB_API pbBool csUpdateObjectEquals( const struct csUpdateObject *a, const struct csUpdateObject *b );

// The sort may be of a module that does not run.
PB_API struct pbString *csUpdateObjectSortName( const struct csUpdateObject *object );
// Empty when the record has none.
PB_API struct pbStore *csUpdateObjectConfig( const struct csUpdateObject *object );
PB_API void csUpdateObjectSetConfig( struct csUpdateObject **object, const struct pbStore *config );

PB_DECLS_END

#endif
