// RunView: where a running host shows what happens: lines or records for each event, or a table that is kept.
#ifndef INCTL_RUN_VIEW_HPP
#define INCTL_RUN_VIEW_HPP

#include "inctl/configuration.hpp"
#include "inctl/object_state.hpp"
#include "inctl/run_board.hpp"

#include <chrono>
#include <optional>
#include <vector>

namespace inctl {

class RunView {
public:
    using Clock = std::chrono::steady_clock;

    RunView() = default;
    virtual ~RunView() = default;
    RunView( const RunView & ) = delete;
    RunView &operator=( const RunView & ) = delete;

    // What has changed, and what the board now says of all objects.
    virtual void states( const std::vector<ObjectState> &changes ) = 0;
    // A good file was applied.
    virtual void reloaded( const std::vector<Configuration::Change> &changes ) = 0;
    // A bad file was refused, as the board now says.
    virtual void refused( const RunBoard::Refusal &refusal ) = 0;
    // Why changes of the file are not seen from now on; "": they are again.
    virtual void unwatched( const std::string &problem ) = 0;
    virtual void ending( std::chrono::milliseconds elapsed ) = 0;

    // What a view on a terminal needs besides: the terminal's size has changed; its user wants it for a while.
    virtual void resized() {}
    virtual void suspend() {}
    // When it wants to show what it has gathered, and the call for it, which may come at any time.
    virtual std::optional<Clock::time_point> next() const { return std::nullopt; }
    virtual void show() {}
};

} // namespace inctl

#endif
