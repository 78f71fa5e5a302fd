// Waiter: the main thread's one place of waiting, for SIGINT and SIGTERM, for the library's signals and alerts, and for
// time to pass.
#ifndef INCTL_WAITER_HPP
#define INCTL_WAITER_HPP

#include "pb/pb_wake.hpp"

#include <chrono>
#include <optional>

namespace inctl {

// To be called before any thread starts, so that every thread inherits the mask and only a Waiter sees the signals.
void blockStopSignals();

struct Wake; // what a wake writes to

class Waiter {
public:
    using Clock = std::chrono::steady_clock;

    enum class Woken { Library, Stop, Time };

    // blockStopSignals() has been called. Throws Failure when the system refuses a descriptor.
    Waiter();
    ~Waiter();
    Waiter( const Waiter & ) = delete;
    Waiter &operator=( const Waiter & ) = delete;

    // What to attach to signals and alerts; each wake ends one wait.
    struct pbSignalable *signalable() const { return signalable_.get(); }
    struct pbAlertable *alertable() const { return alertable_.get(); }

    // Blocks until something of that happens; without a deadline, time does not end it.
    Woken wait( std::optional<Clock::time_point> deadline );
    // The same without blocking; Library also when nothing has happened.
    Woken look( std::optional<Clock::time_point> deadline );

private:
    bool stopRequested();

    int signals_ = -1;
    bool stopped_ = false; // once requested, it stays so
    pb::Ref<Wake> wake_;
    pb::Ref<struct pbSignalable> signalable_;
    pb::Ref<struct pbAlertable> alertable_;
};

} // namespace inctl

#endif
