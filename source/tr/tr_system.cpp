// The trace system: the listeners, and the two switches that tracing code tests before it formats anything.
#include "tr/tr_system.h"

#include "pb/pb_monitor.hpp"
#include "tr/tr.hpp"
#include "tr/tr_system_internal.h"

#include <algorithm>
#include <ctime>
#include <vector>

std::atomic<bool> tr___Listening{ false };

namespace {

using Listener = void ( * )( const struct trEvent *event, void *context );

// Set while high-volume messages are wanted and a listener is there, so that the question is one load.
std::atomic<bool> highVolume{ false };

struct Ear {
    Listener listener = nullptr; // null: nobody
    void *context = nullptr;
    bool highVolumeWanted = false;

    void hear( const struct trEvent &event, bool isHighVolume ) const
    {
        if ( listener && ( highVolumeWanted || !isHighVolume ) )
            listener( &event, context );
    }
};

pb::Monitor monitor;
Ear mainEar PB_GUARDED_BY( monitor );
std::vector<Ear> furtherEars PB_GUARDED_BY( monitor );

void publishSwitches() PB_REQUIRES( monitor )
{
    const auto wants = []( const Ear &ear ) { return ear.listener && ear.highVolumeWanted; };
    tr___Listening.store( mainEar.listener || !furtherEars.empty(), std::memory_order_relaxed );
    highVolume.store( wants( mainEar ) || std::any_of( furtherEars.begin(), furtherEars.end(), wants ),
                      std::memory_order_relaxed );
}

auto findEar( Listener listener, void *context ) PB_REQUIRES( monitor )
{
    return std::find_if( furtherEars.begin(), furtherEars.end(), [&]( const Ear &ear ) {
        return ear.listener == listener && ear.context == context;
    } );
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
    event->time = now();
    // What carries a payload is written by those alone who have asked whether high volume is wanted, or always.
    const bool isHighVolume = event->kind == TR_EVENT_MESSAGE && highVolume.load( std::memory_order_relaxed );
    mainEar.hear( *event, isHighVolume );
    for ( const Ear &ear : furtherEars )
        ear.hear( *event, isHighVolume );
}

extern "C" pbInt tr___SystemNow( void )
{
    return now();
}

extern "C" void trSystemSetListener( void ( *newListener )( const struct trEvent *event, void *context ),
                                     void *context )
{
    pb::Guard guard( monitor );
    mainEar.listener = newListener;
    mainEar.context = context;
    publishSwitches();
}

extern "C" void trSystemAddListener( void ( *listener )( const struct trEvent *event, void *context ), void *context,
                                     pbBool acceptsHighVolumeMessages )
{
    PB_ASSERT( listener );
    pb::Guard guard( monitor );
    const auto known = findEar( listener, context );
    Ear &ear = known != furtherEars.end() ? *known : furtherEars.emplace_back();
    ear = { listener, context, acceptsHighVolumeMessages != 0 };
    publishSwitches();
}

extern "C" void trSystemDelListener( void ( *listener )( const struct trEvent *event, void *context ), void *context )
{
    PB_ASSERT( listener );
    pb::Guard guard( monitor );
    if ( const auto known = findEar( listener, context ); known != furtherEars.end() )
        furtherEars.erase( known );
    publishSwitches();
}

extern "C" pbBool trSystemAcceptsHighVolumeMessages( void ) { return highVolume.load( std::memory_order_relaxed ); }

extern "C" void trSystemSetAcceptsHighVolumeMessages( pbBool accepts )
{
    pb::Guard guard( monitor );
    mainEar.highVolumeWanted = accepts;
    publishSwitches();
}
