// Waiter: a signalfd for SIGINT and SIGTERM, an eventfd that the library's signals and alerts write, and poll() on
// both.
#include "inctl/waiter.hpp"

#include "inctl/exit_code.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

PB_SORT_DECLARE( inctl___sort_INCTL_WAKE )

namespace inctl {
namespace {

sigset_t stopSignals()
{
    sigset_t set;
    sigemptyset( &set );
    sigaddset( &set, SIGINT );
    sigaddset( &set, SIGTERM );
    return set;
}

[[noreturn]] void refuse( const char *call )
{
    throw Failure{ Exit::System, fmt::format( "{}: {}", call, std::strerror( errno ) ) };
}

} // namespace

// An object, because signalables keep what they wake: the descriptor lives until the last of them is gone.
struct Wake final : pb::Object<Wake, inctl___sort_INCTL_WAKE> {
    const int descriptor = eventfd( 0, EFD_CLOEXEC | EFD_NONBLOCK );

    ~Wake()
    {
        if ( descriptor >= 0 )
            close( descriptor );
    }

    static void wake( pbObj *target )
    {
        const uint64_t one = 1;
        // The count can only be full while a wake is pending anyway.
        [[maybe_unused]] const ssize_t ignored = write( static_cast<Wake *>( target )->descriptor, &one, sizeof one );
    }
};

void blockStopSignals()
{
    const sigset_t set = stopSignals();
    pthread_sigmask( SIG_BLOCK, &set, nullptr );
    // A reader that goes away is seen as a failed write; the library's sockets never raise it.
    std::signal( SIGPIPE, SIG_IGN );
}

Waiter::Waiter() : wake_( pb::make<Wake>() )
{
    if ( wake_->descriptor < 0 )
        refuse( "eventfd()" );
    const sigset_t set = stopSignals();
    signals_ = signalfd( -1, &set, SFD_CLOEXEC | SFD_NONBLOCK );
    if ( signals_ < 0 )
        refuse( "signalfd()" );
    signalable_ = pb::adopt( pb___SignalableCreate( Wake::wake, wake_.get() ) );
    alertable_ = pb::adopt( pb___AlertableCreate( Wake::wake, wake_.get() ) );
}

Waiter::~Waiter()
{
    close( signals_ );
}

Waiter::Woken Waiter::wait( std::optional<Clock::time_point> deadline )
{
    if ( stopRequested() )
        return Woken::Stop;
    for ( ;; ) {
        int timeout = -1;
        if ( deadline ) {
            // Rounded up, so that a wait that ended by time has really reached its deadline.
            const auto left = std::chrono::ceil<std::chrono::milliseconds>( *deadline - Clock::now() ).count();
            timeout = static_cast<int>( std::clamp<int64_t>( left, 0, 3'600'000 ) );
        }
        pollfd polled[] = { { signals_, POLLIN, 0 }, { wake_->descriptor, POLLIN, 0 } };
        if ( poll( polled, 2, timeout ) < 0 && errno != EINTR )
            refuse( "poll()" );
        if ( stopRequested() )
            return Woken::Stop;
        uint64_t count;
        if ( read( wake_->descriptor, &count, sizeof count ) > 0 )
            return Woken::Library;
        if ( deadline && Clock::now() >= *deadline )
            return Woken::Time;
    }
}

Waiter::Woken Waiter::look( std::optional<Clock::time_point> deadline )
{
    if ( stopRequested() )
        return Woken::Stop;
    return deadline && Clock::now() >= *deadline ? Woken::Time : Woken::Library;
}

bool Waiter::stopRequested()
{
    signalfd_siginfo info;
    if ( read( signals_, &info, sizeof info ) > 0 )
        stopped_ = true;
    return stopped_;
}

} // namespace inctl

constinit const pbSort inctl___sort_INCTL_WAKE = pb::detail::makeSort<inctl::Wake>( "INCTL_WAKE" );
