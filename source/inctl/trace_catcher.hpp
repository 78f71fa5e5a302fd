// TraceCatcher: keeps the first events that the library traces, to show a few of them afterwards.
#ifndef INCTL_TRACE_CATCHER_HPP
#define INCTL_TRACE_CATCHER_HPP

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

struct trEvent;

namespace inctl {

class TraceCatcher {
public:
    struct Caught {
        std::string name;
        int64_t stream;
        int64_t kind;
        std::string text;
    };

    TraceCatcher();
    ~TraceCatcher();
    TraceCatcher( const TraceCatcher & ) = delete;
    TraceCatcher &operator=( const TraceCatcher & ) = delete;

    // In the order of time: of every kind of stream, its first text, property and configuration, up to the given
    // number.
    std::vector<Caught> handful( size_t number ) const;
    size_t count() const;

private:
    static void listen( const struct trEvent *event, void *context );

    mutable std::mutex mutex_;
    std::vector<Caught> caught_;
    size_t count_ = 0;
};

} // namespace inctl

#endif
