// pbVector: a sequence of objects, a value. Taking from the front is as cheap as adding at the end.
#ifndef PB_VECTOR_H
#define PB_VECTOR_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbVector;

PB_API const struct pbSort *pbVectorSort( void );
PB_API struct pbVector *pbVectorRetain( const struct pbVector *obj );
PB_API void pbVectorRelease( const struct pbVector *obj );
PB_API struct pbObj *pbVectorObj( const struct pbVector *obj );
PB_API struct pbVector *pbVectorFrom( struct pbObj *obj );
PB_API struct pbString *pbVectorToString( const struct pbVector *obj );
PB_API pbInt pbVectorCompare( const struct pbVector *a, const struct pbVector *b );
PB_API pbBool pbVectorEquals( const struct pbVector *a, const struct pbVector *b );

PB_API struct pbVector *pbVectorCreate( void );
PB_API struct pbVector *pbVectorCreateFrom( const struct pbVector *source );
PB_API pbInt pbVectorLength( const struct pbVector *vector );
PB_API struct pbObj *pbVectorObjAt( const struct pbVector *vector, pbInt index );
PB_API void pbVectorSetObjAt( struct pbVector **vector, pbInt index, const struct pbObj *obj );
PB_API void pbVectorDelAt( struct pbVector **vector, pbInt index );
// index 0..length
PB_API void pbVectorInsert( struct pbVector **vector, pbInt index, const struct pbObj *obj );
PB_API void pbVectorAppend( struct pbVector **vector, const struct pbObj *obj );
PB_API void pbVectorPrepend( struct pbVector **vector, const struct pbObj *obj );
PB_API void pbVectorClear( struct pbVector **vector );
// True for an empty vector.
PB_API pbBool pbVectorContainsOnly( const struct pbVector *vector, const struct pbSort *sort );

PB_DECLS_END

#endif
