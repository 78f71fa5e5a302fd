// pbSignal: a latch and the set of what it wakes.
// The lock is a leaf. Waking under it is what makes Del final: after Del no notification can start. References are
// never dropped under it, since the last one may run a destructor that comes back here. Nor does an assertion drop
// those to what it woke: whoever asserts may hold monitors. They go with the signal or a Del.
#include "pb/pb_signal.h"
#include "pb/pb_barrier.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_observer_set.hpp"
#include "pb/pb_wake.hpp"

PB_SORT_DECLARE( pb___sort_PB_SIGNAL )

struct pbSignal final : pb::Object<struct pbSignal, pb___sort_PB_SIGNAL> {
    std::atomic<bool> asserted{ false }; // changes under the monitor, is read without
    pb::Monitor monitor;
    pb::ObserverSet observers PB_GUARDED_BY( monitor ); // signalables and barriers; fixed but for Del once asserted
};

PB_OBJECT_DEFINE( pbSignal, pb___sort_PB_SIGNAL )

namespace {

void wake( pbObj *observer )
{
    if ( pbObjSort( observer ) == pbBarrierSort() )
        pbBarrierUnblock( pbBarrierFrom( observer ) );
    else
        pbSignalableSignal( pbSignalableFrom( observer ) );
}

void add( pbSignal &signal, pbObj *observer )
{
    if ( !signal.asserted.load( std::memory_order_acquire ) ) {
        const pb::Guard guard( signal.monitor );
        if ( !signal.asserted.load( std::memory_order_relaxed ) ) {
            signal.observers.add( observer );
            return;
        }
    }
    wake( observer );
}

void del( pbSignal &signal, pbObj *observer )
{
    pb::Ref<pbObj> removed;
    const pb::Guard guard( signal.monitor );
    removed = signal.observers.remove( observer );
}

} // namespace

extern "C" {

struct pbSignal *pbSignalCreate( void ) { return new pbSignal; }

void pbSignalAssert( struct pbSignal *signal )
{
    PB_ASSERT( signal );
    if ( signal->asserted.load( std::memory_order_acquire ) )
        return;
    const pb::WakeHold hold;
    const pb::Guard guard( signal->monitor );
    if ( signal->asserted.exchange( true, std::memory_order_acq_rel ) )
        return;
    for ( const auto &observer : signal->observers )
        wake( observer.get() );
}

pbBool pbSignalAsserted( const struct pbSignal *signal )
{
    PB_ASSERT( signal );
    return signal->asserted.load( std::memory_order_acquire );
}

void pbSignalAddSignalable( struct pbSignal *signal, struct pbSignalable *signalable )
{
    PB_ASSERT( signal );
    PB_ASSERT( signalable );
    add( *signal, pbSignalableObj( signalable ) );
}

void pbSignalDelSignalable( struct pbSignal *signal, struct pbSignalable *signalable )
{
    PB_ASSERT( signal );
    PB_ASSERT( signalable );
    del( *signal, pbSignalableObj( signalable ) );
}

void pbSignalAddBarrier( struct pbSignal *signal, struct pbBarrier *barrier )
{
    PB_ASSERT( signal );
    PB_ASSERT( barrier );
    add( *signal, pbBarrierObj( barrier ) );
}

void pbSignalDelBarrier( struct pbSignal *signal, struct pbBarrier *barrier )
{
    PB_ASSERT( signal );
    PB_ASSERT( barrier );
    del( *signal, pbBarrierObj( barrier ) );
}

} // extern "C"
