// csUpdateObjects: names with objects.
#include "cs/cs_update_objects.h"

#include "cs/cs_update_internal.h"

PB_OBJECT_DEFINE( csUpdateObjects, cs___sort_CS_UPDATE_OBJECTS )

extern "C" pbInt csUpdateObjectsLength( const struct csUpdateObjects *objects )
{
    PB_ASSERT( objects );
    return static_cast<pbInt>( objects->entries.size() );
}

extern "C" struct pbString *csUpdateObjectsNameAt( const struct csUpdateObjects *objects, pbInt index )
{
    PB_ASSERT( objects );
    PB_ASSERT( index >= 0 && index < csUpdateObjectsLength( objects ) );
    return objects->entries[static_cast<size_t>( index )].first.share();
}

extern "C" struct csUpdateObject *csUpdateObjectsObjectAt( const struct csUpdateObjects *objects, pbInt index )
{
    PB_ASSERT( objects );
    PB_ASSERT( index >= 0 && index < csUpdateObjectsLength( objects ) );
    return objects->entries[static_cast<size_t>( index )].second.share();
}
