// TraceStreams: what the events so far say of the streams there are.
#ifndef INCTL_TRACE_STREAMS_HPP
#define INCTL_TRACE_STREAMS_HPP

#include <string>
#include <unordered_map>

struct trEvent;

namespace inctl {

class TraceStreams {
public:
    // Each event, before it is shown and after it.
    void follow( const struct trEvent &event );
    void forget( const struct trEvent &event );

    struct Stream {
        std::string object; // the name of the record whose object it is; else ""
        bool notable = false;
    };
    // The stream of the event.
    const Stream &of( const struct trEvent &event ) const;

private:
    std::unordered_map<int64_t, Stream> streams_;
};

} // namespace inctl

#endif
