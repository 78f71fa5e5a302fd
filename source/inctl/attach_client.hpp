// AttachClient: one connection to a host: lines in, lines out, never blocking, all of it bounded.
#ifndef INCTL_ATTACH_CLIENT_HPP
#define INCTL_ATTACH_CLIENT_HPP

#include "inctl/attach_trace.hpp"

#include "pb/pb_fd.hpp"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace inctl {

class AttachClient {
  public:
    using Clock = std::chrono::steady_clock;

    static constexpr size_t longestLine = 8192;
    // Nothing more is answered or told until less than this waits to be written.
    static constexpr size_t enoughWaiting = 64 << 10;

    AttachClient( pb::Fd connection, Clock::time_point now );

    int descriptor() const { return connection_.get(); }
    short polledEvents() const;
    short events = 0; // that have happened, as poll tells

    // Reads what is there, and no more than fits. When the peer has said its last it is still answered.
    void read();
    bool ended() const { return ended_; }
    // The next whole line, without its end. One that is longer makes it garbage.
    std::optional<std::string> takeLine();
    bool hasLine() const;
    bool garbage() const { return input_.size() > longestLine && !hasLine(); }

    // line ends with a line feed.
    void send( const std::string &line ) { output_ += line; }
    // Writes what the peer takes now. False when the peer has gone.
    bool write( Clock::time_point now );
    bool hasOutput() const { return !output_.empty(); }
    bool hasRoom() const { return output_.size() < enoughWaiting; }
    std::string &output() { return output_; }

    // Nothing more is read; it is closed once the output is written, or the peer does not take it.
    void closeWhenWritten() { closing_ = true; }
    bool closing() const { return closing_; }
    bool subscribed() const { return watching || trace; }

    // Whether its time is over: it asks for nothing, or takes nothing.
    bool late( Clock::time_point now ) const;
    Clock::time_point lastRequest;
    Clock::time_point lastWrite;

    bool fresh = false; // has subscribed since the last look at the objects
    bool watching = false;
    // Of objects that have changed and are still to be told; their latest state will be.
    std::set<std::string> changed;
    std::string watchedObject;       // "": all
    std::deque<std::string> notices; // lines that come before these
    void note( const std::vector<std::string> &names );
    void note( const std::string &notice );
    std::shared_ptr<AttachTrace::Subscription> trace;

  private:
    pb::Fd connection_;
    std::string input_;
    std::string output_;
    bool closing_ = false;
    bool ended_ = false;
};

} // namespace inctl

#endif
