// pbSignalable.
#include "pb/pb_signalable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_wake.hpp"

PB_SORT_DECLARE( pb___sort_PB_SIGNALABLE )

struct pbSignalable final : pb::Object<struct pbSignalable, pb___sort_PB_SIGNALABLE> {
    void ( *const wake )( struct pbObj *target );
    const pb::Ref<pbObj> target;

    pbSignalable( void ( *wake )( struct pbObj * ), struct pbObj *target )
        : wake( wake ), target( pb::share( target ) )
    {}
};

PB_OBJECT_DEFINE( pbSignalable, pb___sort_PB_SIGNALABLE )

extern "C" {

struct pbSignalable *pb___SignalableCreate( void ( *wake )( struct pbObj *target ), struct pbObj *target )
{
    PB_ASSERT( wake );
    PB_ASSERT( target );
    return new pbSignalable( wake, target );
}

struct pbSignalable *pbSignalableCreateBarrier( struct pbBarrier *barrier )
{
    PB_ASSERT( barrier );
    return new pbSignalable( []( struct pbObj *target ) { pbBarrierUnblock( pbBarrierFrom( target ) ); },
                             pbBarrierObj( barrier ) );
}

void pbSignalableSignal( struct pbSignalable *signalable )
{
    PB_ASSERT( signalable );
    signalable->wake( signalable->target.get() );
}

} // extern "C"
