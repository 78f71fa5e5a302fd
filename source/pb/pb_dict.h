// pbDict: objects keyed by objects, a value. Keys compare with pbObjCompare and iterate in ascending order.
// Comparison is of content: keys, then values.
#ifndef PB_DICT_H
#define PB_DICT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbDict;
struct pbString;
struct pbVector;

PB_API const struct pbSort *pbDictSort( void );
PB_API struct pbDict *pbDictRetain( const struct pbDict *obj );
PB_API void pbDictRelease( const struct pbDict *obj );
PB_API struct pbObj *pbDictObj( const struct pbDict *obj );
PB_API struct pbDict *pbDictFrom( struct pbObj *obj );
PB_API struct pbString *pbDictToString( const struct pbDict *obj );
PB_API pbInt pbDictCompare( const struct pbDict *a, const struct pbDict *b );
PB_API pbBool pbDictEquals( const struct pbDict *a, const struct pbDict *b );

PB_API struct pbDict *pbDictCreate( void );
PB_API struct pbDict *pbDictCreateFrom( const struct pbDict *source );
PB_API pbInt pbDictLength( const struct pbDict *dict );
// Replaces the value of a key that is already there.
PB_API void pbDictSetObjKey( struct pbDict **dict, const struct pbObj *key, const struct pbObj *value );
PB_API struct pbObj *pbDictObjKey( const struct pbDict *dict, const struct pbObj *key ); // or null
PB_API pbBool pbDictHasObjKey( const struct pbDict *dict, const struct pbObj *key );
PB_API void pbDictDelObjKey( struct pbDict **dict, const struct pbObj *key ); // absent: nothing happens
// Ascending by key, index 0..length - 1.
PB_API struct pbObj *pbDictKeyAt( const struct pbDict *dict, pbInt index );
PB_API struct pbObj *pbDictValueAt( const struct pbDict *dict, pbInt index );
PB_API void pbDictDelAt( struct pbDict **dict, pbInt index );
PB_API struct pbVector *pbDictKeysVector( const struct pbDict *dict );
PB_API struct pbVector *pbDictValuesVector( const struct pbDict *dict );

// The same over boxed integers and strings as keys.
PB_API void pbDictSetIntKey( struct pbDict **dict, pbInt key, const struct pbObj *value );
PB_API struct pbObj *pbDictIntKey( const struct pbDict *dict, pbInt key );
PB_API void pbDictDelIntKey( struct pbDict **dict, pbInt key );
PB_API void pbDictSetStringKey( struct pbDict **dict, const struct pbString *key, const struct pbObj *value );
PB_API struct pbObj *pbDictStringKey( const struct pbDict *dict, const struct pbString *key );
PB_API void pbDictDelStringKey( struct pbDict **dict, const struct pbString *key );

PB_DECLS_END

#endif
