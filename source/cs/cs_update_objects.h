// csUpdateObjects: stored objects of one sort with their names, in the order of the configuration; a value that does
// not change while the update that it was taken from does.
#ifndef CS_UPDATE_OBJECTS_H
#define CS_UPDATE_OBJECTS_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csUpdateObject;
struct csUpdateObjects;
struct pbString;

PB_API const struct pbSort *csUpdateObjectsSort( void );
PB_API struct csUpdateObjects *csUpdateObjectsRetain( const struct csUpdateObjects *obj );
PB_API void csUpdateObjectsRelease( const struct csUpdateObjects *obj );
PB_API struct pbObj *csUpdateObjectsObj( const struct csUpdateObjects *obj );
PB_API struct csUpdateObjects *csUpdateObjectsFrom( struct pbObj *obj );
PB_API struct pbString *csUpdateObjectsToString( const struct csUpdateObjects *obj );
PB_API pbInt csUpdateObjectsCompare( const struct csUpdateObjects *a, const struct csUpdateObjects *b );
PB_API pbBool csUpdateObjectsEquals( const struct csUpdateObjects *a, const struct csUpdateObjects *b );

// index 0..length - 1
PB_API pbInt csUpdateObjectsLength( const struct csUpdateObjects *objects );
PB_API struct pbString *csUpdateObjectsNameAt( const struct csUpdateObjects *objects, pbInt index );
PB_API struct csUpdateObject *csUpdateObjectsObjectAt( const struct csUpdateObjects *objects, pbInt index );

PB_DECLS_END

#endif
