// pbRangeMap: objects keyed by disjoint integer ranges, a value. Setting a range replaces what it overlaps and leaves
// the rest of the ranges that it cuts.
#ifndef PB_RANGE_MAP_H
#define PB_RANGE_MAP_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbRangeMap;

PB_API const struct pbSort *pbRangeMapSort( void );
PB_API struct pbRangeMap *pbRangeMapRetain( const struct pbRangeMap *obj );
PB_API void pbRangeMapRelease( const struct pbRangeMap *obj );
PB_API struct pbObj *pbRangeMapObj( const struct pbRangeMap *obj );
PB_API struct pbRangeMap *pbRangeMapFrom( struct pbObj *obj );
PB_API struct pbString *pbRangeMapToString( const struct pbRangeMap *obj );
PB_API pbInt pbRangeMapCompare( const struct pbRangeMap *a, const struct pbRangeMap *b );
PB_API pbBool pbRangeMapEquals( const struct pbRangeMap *a, const struct pbRangeMap *b );

PB_API struct pbRangeMap *pbRangeMapCreate( void );
// first <= last, both inclusive
PB_API void pbRangeMapSet( struct pbRangeMap **map, pbInt first, pbInt last, const struct pbObj *value );
// The value of the range that holds the key, or null.
PB_API struct pbObj *pbRangeMapValue( const struct pbRangeMap *map, pbInt key );

PB_DECLS_END

#endif
