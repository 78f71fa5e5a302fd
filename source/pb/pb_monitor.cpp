// pbMonitor and the ranks that order the monitors inside objects.
#include "pb/pb_monitor.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"

#include <algorithm>
#include <array>

PB_SORT_DECLARE( pb___sort_PB_MONITOR )

struct pbMonitor final : pb::Object<struct pbMonitor, pb___sort_PB_MONITOR> {
    std::mutex mutex;
};

PB_OBJECT_DEFINE( pbMonitor, pb___sort_PB_MONITOR )

namespace {

// The ranks that the calling thread holds. Ranks ascend strictly, so there are never more than there are ranks.
struct HeldRanks {
    std::array<int, 16> ranks;
    size_t count;

    int highest() const { return count ? *std::max_element( ranks.begin(), ranks.begin() + count ) : 0; }
};
constinit thread_local HeldRanks heldRanks{};

} // namespace

extern "C" {

void pb___MonitorRankEnter( int rank )
{
    HeldRanks &held = heldRanks;
    PB_ASSERT_TEXT( rank > held.highest(), "monitors are taken in ascending rank" );
    PB_ASSERT( held.count < held.ranks.size() );
    held.ranks[held.count++] = rank;
}

void pb___MonitorRankLeave( int rank )
{
    // Monitors may be left in any order.
    HeldRanks &held = heldRanks;
    const auto end = held.ranks.begin() + held.count, found = std::find( held.ranks.begin(), end, rank );
    PB_ASSERT_TEXT( found != end, "a monitor is left by the thread that entered it" );
    *found = held.ranks[--held.count];
}

struct pbMonitor *pbMonitorCreate( void ) { return new pbMonitor; }

void pbMonitorEnter( struct pbMonitor *monitor )
{
    PB_ASSERT( monitor );
    monitor->mutex.lock();
}

void pbMonitorLeave( struct pbMonitor *monitor )
{
    PB_ASSERT( monitor );
    monitor->mutex.unlock();
}

} // extern "C"
