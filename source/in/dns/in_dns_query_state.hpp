// What queries of all kinds are: running, then ended, once, with a result or in error. In-tree only.
#ifndef IN_DNS_QUERY_STATE_HPP
#define IN_DNS_QUERY_STATE_HPP

#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

namespace in::dns {

class QueryState {
  public:
    QueryState( const char *traceName, struct trAnchor *optionalAnchor );

    struct trStream *trace() const { return trace_.get(); }
    struct pbSignal *endSignal() const { return end_.get(); }
    struct pbSignal *errorSignal() const { return error_.get(); }

    // The result stands in the trace under the property's name, as an array of the texts of its elements.
    void end( const struct pbVector *result, const char *property );
    void fail();

    bool ended() const;
    bool failed() const;
    pb::Ref<struct pbVector> result() const; // null while running and in error
    pbInt length() const;
    struct pbObj *at( pbInt index ) const; // a new reference

  private:
    // Fixed after construction.
    const pb::Ref<struct trStream> trace_;
    const pb::Ref<struct pbSignal> end_ = pb::adopt( pbSignalCreate() );
    const pb::Ref<struct pbSignal> error_ = pb::adopt( pbSignalCreate() );

    // Whoever sees the end signal asserted under the monitor sees the result and the error as well.
    mutable pb::Monitor monitor_{ 60 };
    pb::Ref<struct pbVector> result_ PB_GUARDED_BY( monitor_ );
};

} // namespace in::dns

#endif
