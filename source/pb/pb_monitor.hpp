// pb::Monitor: the mutex inside objects, a capability of Clang's thread-safety analysis, with a rank that debug builds
// check: a thread takes monitors in ascending rank only. docs/threads.md lists the ranks. In-tree only.
#ifndef PB_MONITOR_HPP
#define PB_MONITOR_HPP

#include "pb/pb_assert.hpp"

#include <condition_variable>
#include <mutex>

#if defined( __clang__ )
#define PB_THREAD_ANNOTATION( x ) __attribute__( ( x ) )
#else
#define PB_THREAD_ANNOTATION( x )
#endif

#define PB_CAPABILITY( name ) PB_THREAD_ANNOTATION( capability( name ) )
#define PB_SCOPED_CAPABILITY PB_THREAD_ANNOTATION( scoped_lockable )
#define PB_GUARDED_BY( monitor ) PB_THREAD_ANNOTATION( guarded_by( monitor ) )
#define PB_REQUIRES( ... ) PB_THREAD_ANNOTATION( requires_capability( __VA_ARGS__ ) )
#define PB_EXCLUDES( ... ) PB_THREAD_ANNOTATION( locks_excluded( __VA_ARGS__ ) )
#define PB_ACQUIRE( ... ) PB_THREAD_ANNOTATION( acquire_capability( __VA_ARGS__ ) )
#define PB_RELEASE( ... ) PB_THREAD_ANNOTATION( release_capability( __VA_ARGS__ ) )
#define PB_NO_THREAD_SAFETY_ANALYSIS PB_THREAD_ANNOTATION( no_thread_safety_analysis )

extern "C" {
// Keep the calling thread's list of held ranks; aborts on descending order. Debug builds only.
PB_API void pb___MonitorRankEnter( int rank );
PB_API void pb___MonitorRankLeave( int rank );
}

namespace pb {

class PB_CAPABILITY( "monitor" ) Monitor {
public:
    // rank 0: not ordered against others (a leaf that calls nothing).
    explicit Monitor( int rank = 0 ) noexcept : rank_( rank ) {}
    Monitor( const Monitor & ) = delete;
    Monitor &operator=( const Monitor & ) = delete;

    void enter() PB_ACQUIRE() PB_NO_THREAD_SAFETY_ANALYSIS
    {
#ifndef NDEBUG
        if ( rank_ )
            pb___MonitorRankEnter( rank_ );
#endif
        mutex_.lock();
    }
    void leave() PB_RELEASE() PB_NO_THREAD_SAFETY_ANALYSIS
    {
        // Nothing of the monitor is touched after the unlock: whoever enters next may destroy it.
#ifndef NDEBUG
        if ( rank_ )
            pb___MonitorRankLeave( rank_ );
#endif
        mutex_.unlock();
    }
    // For condition variables beside a monitor.
    std::mutex &native() noexcept { return mutex_; }

private:
    std::mutex mutex_;
    [[maybe_unused]] const int rank_;
};

// Holds a monitor for a scope.
class PB_SCOPED_CAPABILITY Guard {
public:
    explicit Guard( Monitor &monitor ) PB_ACQUIRE( monitor ) : monitor_( monitor ) { monitor_.enter(); }
    ~Guard() PB_RELEASE() { monitor_.leave(); }
    Guard( const Guard & ) = delete;
    Guard &operator=( const Guard & ) = delete;

private:
    Monitor &monitor_;
};

// Waits beside a monitor that the caller holds; spurious wakes are possible, so wait in a loop.
class Condition {
public:
    void wait( Monitor &monitor ) PB_REQUIRES( monitor ) PB_NO_THREAD_SAFETY_ANALYSIS
    {
        std::unique_lock<std::mutex> lock( monitor.native(), std::adopt_lock );
        condition_.wait( lock );
        lock.release(); // the caller goes on holding it
    }
    // False when the time ran out.
    template <class Deadline> bool waitUntil( Monitor &monitor, const Deadline &deadline )
        PB_REQUIRES( monitor ) PB_NO_THREAD_SAFETY_ANALYSIS
    {
        std::unique_lock<std::mutex> lock( monitor.native(), std::adopt_lock );
        const bool inTime = condition_.wait_until( lock, deadline ) == std::cv_status::no_timeout;
        lock.release();
        return inTime;
    }
    void wakeOne() noexcept { condition_.notify_one(); }
    void wakeAll() noexcept { condition_.notify_all(); }

private:
    std::condition_variable condition_;
};

} // namespace pb

#endif
