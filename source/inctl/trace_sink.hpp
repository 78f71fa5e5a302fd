// TraceSink: writes what the library traces to standard error, a file or the journal, as lines of text or JSON, from a
// thread of its own: tracing threads never wait for a disk or a terminal.
#ifndef INCTL_TRACE_SINK_HPP
#define INCTL_TRACE_SINK_HPP

#include "inctl/record.hpp"
#include "inctl/trace_streams.hpp"

#include <memory>
#include <span>
#include <string>

struct trEvent;

namespace spdlog {
class logger;
namespace details {
class thread_pool;
}
namespace sinks {
class sink;
}
} // namespace spdlog

namespace CLI {
class App;
}

namespace inctl {

class TraceFile;

struct TraceChoice {
    std::string target; // "": no trace; "-": standard error; "journal"; else a file, appended to
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

    // The file of that name from now on, as when the old one was moved away; nothing for other targets.
    void reopen();

private:
    static void listen( const struct trEvent *event, void *context );
    std::shared_ptr<spdlog::sinks::sink> makeSink( const std::string &target );
    std::string line( const struct trEvent &event ) const;
    std::string journalFields( const struct trEvent &event ) const;

    const bool json_;
    std::shared_ptr<spdlog::details::thread_pool> thread_;
    std::shared_ptr<spdlog::logger> logger_;
    std::shared_ptr<TraceFile> file_; // or null
    bool journal_ = false;
    TraceStreams streams_; // of the listener, which runs one call at a time
};

// The event as an object; time is RFC 3339 (UTC, microseconds). object names the record whose stream it is, if any.
Record traceRecord( const struct trEvent &event, const std::string &object );
// Names of the kinds of events, by kind.
std::span<const char *const> traceKinds();

// The event as a line of printable text, without time and stream; for streams of events that a person reads.
std::string traceText( const struct trEvent &event );

} // namespace inctl

#endif
