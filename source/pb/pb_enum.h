// pbEnum: a table of enumerant names and their values.
#ifndef PB_ENUM_H
#define PB_ENUM_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbEnum;
struct pbString;

PB_API const struct pbSort *pbEnumSort( void );
PB_API struct pbEnum *pbEnumRetain( const struct pbEnum *obj );
PB_API void pbEnumRelease( const struct pbEnum *obj );
PB_API struct pbObj *pbEnumObj( const struct pbEnum *obj );
PB_API struct pbEnum *pbEnumFrom( struct pbObj *obj );
PB_API struct pbString *pbEnumToString( const struct pbEnum *obj );
PB_API pbInt pbEnumCompare( const struct pbEnum *a, const struct pbEnum *b );
PB_API pbBool pbEnumEquals( const struct pbEnum *a, const struct pbEnum *b );

PB_API struct pbEnum *pbEnumCreate( void );
// A name or value that is already there aborts. Values are 0 or greater.
PB_API void pbEnumAddEnumerantCstr( struct pbEnum **enumeration, const char *name, pbInt nameLength, pbInt value );
// The name of a value that is in the table.
PB_API struct pbString *pbEnumGenerate( const struct pbEnum *enumeration, pbInt value );
// Exact and case-sensitive; -1 for an unknown name.
PB_API pbInt pbEnumParse( const struct pbEnum *enumeration, const struct pbString *name );

PB_DECLS_END

#endif
