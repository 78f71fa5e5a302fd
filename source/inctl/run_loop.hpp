// RunLoop: the main thread of a running host: follows its objects and its file until a signal or the time ends it.
#ifndef INCTL_RUN_LOOP_HPP
#define INCTL_RUN_LOOP_HPP

#include "inctl/configuration.hpp"
#include "inctl/control_signals.hpp"
#include "inctl/file_watch.hpp"
#include "inctl/run_board.hpp"
#include "inctl/run_view.hpp"
#include "inctl/service_manager.hpp"
#include "inctl/status_watch.hpp"
#include "inctl/trace_sink.hpp"
#include "inctl/waiter.hpp"
#include "inctl/watchdog.hpp"

#include <optional>

namespace inctl {

class RunLoop {
public:
    using Clock = Waiter::Clock;

    // What the loop works on, all of which outlives it; the configuration has been started.
    struct Parts {
        Output &output;
        Configuration &configuration;
        Waiter &waiter;
        ControlSignals &signals;
        FileWatch &file;
        RunBoard &board;
        RunView &view;
        TraceSink *trace; // or null
    };

    explicit RunLoop( const Parts &parts );

    // Until a signal or the deadline, or until the output takes nothing any more.
    void run( std::optional<Clock::time_point> deadline );

private:
    void follow( std::optional<Clock::time_point> deadline );
    void showStates();
    std::optional<Clock::time_point> nextTime( std::optional<Clock::time_point> deadline ) const;
    void takeEvents();
    void reload();
    void tellWatch();

    const Parts parts_;
    StatusWatch watch_;
    ServiceManager manager_;
    Watchdog watchdog_;
    std::string watchProblem_; // as last told
};

} // namespace inctl

#endif
