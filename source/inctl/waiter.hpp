// Waiter: the main thread's one place of waiting, for SIGINT and SIGTERM, for the library's signals and alerts, and for
// time to pass.
#ifndef INCTL_WAITER_HPP
#define INCTL_WAITER_HPP

#include "pb/pb_wake.hpp"

#include <chrono>
#include <optional>
#include <vector>

#include <poll.h>

namespace inctl {

// SIGINT and SIGTERM end the program at once, whatever it inherited, until a Waiter takes them. To be called first.
void resetSignals();

// What is still to be done when a signal ends the program at once, in a handler; null: nothing.
void setFarewell( void ( *farewell )() );

struct Wake; // what a wake writes to

// As long as one lives the first SIGINT or SIGTERM is a request to close down. It interrupts what the main thread is
// blocked in. Another one ends the program at once, and so does time when closing down takes too long: something,
// such as a pipe that nobody reads, may hold it. The threads of the program leave the signals to the main thread.
class Waiter {
public:
    using Clock = std::chrono::steady_clock;

    enum class Woken { Library, Stop, Time };

    // One at a time, on the main thread. Throws Failure when the system refuses a descriptor.
    Waiter();
    ~Waiter();
    Waiter( const Waiter & ) = delete;
    Waiter &operator=( const Waiter & ) = delete;

    // What to attach to signals and alerts; each wake ends one wait.
    struct pbSignalable *signalable() const { return signalable_.get(); }
    struct pbAlertable *alertable() const { return alertable_.get(); }

    // One more descriptor that ends a wait, with Library, while it can be read; who added it reads it empty.
    void add( int descriptor );

    // Blocks until something of that happens; without a deadline, time does not end it.
    Woken wait( std::optional<Clock::time_point> deadline );
    // The same without blocking; Library also when nothing has happened.
    Woken look( std::optional<Clock::time_point> deadline );

private:
    pb::Ref<Wake> wake_;
    pb::Ref<struct pbSignalable> signalable_;
    pb::Ref<struct pbAlertable> alertable_;
    std::vector<pollfd> polled_; // first the wake
};

} // namespace inctl

#endif
