// The object behind prProcess, and what the scheduler does with it.
//
// The state is a word of flags that decides who may touch the process:
//   scheduled   a run is asked for. Whoever sets it while nothing else is set owes the process to the queue.
//   running     one thread is inside the function; "scheduled", when set meanwhile, is taken up by it afterwards.
//   halted      no run starts any more. Halting sets "scheduled" too, so that the process passes through a scheduler
//               thread once more, which ends it. The argument is never dropped in the thread that halts: that thread may
//               hold monitors that live in the argument. Nor is it in the thread that releases a process which never
//               halted, for the same reason: a halted successor takes it through the scheduler.
// So at any time the queue, one thread or nobody holds the process, and its end happens exactly once.
#ifndef PR_PROCESS_INTERNAL_HPP
#define PR_PROCESS_INTERNAL_HPP

#include "pb/pb_signal.h"
#include "pb/pb_string.hpp"
#include "pr/pr_process.h"
#include "pr/pr_scheduler.hpp"

PB_SORT_DECLARE( pr___sort_PR_PROCESS )

struct prProcess final : pb::Object<struct prProcess, pr___sort_PR_PROCESS> {
    static constexpr unsigned scheduled = 1, running = 2, halted = 4;

    // fixed
    const pb::Ref<struct prScheduler> scheduler;
    const pbInt priority;
    void ( *const function )( struct pbObj *optionalArgument );
    const pb::String name;
    const pb::Ref<struct pbSignal> end = pb::adopt( pbSignalCreate() );

    std::atomic<unsigned> state{ 0 };
    pb::Ref<struct pbObj> argument;     // fixed until the end, which drops it
    pb::Ref<struct prProcess> nextReady; // of the scheduler's queue, under its monitor

    prProcess( struct prScheduler *ownScheduler, pbInt ownPriority, void ( *ownFunction )( struct pbObj * ),
               pb::Ref<struct pbObj> ownArgument, pb::String ownName )
        : scheduler( pb::share( ownScheduler ) ), priority( ownPriority ), function( ownFunction ),
          name( std::move( ownName ) ), argument( std::move( ownArgument ) )
    {
    }

    ~prProcess();

    pb::String toString() const { return name; }

    void schedule();
    void halt();
    // For the thread that took the process from the queue: runs or ends it. True: queue it again.
    bool run();
    // Instead of run, when no thread will: forgets the request, or ends the process if it has halted.
    void drop();
    // Releases it, for a scheduler thread between two runs, which holds no monitor: when nobody else has the process,
    // its argument goes here and needs no successor.
    static void retire( pb::Ref<struct prProcess> process );

private:
    void finish();
    void enqueue();
};

#endif
