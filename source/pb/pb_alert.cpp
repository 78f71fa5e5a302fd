// pbAlert: a level and the set of what it wakes. For the lock see pbSignal.
#include "pb/pb_alert.h"
#include "pb/pb_alertable.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_observer_set.hpp"
#include "pb/pb_wake.hpp"

PB_SORT_DECLARE( pb___sort_PB_ALERT )

struct pbAlert final : pb::Object<struct pbAlert, pb___sort_PB_ALERT> {
    std::atomic<bool> set{ false }; // turns true under the monitor
    pb::Monitor monitor;
    pb::ObserverSet alertables PB_GUARDED_BY( monitor );
};

PB_OBJECT_DEFINE( pbAlert, pb___sort_PB_ALERT )

extern "C" {

struct pbAlert *pbAlertCreate( void ) { return new pbAlert; }

void pbAlertSet( struct pbAlert *alert )
{
    PB_ASSERT( alert );
    if ( alert->set.load( std::memory_order_acquire ) )
        return;
    const pb::WakeHold hold;
    const pb::Guard guard( alert->monitor );
    if ( alert->set.exchange( true, std::memory_order_acq_rel ) )
        return;
    for ( const auto &alertable : alert->alertables )
        pbAlertableAlert( pbAlertableFrom( alertable.get() ) );
}

void pbAlertUnset( struct pbAlert *alert )
{
    PB_ASSERT( alert );
    // Without the monitor: nobody is woken, and an Add that still sees it set alerts once too often, never too rarely.
    if ( alert->set.load( std::memory_order_acquire ) )
        alert->set.store( false, std::memory_order_release );
}

pbBool pbAlertIsSet( const struct pbAlert *alert )
{
    PB_ASSERT( alert );
    return alert->set.load( std::memory_order_acquire );
}

void pbAlertAddAlertable( struct pbAlert *alert, struct pbAlertable *alertable )
{
    PB_ASSERT( alert );
    PB_ASSERT( alertable );
    const pb::WakeHold hold;
    const pb::Guard guard( alert->monitor );
    alert->alertables.add( pbAlertableObj( alertable ) );
    if ( alert->set.load( std::memory_order_acquire ) )
        pbAlertableAlert( alertable );
}

void pbAlertDelAlertable( struct pbAlert *alert, struct pbAlertable *alertable )
{
    PB_ASSERT( alert );
    PB_ASSERT( alertable );
    pb::Ref<pbObj> removed;
    const pb::Guard guard( alert->monitor );
    removed = alert->alertables.remove( pbAlertableObj( alertable ) );
}

} // extern "C"
