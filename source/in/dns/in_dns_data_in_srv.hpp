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

// The first of the weights with which the running total reaches the number drawn, 0..sum of the weights.
size_t weightedIndex( const std::vector<pbInt> &weights, pbInt drawn );

} // namespace in::dns

#endif
