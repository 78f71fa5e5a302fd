// pbRegion: a reader/writer lock that starves neither side; not recursive.
#ifndef PB_REGION_H
#define PB_REGION_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbRegion;

PB_API const struct pbSort *pbRegionSort( void );
PB_API struct pbRegion *pbRegionRetain( const struct pbRegion *obj );
PB_API void pbRegionRelease( const struct pbRegion *obj );
PB_API struct pbObj *pbRegionObj( const struct pbRegion *obj );
PB_API struct pbRegion *pbRegionFrom( struct pbObj *obj );
PB_API struct pbString *pbRegionToString( const struct pbRegion *obj );
PB_API pbInt pbRegionCompare( const struct pbRegion *a, const struct pbRegion *b );
PB_API pbBool pbRegionEquals( const struct pbRegion *a, const struct pbRegion *b );

PB_API struct pbRegion *pbRegionCreate( void );
PB_API void pbRegionEnterShared( struct pbRegion *region );
PB_API void pbRegionEnterExclusive( struct pbRegion *region );
PB_API void pbRegionLeave( struct pbRegion *region );

PB_DECLS_END

#endif
