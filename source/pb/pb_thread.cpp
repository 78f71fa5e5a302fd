// pbThread: a POSIX thread with all signals blocked.
#include "pb/pb_thread.h"
#include "pb/pb_string.hpp"
#include "pb/pb_wake.hpp"

#include <csignal>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

PB_SORT_DECLARE( pb___sort_PB_THREAD )

struct pbThread final : pb::Object<struct pbThread, pb___sort_PB_THREAD> {
    const pb::String name;
    const std::string kernelName;
    void ( *const function )( struct pbObj * );
    pb::Ref<pbObj> argument; // until the function has returned
    const int priority;
    pthread_t thread{};
    bool toBeJoined = false; // touched by the owner only

    pbThread( std::string_view name, void ( *function )( struct pbObj * ), struct pbObj *argument, pbInt priority )
        : name( pb::string( name ) ), kernelName( name.substr( 0, 15 ) ), function( function ),
          argument( pb::share( argument ) ), priority( static_cast<int>( priority ) )
    {}
    ~pbThread() { PB_ASSERT_TEXT( !toBeJoined, "a thread is joined before it is released" ); }

    pb::String toString() const { return name; }
};

PB_OBJECT_DEFINE( pbThread, pb___sort_PB_THREAD )

namespace {

// Per thread on Linux. Raising needs privilege; without it the thread runs as the others do.
void hintPriority( int priority )
{
    constexpr int nicenessPerPriority = -4;
    if ( priority )
        (void)setpriority( PRIO_PROCESS, static_cast<id_t>( syscall( SYS_gettid ) ), priority * nicenessPerPriority );
}

void *run( void *argument )
{
    // Owned by this thread until the function has returned.
    const auto thread = pb::adopt( static_cast<pbThread *>( argument ) );
    (void)pthread_setname_np( pthread_self(), thread->kernelName.c_str() ); // a name only helps to watch
    hintPriority( thread->priority );
    thread->function( thread->argument.get() );
    thread->argument.reset();
    return nullptr;
}

// A thread inherits the mask of its creator. Blocking before it exists leaves no moment in which it takes a signal.
class AllSignalsBlocked {
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        sigfillset( &all );
        pthread_sigmask( SIG_SETMASK, &all, &before_ );
    }
    ~AllSignalsBlocked() { pthread_sigmask( SIG_SETMASK, &before_, nullptr ); }
    AllSignalsBlocked( const AllSignalsBlocked & ) = delete;

private:
    sigset_t before_;
};

} // namespace

extern "C" {

struct pbThread *pbThreadTrySpawnCstr( const char *name, pbInt nameLength, void ( *function )( struct pbObj * ),
                                       struct pbObj *optionalArgument, pbInt priority )
{
    PB_ASSERT( name );
    PB_ASSERT( nameLength >= -1 );
    PB_ASSERT( function );
    PB_ASSERT( priority >= 0 && priority <= 4 );
    const std::string_view text =
        nameLength < 0 ? std::string_view( name ) : std::string_view( name, static_cast<size_t>( nameLength ) );
    auto thread = pb::make<pbThread>( text, function, optionalArgument, priority );

    auto forItself = thread;
    const AllSignalsBlocked blocked;
    if ( pthread_create( &thread->thread, nullptr, run, forItself.get() ) != 0 )
        return nullptr;
    (void)forItself.release(); // run() owns it
    thread->toBeJoined = true;
    return thread.release();
}

struct pbString *pbThreadName( const struct pbThread *thread )
{
    PB_ASSERT( thread );
    return thread->name.share();
}

void pbThreadJoin( struct pbThread *thread )
{
    PB_ASSERT( thread );
    PB_ASSERT( thread->toBeJoined );
    PB_ASSERT( !pthread_equal( thread->thread, pthread_self() ) );
    pb___WakesFlush();
    (void)pthread_join( thread->thread, nullptr ); // fails for the reasons above only
    thread->toBeJoined = false;
}

} // extern "C"
