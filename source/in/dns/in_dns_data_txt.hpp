// The layout of inDnsDataTxt, for the decoder. In-tree only.
#ifndef IN_DNS_DATA_TXT_HPP
#define IN_DNS_DATA_TXT_HPP

#include "in/dns/in_dns_data_txt.h"
#include "pb/pb_vector.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_DATA_TXT )

struct inDnsDataTxt final : pb::Object<struct inDnsDataTxt, in___sort_IN_DNS_DATA_TXT> {
    pb::Ref<struct pbVector> buffers = pb::adopt( pbVectorCreate() );
};

#endif
