// What the module's start-up needs of the timers. In-tree only.
#ifndef PB_TIMER_HPP
#define PB_TIMER_HPP

namespace pb {

// Starts the timer thread, which the first schedule would do otherwise. False when the system refuses it.
bool timerTryStart();

} // namespace pb

#endif
