// The layout of inDnsMessage, for the decoder. In-tree only.
#ifndef IN_DNS_MESSAGE_HPP
#define IN_DNS_MESSAGE_HPP

#include "in/dns/in_dns_message.h"
#include "pb/pb_vector.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_MESSAGE )

struct inDnsMessage final : pb::Object<struct inDnsMessage, in___sort_IN_DNS_MESSAGE> {
    pbInt id = 0;        // 0..65535
    pbInt operation = 0; // 0..15
    pbInt response = 0;  // 0..15
    bool query = true;
    bool authoritativeAnswer = false;
    bool truncation = false;
    bool recursionDesired = false;
    bool recursionAvailable = false;
    // Vectors of at most 65535 records; null for an empty one.
    pb::Ref<struct pbVector> question, answer, authority, additional;
};

#endif
