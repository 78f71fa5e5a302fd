// Watchdog: tells the service manager that the host is alive, as long as the library's scheduler runs what it is asked
// to: each beat waits for a process of the scheduler, so that a host whose objects hang is restarted.
#ifndef INCTL_WATCHDOG_HPP
#define INCTL_WATCHDOG_HPP

#include "inctl/service_manager.hpp"
#include "inctl/waiter.hpp"

#include "pr/pr_process.h"

#include <chrono>
#include <optional>

namespace inctl {

struct Probe; // what the process does

class Watchdog {
public:
    using Clock = Waiter::Clock;

    // Needs a running Host; manager and waiter outlive this. Begins at once, unless the manager does not want it.
    Watchdog( ServiceManager &manager, const Waiter &waiter );
    // Waits for the process, for ever when the scheduler hangs.
    ~Watchdog();
    Watchdog( const Watchdog & ) = delete;
    Watchdog &operator=( const Watchdog & ) = delete;

    // When the next beat begins; none when there is none.
    std::optional<Clock::time_point> next() const { return next_; }
    // Begins a beat when it is time, and ends one whose process has run, which wakes the waiter.
    void beat();

private:
    ServiceManager &manager_;
    const std::optional<std::chrono::microseconds> interval_ = ServiceManager::aliveInterval();
    pb::Ref<Probe> probe_;
    pb::Ref<struct prProcess> process_;
    std::optional<Clock::time_point> next_;
};

} // namespace inctl

#endif
