// pbAlertable.
#include "pb/pb_alertable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_wake.hpp"

PB_SORT_DECLARE( pb___sort_PB_ALERTABLE )

struct pbAlertable final : pb::Object<struct pbAlertable, pb___sort_PB_ALERTABLE> {
    void ( *const wake )( struct pbObj *target );
    const pb::Ref<pbObj> target;

    pbAlertable( void ( *wake )( struct pbObj * ), struct pbObj *target )
        : wake( wake ), target( pb::share( target ) )
    {}
};

PB_OBJECT_DEFINE( pbAlertable, pb___sort_PB_ALERTABLE )

extern "C" {

struct pbAlertable *pb___AlertableCreate( void ( *wake )( struct pbObj *target ), struct pbObj *target )
{
    PB_ASSERT( wake );
    PB_ASSERT( target );
    return new pbAlertable( wake, target );
}

struct pbAlertable *pbAlertableCreateBarrier( struct pbBarrier *barrier )
{
    PB_ASSERT( barrier );
    return new pbAlertable( []( struct pbObj *target ) { pbBarrierUnblock( pbBarrierFrom( target ) ); },
                             pbBarrierObj( barrier ) );
}

void pbAlertableAlert( struct pbAlertable *alertable )
{
    PB_ASSERT( alertable );
    alertable->wake( alertable->target.get() );
}

} // extern "C"
