// pbModuleVersion: a version "major.minor", a value.
#ifndef PB_MODULE_VERSION_H
#define PB_MODULE_VERSION_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbModuleVersion;

PB_API const struct pbSort *pbModuleVersionSort( void );
PB_API struct pbModuleVersion *pbModuleVersionRetain( const struct pbModuleVersion *obj );
PB_API void pbModuleVersionRelease( const struct pbModuleVersion *obj );
PB_API struct pbObj *pbModuleVersionObj( const struct pbModuleVersion *obj );
PB_API struct pbModuleVersion *pbModuleVersionFrom( struct pbObj *obj );
PB_API struct pbString *pbModuleVersionToString( const struct pbModuleVersion *obj );
PB_API pbInt pbModuleVersionCompare( const struct pbModuleVersion *a, const struct pbModuleVersion *b );
PB_API pbBool pbModuleVersionEquals( const struct pbModuleVersion *a, const struct pbModuleVersion *b );

// Null unless the text is two non-negative decimal numbers joined by ".".
PB_API struct pbModuleVersion *pbModuleVersionTryCreateFromCstr( const char *text, pbInt textLength );
PB_API pbInt pbModuleVersionMajor( const struct pbModuleVersion *version );
PB_API pbInt pbModuleVersionMinor( const struct pbModuleVersion *version );

PB_DECLS_END

#endif
