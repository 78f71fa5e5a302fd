// Waiter: an eventfd that the library's signals and alerts write, and the handler of SIGINT and SIGTERM, and poll() on
// it.
#include "inctl/waiter.hpp"

#include "inctl/exit_code.hpp"

#include "pb/pb_fd.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

PB_SORT_DECLARE( inctl___sort_INCTL_WAKE )

namespace inctl {
namespace {

constexpr unsigned closingSeconds = 10;

// What the handler uses; it may use lock-free atomics only ([support.signal]).
std::atomic<int> stopSignal = 0; // the one that has come; once requested, it stays so
std::atomic<int> wakeDescriptor = -1;
std::atomic<void ( * )()> farewellCall = nullptr;
static_assert( std::atomic<int>::is_always_lock_free && std::atomic<void ( * )()>::is_always_lock_free );

[[noreturn]] void refuse( const char *call )
{
    throw Failure{ Exit::System, fmt::format( "{}: {}", call, std::strerror( errno ) ) };
}

void write1( int descriptor )
{
    const uint64_t one = 1;
    // The count can only be full while a wake is pending anyway.
    [[maybe_unused]] const ssize_t ignored = write( descriptor, &one, sizeof one );
}

// The results of setting a handler are of no use: it fails for wrong numbers of signals only.
void setStopHandler( void ( *handler )( int ) )
{
    struct sigaction action{};
    action.sa_handler = handler;
    // Without SA_RESTART, so that a blocked write to the output gives up. Neither interrupts the other's handler.
    sigemptyset( &action.sa_mask );
    sigaddset( &action.sa_mask, SIGINT );
    sigaddset( &action.sa_mask, SIGTERM );
    (void)sigaction( SIGINT, &action, nullptr );
    (void)sigaction( SIGTERM, &action, nullptr );
}

// Ends the program in the way of the signal that asked for it.
void endBy( int number )
{
    if ( const auto farewell = farewellCall.load() )
        farewell();
    setStopHandler( SIG_DFL );
    (void)raise( number ); // pending until the handler returns, when it is blocked
}

extern "C" void inctlEndAtOnce( int number )
{
    endBy( number );
}

extern "C" void inctlTakeStop( int number )
{
    const int error = errno;
    stopSignal = number;
    setStopHandler( inctlEndAtOnce );
    (void)alarm( closingSeconds ); // no other alarm is ever set
    write1( wakeDescriptor );
    errno = error;
}

extern "C" void inctlEndLate( int )
{
    endBy( stopSignal );
}

} // namespace

// An object, because signalables keep what they wake: the descriptor lives until the last of them is gone.
struct Wake final : pb::Object<Wake, inctl___sort_INCTL_WAKE> {
    const pb::Fd descriptor{ eventfd( 0, EFD_CLOEXEC | EFD_NONBLOCK ) };

    static void wake( pbObj *target ) { write1( static_cast<Wake *>( target )->descriptor.get() ); }
};

void resetSignals()
{
    setStopHandler( SIG_DFL );
    struct sigaction late{};
    late.sa_handler = inctlEndLate;
    sigemptyset( &late.sa_mask );
    (void)sigaction( SIGALRM, &late, nullptr );
    sigset_t taken;
    sigemptyset( &taken );
    for ( const int number : { SIGINT, SIGTERM, SIGALRM } )
        sigaddset( &taken, number );
    (void)pthread_sigmask( SIG_UNBLOCK, &taken, nullptr );
    // A reader that goes away is seen as a failed write; the library's sockets never raise it.
    (void)std::signal( SIGPIPE, SIG_IGN );
}

void setFarewell( void ( *farewell )() )
{
    farewellCall = farewell;
}

Waiter::Waiter() : wake_( pb::make<Wake>() )
{
    if ( !wake_->descriptor )
        refuse( "eventfd()" );
    signalable_ = pb::adopt( pb___SignalableCreate( Wake::wake, wake_.get() ) );
    alertable_ = pb::adopt( pb___AlertableCreate( Wake::wake, wake_.get() ) );
    wakeDescriptor = wake_->descriptor.get();
    add( wakeDescriptor );
    setStopHandler( inctlTakeStop );
}

Waiter::~Waiter()
{
    setStopHandler( SIG_DFL );
}

void Waiter::add( int descriptor )
{
    polled_.push_back( { descriptor, POLLIN, 0 } );
}

Waiter::Woken Waiter::wait( std::optional<Clock::time_point> deadline )
{
    if ( stopSignal )
        return Woken::Stop;
    for ( ;; ) {
        int timeout = -1;
        if ( deadline ) {
            // Rounded up, so that a wait that ended by time has really reached its deadline.
            const auto left = std::chrono::ceil<std::chrono::milliseconds>( *deadline - Clock::now() ).count();
            timeout = static_cast<int>( std::clamp<int64_t>( left, 0, 3'600'000 ) );
        }
        const int ready = poll( polled_.data(), polled_.size(), timeout );
        if ( ready < 0 && errno != EINTR )
            refuse( "poll()" );
        if ( stopSignal )
            return Woken::Stop;
        uint64_t count; // or there is none
        [[maybe_unused]] const ssize_t taken = read( wake_->descriptor.get(), &count, sizeof count );
        if ( ready > 0 )
            return Woken::Library;
        if ( deadline && Clock::now() >= *deadline )
            return Woken::Time;
    }
}

Waiter::Woken Waiter::look( std::optional<Clock::time_point> deadline )
{
    if ( stopSignal )
        return Woken::Stop;
    return deadline && Clock::now() >= *deadline ? Woken::Time : Woken::Library;
}

} // namespace inctl

constinit const pbSort inctl___sort_INCTL_WAKE = pb::detail::makeSort<inctl::Wake>( "INCTL_WAKE" );
