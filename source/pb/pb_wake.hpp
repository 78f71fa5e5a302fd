// What wakes and when, for the libraries above: signalables and alertables of their own kind, wakes that are held back
// for a batch, and the clock that tests drive. In-tree only.
#ifndef PB_WAKE_HPP
#define PB_WAKE_HPP

#include "pb/pb_alertable.h"
#include "pb/pb_object.hpp"
#include "pb/pb_signalable.h"

extern "C" {
// wake( target ) must neither run foreign code nor take a lock under which anything is signalled. The target is
// retained.
PB_API struct pbSignalable *pb___SignalableCreate( void ( *wake )( struct pbObj *target ), struct pbObj *target );
PB_API struct pbAlertable *pb___AlertableCreate( void ( *wake )( struct pbObj *target ), struct pbObj *target );

// Between Begin and End of the calling thread, Unblock of a barrier changes its count at once but holds back the system
// call that wakes sleepers until Flush (each barrier once) or the outermost End. A thread must flush before it sleeps;
// passing a barrier, entering a region, joining a thread and pbSleep do.
PB_API void pb___WakesHoldBegin( void );
PB_API void pb___WakesHoldEnd( void );
PB_API void pb___WakesFlush( void );
// For what else wakes threads: true when the calling thread holds wakes back, and then Flush calls wake( target ). That
// must not hold back any wake itself.
PB_API pbBool pb___WakesTryHold( void ( *wake )( struct pbObj *target ), struct pbObj *target );

// The clock behind pbTimestamp and the timers. While driven it stands still; Advance moves it and returns after every
// timer that came due has signalled.
PB_API void pb___ClockDrive( pbBool driven );
PB_API void pb___ClockAdvance( pbInt milliseconds );

// Joins the timer thread, if one was started. Called by the module's shut-down; timers can be used again afterwards.
PB_API void pb___TimerShutdown( void );
}

namespace pb {

// Holds back wakes for a scope. Declared before a monitor's guard, the wakes happen after the monitor was left: a
// thread that is woken earlier would only find it taken.
class WakeHold {
public:
    WakeHold() noexcept { pb___WakesHoldBegin(); }
    ~WakeHold() { pb___WakesHoldEnd(); }
    WakeHold( const WakeHold & ) = delete;
    WakeHold &operator=( const WakeHold & ) = delete;
};

} // namespace pb

#endif
