// The layout of inDnsQuestionRecord, for the decoder. In-tree only.
#ifndef IN_DNS_QUESTION_RECORD_HPP
#define IN_DNS_QUESTION_RECORD_HPP

#include "in/dns/in_dns_name.hpp"
#include "in/dns/in_dns_question_record.h"

PB_SORT_DECLARE( in___sort_IN_DNS_QUESTION_RECORD )

struct inDnsQuestionRecord final : pb::Object<struct inDnsQuestionRecord, in___sort_IN_DNS_QUESTION_RECORD> {
    in::dns::Name name;
    pbInt qtype = 0;  // 0..65535
    pbInt qclass = 0; // 0..65535

    auto operator<=>( const inDnsQuestionRecord & ) const = default;
};

#endif
