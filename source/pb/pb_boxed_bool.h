// pbBoxedBool: a boolean as an object; its text form is "true" or "false".
#ifndef PB_BOXED_BOOL_H
#define PB_BOXED_BOOL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBoxedBool;

PB_API const struct pbSort *pbBoxedBoolSort( void );
PB_API struct pbBoxedBool *pbBoxedBoolRetain( const struct pbBoxedBool *obj );
PB_API void pbBoxedBoolRelease( const struct pbBoxedBool *obj );
PB_API struct pbObj *pbBoxedBoolObj( const struct pbBoxedBool *obj );
PB_API struct pbBoxedBool *pbBoxedBoolFrom( struct pbObj *obj );
PB_API struct pbString *pbBoxedBoolToString( const struct pbBoxedBool *obj );
PB_API pbInt pbBoxedBoolCompare( const struct pbBoxedBool *a, const struct pbBoxedBool *b );
PB_API pbBool pbBoxedBoolEquals( const struct pbBoxedBool *a, const struct pbBoxedBool *b );

PB_API struct pbBoxedBool *pbBoxedBoolCreate( pbBool value );
PB_API pbBool pbBoxedBoolValue( const struct pbBoxedBool *boxed );

PB_DECLS_END

#endif
