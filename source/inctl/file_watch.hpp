// FileWatch: tells when a file may have changed, however it was: written in place, renamed into place as editors do,
// reached through links that were turned, with its directory removed and made again.
#ifndef INCTL_FILE_WATCH_HPP
#define INCTL_FILE_WATCH_HPP

#include "pb/pb_fd.hpp"

#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>

struct inotify_event;

namespace inctl {

class FileWatch {
public:
    using Clock = std::chrono::steady_clock;

    // From now on no change is missed. Where the system refuses to watch, problem() says why.
    explicit FileWatch( const std::string &path );

    // Can be read when something happened; -1 without a watch.
    int descriptor() const { return inotify_.get(); }
    // Takes what happened. What belongs to one change (an editor's five steps) is waited for.
    void take();
    // When what happened has settled and the file is to be read; none while nothing happened.
    std::optional<Clock::time_point> settled() const { return settled_; }
    // The file is about to be read: forgets what happened so far, and watches what now leads to it.
    void renew();

    // "" when changes are seen.
    const std::string &problem() const { return problem_; }

private:
    struct Walk; // along the path, with the watches that it needs

    void note( const struct inotify_event &event );
    void settleBy( std::chrono::milliseconds time );

    std::string path_; // absolute
    pb::Fd inotify_;
    std::map<int, std::set<std::string>> watches_; // by watch descriptor, the names that matter; none: a file itself
    std::optional<Clock::time_point> first_, settled_;
    std::string problem_;
};

} // namespace inctl

#endif
