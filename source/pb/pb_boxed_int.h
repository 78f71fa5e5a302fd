// pbBoxedInt: an integer as an object; its text form is decimal.
#ifndef PB_BOXED_INT_H
#define PB_BOXED_INT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBoxedInt;

PB_API const struct pbSort *pbBoxedIntSort( void );
PB_API struct pbBoxedInt *pbBoxedIntRetain( const struct pbBoxedInt *obj );
PB_API void pbBoxedIntRelease( const struct pbBoxedInt *obj );
PB_API struct pbObj *pbBoxedIntObj( const struct pbBoxedInt *obj );
PB_API struct pbBoxedInt *pbBoxedIntFrom( struct pbObj *obj );
PB_API struct pbString *pbBoxedIntToString( const struct pbBoxedInt *obj );
PB_API pbInt pbBoxedIntCompare( const struct pbBoxedInt *a, const struct pbBoxedInt *b );
PB_API pbBool pbBoxedIntEquals( const struct pbBoxedInt *a, const struct pbBoxedInt *b );

PB_API struct pbBoxedInt *pbBoxedIntCreate( pbInt value );
PB_API pbInt pbBoxedIntValue( const struct pbBoxedInt *boxed );

PB_DECLS_END

#endif
