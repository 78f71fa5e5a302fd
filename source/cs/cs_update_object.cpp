// csUpdateObject: the name of a sort with a configuration.
#include "cs/cs_update_object.h"

#include "cs/cs_update_internal.h"

PB_OBJECT_DEFINE( csUpdateObject, cs___sort_CS_UPDATE_OBJECT )

extern "C" struct pbString *csUpdateObjectSortName( const struct csUpdateObject *object )
{
    PB_ASSERT( object );
    return object->sortName.share();
}

extern "C" struct pbStore *csUpdateObjectConfig( const struct csUpdateObject *object )
{
    PB_ASSERT( object );
    return object->optionalConfig ? object->optionalConfig.share() : pbStoreCreate();
}

extern "C" void csUpdateObjectSetConfig( struct csUpdateObject **object, const struct pbStore *config )
{
    PB_ASSERT( object );
    PB_ASSERT( *object );
    PB_ASSERT( config );
    pb::edit( object ).optionalConfig = pb::share( config );
}
