// pbPriorityMap: objects ordered by an integer priority, each at most once, a value. Equal priorities keep the order
// in which they were set.
#ifndef PB_PRIORITY_MAP_H
#define PB_PRIORITY_MAP_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbPriorityMap;

PB_API const struct pbSort *pbPriorityMapSort( void );
PB_API struct pbPriorityMap *pbPriorityMapRetain( const struct pbPriorityMap *obj );
PB_API void pbPriorityMapRelease( const struct pbPriorityMap *obj );
PB_API struct pbObj *pbPriorityMapObj( const struct pbPriorityMap *obj );
PB_API struct pbPriorityMap *pbPriorityMapFrom( struct pbObj *obj );
PB_API struct pbString *pbPriorityMapToString( const struct pbPriorityMap *obj );
PB_API pbInt pbPriorityMapCompare( const struct pbPriorityMap *a, const struct pbPriorityMap *b );
PB_API pbBool pbPriorityMapEquals( const struct pbPriorityMap *a, const struct pbPriorityMap *b );

PB_API struct pbPriorityMap *pbPriorityMapCreate( void );
PB_API pbInt pbPriorityMapLength( const struct pbPriorityMap *map );
// Moves a key that is already there. Keys compare with pbObjCompare.
PB_API void pbPriorityMapSet( struct pbPriorityMap **map, const struct pbObj *key, pbInt priority );
PB_API void pbPriorityMapDel( struct pbPriorityMap **map, const struct pbObj *key );
// Ascending by priority, index 0..length - 1.
PB_API struct pbObj *pbPriorityMapKeyAt( const struct pbPriorityMap *map, pbInt index );
PB_API pbInt pbPriorityMapPriorityAt( const struct pbPriorityMap *map, pbInt index );

PB_DECLS_END

#endif
