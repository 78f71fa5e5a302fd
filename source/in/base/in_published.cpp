// The marks of the threads that read what is published.
#include "in/base/in_published.hpp"

#include <chrono>
#include <linux/membarrier.h>
#include <mutex>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace in {
namespace {

// All marks there ever were. A mark that its thread has left is taken by a later thread; none is freed, so that the list
// can be walked at any time. After fork(2) marks of threads that the child has not may stay as they are: it has no thread
// either that replaces anything.
constinit std::atomic<ReadMark *> marks{ nullptr };

bool membarrier( int command )
{
    return syscall( SYS_membarrier, command, 0, 0 ) == 0;
}

ReadMark *take()
{
    for ( ReadMark *mark = marks.load( std::memory_order_acquire ); mark; mark = mark->next )
        if ( !mark->owned.load( std::memory_order_relaxed ) && !mark->owned.exchange( true, std::memory_order_acquire ) )
            return mark;
    auto *mark = new ReadMark;
    mark->next = marks.load( std::memory_order_relaxed );
    while ( !marks.compare_exchange_weak( mark->next, mark, std::memory_order_seq_cst ) ) {}
    return mark;
}

} // namespace

// Gives the mark of a thread back at its end.
class ReadMarkOwner {
public:
    void own() { owns_ = true; }
    ~ReadMarkOwner()
    {
        if ( ReadMark *const mark = std::exchange( ReadMark::current, nullptr ) )
            mark->owned.store( false, std::memory_order_release );
    }

private:
    bool owns_ = false;
};

constinit thread_local ReadMark *ReadMark::current = nullptr;

// A thread that reads after the end of its owner, in the destructor of another such variable, keeps its mark for good.
ReadMark &ReadMark::create()
{
    thread_local ReadMarkOwner owner;
    owner.own();
    current = take();
    return *current;
}

constinit std::atomic<bool> ReadMark::othersFence{ false };

// Threads other than the first wait for the registration, so that what they read is published after it.
void ReadMark::prepare()
{
    static std::once_flag once;
    std::call_once( once, [] {
        othersFence.store( membarrier( MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED ), std::memory_order_relaxed );
    } );
}

bool ReadMark::tryWaitUntilUnread( const void *object, bool readersFence )
{
    using namespace std::chrono_literals;
    std::atomic_thread_fence( std::memory_order_seq_cst );
    if ( !readersFence && !membarrier( MEMBARRIER_CMD_PRIVATE_EXPEDITED ) ) {
        // A system call filter that came later forbids it. What is published from now on has readers that fence; what was
        // before is kept for good: of each Published two objects at most, this one and the one in its place.
        othersFence.store( false, std::memory_order_relaxed );
        return false;
    }
    for ( ReadMark *mark = marks.load( std::memory_order_seq_cst ); mark; mark = mark->next )
        for ( int tries = 0; mark->object.load( std::memory_order_acquire ) == object; ++tries )
            if ( tries >= 100 ) // the reader was interrupted, perhaps by this thread: yielding might not let it go on
                std::this_thread::sleep_for( 50us );
    return true;
}

} // namespace in
