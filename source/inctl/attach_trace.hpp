// AttachTrace: hands what the library traces to clients. While nobody wants traces it does not listen. Tracing threads
// never wait for a client: a line goes to the end of a bounded queue, or is counted as lost.
#ifndef INCTL_ATTACH_TRACE_HPP
#define INCTL_ATTACH_TRACE_HPP

#include "cs/cs_configuration.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

struct csRecord;
struct trEvent;
struct trStream;

namespace inctl {

// What a client wants to hear.
struct TraceWish {
    std::string object; // "": everything
    bool tree = false;  // also what is reached from it
    bool packets = false;
};

class AttachTrace {
  public:
    class Subscription;

    // wake is called in tracing threads, with monitors held, when a subscription that was empty has something to take.
    AttachTrace( struct csConfiguration *configuration, std::function<void()> wake );
    ~AttachTrace();
    AttachTrace( const AttachTrace & ) = delete;
    AttachTrace &operator=( const AttachTrace & ) = delete;

    // Of an object: what stands is in the queue when it returns. Throws Failure when the object has no trace.
    std::shared_ptr<Subscription> subscribe( const TraceWish &wish );
    void unsubscribe( const std::shared_ptr<Subscription> &subscription );
    // After the objects may have become others: follows the new ones.
    void followObjects();

    // Moves lines to the end of the text, until that has so many bytes or there are no more. A line {"event": "lost"}
    // stands where others were lost.
    void take( Subscription &subscription, std::string &text, size_t bytes );

  private:
    using Subscriptions = std::vector<std::shared_ptr<Subscription>>;

    static void listen( const struct trEvent *event, void *context );
    void hear( const struct trEvent &event ) PB_EXCLUDES( monitor_ );
    void learnObjects() PB_EXCLUDES( monitor_ );
    void follow( Subscription &subscription, const struct csRecord *record ) PB_EXCLUDES( monitor_ );
    void push( Subscription &subscription, const std::shared_ptr<const std::string> &line ) PB_REQUIRES( monitor_ );
    std::string line( const struct trEvent &event ) const PB_REQUIRES( monitor_ );
    void listenAsWished();

    const pb::Ref<struct csConfiguration> configuration_;
    const std::function<void()> wake_;
    const pb::Ref<struct trStream> stream_; // its links lead to the streams of all objects

    // Held by tracing threads for the length of a line; what it guards calls nothing that traces.
    pb::Monitor monitor_;
    Subscriptions subscriptions_ PB_GUARDED_BY( monitor_ );
    std::unordered_map<pbInt, std::string> objects_ PB_GUARDED_BY( monitor_ ); // by stream, until it is released
    std::optional<std::vector<pbInt>> releasedMeanwhile_ PB_GUARDED_BY( monitor_ ); // while it learns the objects
};

} // namespace inctl

#endif
