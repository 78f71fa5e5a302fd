// Waiting until another thread waits: there is no other way to see that it does than to ask the kernel.
#ifndef SUPPORT_ASLEEP_HPP
#define SUPPORT_ASLEEP_HPP

#include <atomic>
#include <fstream>
#include <functional>
#include <sched.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace support {

// A thread that is going to block; the constructor returns once it sleeps, the destructor joins.
class SleepingThread {
public:
    explicit SleepingThread( std::function<void()> function )
        : thread_( [this, function = std::move( function )] {
              id_ = gettid();
              function();
          } )
    {
        while ( !id_ || state() != 'S' )
            sched_yield();
    }
    ~SleepingThread() { thread_.join(); }
    SleepingThread( const SleepingThread & ) = delete;

private:
    // The letter behind the name, proc(5).
    char state() const
    {
        std::ifstream file( "/proc/self/task/" + std::to_string( id_ ) + "/stat" );
        const std::string text( std::istreambuf_iterator<char>( file ), {} );
        const size_t name = text.rfind( ')' );
        return name == text.npos ? 'S' : text[name + 2]; // ended: nothing to wait for
    }

    std::atomic<pid_t> id_{ 0 };
    std::thread thread_;
};

} // namespace support

#endif
