// The layout of inDnsDataInSrv, for the decoder. In-tree only.
#ifndef IN_DNS_DATA_IN_SRV_HPP
#define IN_DNS_DATA_IN_SRV_HPP

#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_name.hpp"

#include <vector>

PB_SORT_DECLARE( in___sort_IN_DNS_DATA_IN_SRV )

struct inDnsDataInSrv final : pb::Object<struct inDnsDataInSrv, in___sort_IN_DNS_DATA_IN_SRV> {
    pbInt priority = 0; // 0..65535
    pbInt weight = 0;   // 0 or more
    pbInt port = 0;     // 0..65535
    in::dns::Name target;

    std::strong_ordering operator<=>( const inDnsDataInSrv &other ) const;
    bool operator==( const inDnsDataInSrv &other ) const { return ( *this <=> other ) == 0; }
    pb::String toString() const;
};

namespace in::dns {

// The running totals of weights, each above 0, some of which are taken away.
class RunningTotals {
  public:
    explicit RunningTotals( const std::vector<pbInt> &weights );
    // The first of the weights that are left with which the running total reaches the number drawn, 0..their sum.
    size_t firstToReach( pbInt drawn ) const;
    void subtract( size_t index, pbInt weight );

  private:
    std::vector<pbInt> nodes_;
};

} // namespace in::dns

#endif
