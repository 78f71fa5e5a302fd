// TraceSink: writes what the library traces to standard error or a file, as lines of text or JSON, from a thread of its
// own: tracing threads never wait for a disk or a terminal.
#ifndef INCTL_TRACE_SINK_HPP
#define INCTL_TRACE_SINK_HPP

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

struct trEvent;

namespace spdlog {
class logger;
namespace details {
class thread_pool;
}
} // namespace spdlog

namespace inctl {

struct TraceChoice {
    std::string target; // "": no trace; "-": standard error; else a file, appended to
    std::string format = "text";
    bool packets = false;
};

void addTraceOptions( CLI::App &command, TraceChoice &choice );

class TraceSink {
public:
    // Before the Host, so that start-up is traced too. Throws Failure when the file cannot be written.
    explicit TraceSink( const TraceChoice &choice );
    // Writes what is queued, and says on standard error how many lines came too fast to be written.
    ~TraceSink();
    TraceSink( const TraceSink & ) = delete;
    TraceSink &operator=( const TraceSink & ) = delete;

private:
    static void listen( const struct trEvent *event, void *context );

    const bool json_;
    std::shared_ptr<spdlog::details::thread_pool> thread_;
    std::shared_ptr<spdlog::logger> logger_;
};

// The event as a line of text, without time and stream; for streams of events that a person reads.
std::string traceText( const struct trEvent &event );

} // namespace inctl

#endif
