// The clock behind pbTimestamp and the timers: the monotonic one, or one that tests drive. In-tree only.
#ifndef PB_CLOCK_HPP
#define PB_CLOCK_HPP

#include "pb/pb_base.h"

#include <ctime>

namespace pb {

// Nanoseconds of the clock that pbTimestamp shows. It never goes back, also not when it is driven or let go.
pbInt clockNow() noexcept;
bool clockIsDriven() noexcept;
// Nanoseconds from the clock's to the monotonic clock's count of the same moment, while it is not driven.
pbInt clockToMonotonic( pbInt now ) noexcept;

// The clock stops, or runs on from where it stands.
void clockDrive( bool driven ) noexcept;
void clockMove( pbInt nanoseconds ) noexcept;

// The monotonic clock that many milliseconds, >= 0, from now, for system calls that take a deadline. Never driven.
timespec monotonicDeadline( pbInt milliseconds ) noexcept;

} // namespace pb

#endif
