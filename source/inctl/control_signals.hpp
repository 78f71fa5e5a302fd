// ControlSignals: signals that steer a host that runs, taken from a descriptor instead of a handler.
#ifndef INCTL_CONTROL_SIGNALS_HPP
#define INCTL_CONTROL_SIGNALS_HPP

#include "pb/pb_fd.hpp"

#include <csignal>

namespace inctl {

// From construction on none of them ends or stops the program. On the main thread, before other threads are started.
class ControlSignals {
public:
    struct Asked {
        bool reload = false; // SIGHUP
        bool resize = false; // SIGWINCH
        bool stop = false;   // SIGTSTP: the terminal's user wants his shell
    };

    // Throws Failure when the system refuses a descriptor. forTerminal: SIGWINCH, SIGTSTP and SIGTTOU, too.
    explicit ControlSignals( bool forTerminal );
    ~ControlSignals();
    ControlSignals( const ControlSignals & ) = delete;
    ControlSignals &operator=( const ControlSignals & ) = delete;

    // Can be read when something was asked.
    int descriptor() const { return descriptor_.get(); }
    // What was asked since the last time.
    Asked take();

private:
    sigset_t before_;
    pb::Fd descriptor_;
};

} // namespace inctl

#endif
