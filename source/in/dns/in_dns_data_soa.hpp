// The layout of inDnsDataSoa, for the decoder. In-tree only.
#ifndef IN_DNS_DATA_SOA_HPP
#define IN_DNS_DATA_SOA_HPP

#include "in/dns/in_dns_data_soa.h"
#include "in/dns/in_dns_name.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_DATA_SOA )

struct inDnsDataSoa final : pb::Object<struct inDnsDataSoa, in___sort_IN_DNS_DATA_SOA> {
    in::dns::Name mname, rname;                            // never absent
    pbInt serial = 0;                                      // signed 32 bits
    pbInt refresh = 0, retry = 0, expire = 0, minimum = 0; // 0..0x7FFFFFFF
};

#endif
