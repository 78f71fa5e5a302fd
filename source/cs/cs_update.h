// csUpdate: a stored configuration that is being brought up to date, a value. It is one tree, and every function reads
// and writes that tree, so what one wrote the others see:
//   "objects"  record name -> "sort" (text), "config" (store, may be absent)
//   "modules"  module name -> "version" (text, absent when never recorded), "info" (store, absent when never recorded)
// The tree comes from a file: any part of it may be absent or of another kind, and then counts as absent.
#ifndef CS_UPDATE_H
#define CS_UPDATE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csUpdate;
struct csUpdateObject;
struct csUpdateObjects;
struct pbModule;
struct pbModuleVersion;
struct pbStore;
struct pbString;

PB_API const struct pbSort *csUpdateSort( void );
PB_API struct csUpdate *csUpdateRetain( const struct csUpdate *obj );
PB_API void csUpdateRelease( const struct csUpdate *obj );
PB_API struct pbObj *csUpdateObj( const struct csUpdate *obj );
PB_API struct csUpdate *csUpdateFrom( struct pbObj *obj );
PB_API struct pbString *csUpdateToString( const struct csUpdate *obj );
PB_API pbInt csUpdateCompare( const struct csUpdate *a, const struct csUpdate *b );
PB_API pbBool csUpdateEquals( const struct csUpdate *a, const struct csUpdate *b );

// The tree is borrowed and may be empty.
PB_API struct csUpdate *csUpdateCreate( const struct pbStore *tree );

// The version recorded for the module; null when none was, or when the text is no version.
PB_API struct pbModuleVersion *csUpdateModuleVersion( const struct csUpdate *update, const struct pbModule *module );
PB_API void csUpdateSetModuleVersion( struct csUpdate **update, const struct pbModule *module,
                                      const struct pbModuleVersion *version );

// By sort name, so that objects of modules that do not run are found, too.
PB_API struct csUpdateObjects *csUpdateObjectsBySort( const struct csUpdate *update, const struct pbSort *sort );
PB_API struct csUpdateObjects *csUpdateObjectsBySortName( const struct csUpdate *update,
                                                          const struct pbString *sortName );
PB_API struct csUpdateObjects *csUpdateObjectsBySortNameCstr( const struct csUpdate *update, const char *sortName,
                                                              pbInt sortNameLength );
// Null when no record has the name.
PB_API struct csUpdateObject *csUpdateObject( const struct csUpdate *update, const struct pbString *name );
PB_API struct csUpdateObject *csUpdateObjectCstr( const struct csUpdate *update, const char *name, pbInt nameLength );
// Writes the object back under the name, at its place; a new name goes to the end.
PB_API void csUpdateSetObject( struct csUpdate **update, const struct pbString *name,
                               const struct csUpdateObject *object );

// The whole tree with all that was written so far. Setting it replaces everything: take it after the objects were
// written back.
PB_API struct pbStore *csUpdateCurrent( const struct csUpdate *update );
PB_API void csUpdateSetCurrent( struct csUpdate **update, const struct pbStore *tree );

PB_DECLS_END

#endif
