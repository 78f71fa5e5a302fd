// Attachment: this process as a client of a host that runs on this machine. It never waits for a hung host for ever.
#ifndef INCTL_ATTACHMENT_HPP
#define INCTL_ATTACHMENT_HPP

#include "inctl/output.hpp"
#include "inctl/record.hpp"
#include "inctl/run_directory.hpp"
#include "inctl/waiter.hpp"

#include "pb/pb_fd.hpp"

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace inctl {

struct HostChoice {
    std::string host; // "": the only one there is; else its name, or with a "/" the path of its socket
    pbInt timeout = 5000; // milliseconds
};

void addHostOptions( CLI::App &command, HostChoice &choice );

class Attachment {
  public:
    // Throws Failure: no host runs (no), several do (usage), it lets nobody in (permission), or does not answer
    // (system).
    explicit Attachment( const HostChoice &choice );

    const std::string &name() const { return place_.name; }

    // The host's answer. Throws Failure: what the host says, or that it says nothing.
    pb::Ref<struct pbStore> ask( const Record &request );
    // Subscribes, and puts out what the host tells, records and lines, until it is time to stop or nobody reads. Throws
    // Failure as ask does, and when the host ends or is silent.
    void follow( const Record &request, Output &output,
                 const std::function<std::string( const struct pbStore *event )> &lineOf );

  private:
    using Clock = Waiter::Clock;

    bool tryConnect( const HostPlace &place, Clock::time_point deadline );
    void greet( Clock::time_point deadline );
    bool readMore(); // false: nothing is there yet
    std::optional<pb::Ref<struct pbStore>> takeLine();
    // What the host tells next of what was subscribed to; null when it is time to stop. Signs of life are kept from the
    // caller.
    pb::Ref<struct pbStore> next( Waiter &waiter );
    pb::Ref<struct pbStore> awaitLine( Clock::time_point deadline );
    [[noreturn]] void failAsSilent() const;
    [[noreturn]] void failAsEnded() const;

    const Clock::duration patience_;
    HostPlace place_;
    pb::Fd connection_;
    std::string input_;
    size_t searched_ = 0; // of input_, for the end of a line
};

} // namespace inctl

#endif
