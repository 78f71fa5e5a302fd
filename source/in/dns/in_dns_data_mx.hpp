// The layout of inDnsDataMx, for the decoder. In-tree only.
#ifndef IN_DNS_DATA_MX_HPP
#define IN_DNS_DATA_MX_HPP

#include "in/dns/in_dns_data_mx.h"
#include "in/dns/in_dns_name.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_DATA_MX )

struct inDnsDataMx final : pb::Object<struct inDnsDataMx, in___sort_IN_DNS_DATA_MX> {
    pbInt preference = 0;   // 0..65535
    in::dns::Name exchange; // never absent
};

#endif
