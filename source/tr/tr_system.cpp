// The trace system: the one listener, and the two switches that tracing code tests before it formats anything.
#include "tr/tr_system.h"

#include "pb/pb_monitor.hpp"
#include "tr/tr.hpp"
#include "tr/tr_system_internal.h"

#include <ctime>

std::atomic<bool> tr___Listening{ false };

namespace {

using Listener = void ( * )( const struct trEvent *event, void *context );

// Set while high-volume messages are wanted and a listener is there, so that the question is one load.
std::atomic<bool> highVolume{ false };

pb::Monitor monitor;
Listener listener PB_GUARDED_BY( monitor ) = nullptr;
void *listenerContext PB_GUARDED_BY( monitor ) = nullptr;
bool highVolumeWanted PB_GUARDED_BY( monitor ) = false;

void publishSwitches() PB_REQUIRES( monitor )
{
    tr___Listening.store( listener, std::memory_order_relaxed );
    highVolume.store( listener && highVolumeWanted, std::memory_order_relaxed );
}

pbInt now()
{
    timespec time{};
    (void)clock_gettime( CLOCK_REALTIME, &time ); // fails for unknown clocks only
    return pbInt{ time.tv_sec } * 1'000'000'000 + time.tv_nsec;
}

} // namespace

extern "C" void tr___SystemEmit( struct trEvent *event )
{
    // Under the monitor: calls come one at a time in the order of their stamps, and none runs after the removal.
    pb::Guard guard( monitor );
    if ( !listener )
        return;
    event->time = now();
    listener( event, listenerContext );
}

extern "C" void trSystemSetListener( void ( *newListener )( const struct trEvent *event, void *context ),
                                     void *context )
{
    pb::Guard guard( monitor );
    listener = newListener;
    listenerContext = context;
    publishSwitches();
}

extern "C" pbBool trSystemAcceptsHighVolumeMessages( void ) { return highVolume.load( std::memory_order_relaxed ); }

extern "C" void trSystemSetAcceptsHighVolumeMessages( pbBool accepts )
{
    pb::Guard guard( monitor );
    highVolumeWanted = accepts;
    publishSwitches();
}
