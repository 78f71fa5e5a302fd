// What queries of all kinds are: running, then ended, once, with a result or in error. In-tree only.
#ifndef IN_DNS_QUERY_STATE_HPP
#define IN_DNS_QUERY_STATE_HPP

#include "in/dns/in_dns_query_failure.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

struct in___DnsQueryAddressesImp;
struct in___DnsQueryDomainNamesImp;
struct in___DnsQuerySrvImp;

namespace in::dns {

class QueryState {
  public:
    QueryState( const char *traceName, struct trAnchor *optionalAnchor );

    struct trStream *trace() const { return trace_.get(); }
    struct pbSignal *endSignal() const { return end_.get(); }
    struct pbSignal *errorSignal() const { return error_.get(); }

    // The result stands in the trace under the property's name, as an array of the texts of its elements.
    void end( const struct pbVector *result, const char *property );
    void fail( pbInt failure ); // IN_DNS_QUERY_FAILURE_*, not NONE

    // Whoever asks the same joins those that ask already; the first one does by creating the query. False when the
    // query has been given up: then it is no one's answer, and the same must be asked anew.
    bool tryJoin();
    void leave();
    // Fails a query that nobody asks for any more. True when it has ended, for whatever reason: the resolver need not
    // be bothered.
    bool tryGiveUp();
    bool givenUp() const;

    bool ended() const;
    bool failed() const;
    pbInt failure() const;
    pb::Ref<struct pbVector> result() const; // null while running and in error
    pbInt length() const;
    struct pbObj *at( pbInt index ) const; // a new reference

  private:
    void failOnce( pbInt failure ) PB_REQUIRES( monitor_ );

    // Fixed after construction.
    const pb::Ref<struct trStream> trace_;
    const pb::Ref<struct pbSignal> end_ = pb::adopt( pbSignalCreate() );
    const pb::Ref<struct pbSignal> error_ = pb::adopt( pbSignalCreate() );

    // Whoever sees the end signal asserted under the monitor sees the result and the error as well.
    mutable pb::Monitor monitor_{ 60 };
    pb::Ref<struct pbVector> result_ PB_GUARDED_BY( monitor_ );
    pbInt failure_ PB_GUARDED_BY( monitor_ ) = IN_DNS_QUERY_FAILURE_NONE;
    pbInt askers_ PB_GUARDED_BY( monitor_ ) = 1;
    bool givenUp_ PB_GUARDED_BY( monitor_ ) = false;
};

QueryState &stateOf( struct in___DnsQueryAddressesImp *imp );
QueryState &stateOf( struct in___DnsQueryDomainNamesImp *imp );
QueryState &stateOf( struct in___DnsQuerySrvImp *imp );

// Asks, having joined already, until it is destroyed.
class Asker {
  public:
    explicit Asker( QueryState &joined ) : state_( joined ) {}
    ~Asker() { state_.leave(); }
    Asker( const Asker & ) = delete;
    Asker &operator=( const Asker & ) = delete;

  private:
    QueryState &state_;
};

} // namespace in::dns

#endif
