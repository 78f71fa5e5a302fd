// prScheduler: a pool of threads and its queue of processes that are ready to run; the default one and each domain's.
#ifndef PR_SCHEDULER_HPP
#define PR_SCHEDULER_HPP

#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_thread.h"

#include <array>
#include <vector>

struct prProcess;

PB_SORT_DECLARE( pr___sort_PR_SCHEDULER )

namespace pr {

constexpr int priorities = 10;

// Processes of one priority, first in first out, linked through the processes: queueing allocates nothing.
class ReadyList {
public:
    bool empty() const noexcept { return !first_; }
    void push( pb::Ref<struct prProcess> process ) noexcept;
    pb::Ref<struct prProcess> pop() noexcept;

private:
    pb::Ref<struct prProcess> first_;
    struct prProcess *last_ = nullptr; // behind first_
};

} // namespace pr

struct prScheduler final : pb::Object<struct prScheduler, pr___sort_PR_SCHEDULER> {
    prScheduler( const char *threadName, pbInt threadCount, pbInt threadPriority )
        : threadName_( threadName ), threadCount_( threadCount ), threadPriority_( threadPriority )
    {
    }

    // Starts the threads unless they run. The number that runs; fewer than asked for when the system refuses.
    pbInt start();
    // Waits for the runs under way and joins the threads. What is still queued is dropped without a run, and so is
    // everything that comes later. Not from a thread of this scheduler.
    void stop();
    // Keeps a reference to the process until it has run or was dropped. False after stop. Starts the threads if need be;
    // wakes one, or leaves that to the flush of a thread that holds wakes back.
    bool enqueue( struct prProcess *process );
    // Blocks until nothing is queued or running.
    void quiesce();

private:
    void startUnlessStopped();
    pbInt spawn() PB_REQUIRES( lifeMonitor_ );
    static void threadFunction( struct pbObj *self );
    void work();
    // Ends the calling thread's last run, which may ask for another, and waits for the next; null to end the thread.
    pb::Ref<struct prProcess> next( bool first, pb::Ref<struct prProcess> again );
    static void wakeHeldBack( struct pbObj *self );
    // True when a sleeping thread is now owed a wake: the caller wakes it after leaving the monitor.
    bool oweWake() PB_REQUIRES( monitor_ );
    void push( pb::Ref<struct prProcess> process ) PB_REQUIRES( monitor_ );
    pb::Ref<struct prProcess> pop() PB_REQUIRES( monitor_ );

    // fixed
    const char *const threadName_;
    const pbInt threadCount_;
    const pbInt threadPriority_;

    // Serialises start and stop; taken before monitor_.
    pb::Monitor lifeMonitor_;
    std::vector<pb::Ref<struct pbThread>> threads_ PB_GUARDED_BY( lifeMonitor_ );
    std::atomic<bool> started_{ false };

    pb::Monitor monitor_;
    pb::Condition work_, quiet_;
    std::array<pr::ReadyList, pr::priorities> ready_ PB_GUARDED_BY( monitor_ );
    unsigned readyMask_ PB_GUARDED_BY( monitor_ ) = 0; // bit p: ready_[p] is not empty
    pbInt running_ PB_GUARDED_BY( monitor_ ) = 0;
    pbInt sleeping_ PB_GUARDED_BY( monitor_ ) = 0;
    pbInt wakesOwed_ PB_GUARDED_BY( monitor_ ) = 0; // sleepers that were told to wake and have not yet
    pbInt quiescing_ PB_GUARDED_BY( monitor_ ) = 0;
    bool stopped_ PB_GUARDED_BY( monitor_ ) = false;
};

extern "C" {
// The scheduler of processes without a domain. Never destroyed: processes may outlive the module.
struct prScheduler *pr___SchedulerDefault( void );
// Borrowed.
struct prScheduler *pr___DomainScheduler( const struct prDomain *domain );
}

#endif
