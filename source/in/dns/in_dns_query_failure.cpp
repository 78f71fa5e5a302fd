// Names of the reasons for which DNS queries fail.
#include "in/dns/in_dns_query_failure.h"

#include "pb/pb_assert.hpp"
#include "pb/pb_string.hpp"

struct pbString *inDnsQueryFailureToString( pbInt failure )
{
    PB_ASSERT( IN_DNS_QUERY_FAILURE_OK( failure ) );
    constexpr const char *names[] = {
        "IN_DNS_QUERY_FAILURE_NONE",       "IN_DNS_QUERY_FAILURE_DISABLED",    "IN_DNS_QUERY_FAILURE_NO_NAME",
        "IN_DNS_QUERY_FAILURE_NO_DATA",    "IN_DNS_QUERY_FAILURE_NO_ANSWER",   "IN_DNS_QUERY_FAILURE_SERVER",
        "IN_DNS_QUERY_FAILURE_BAD_ANSWER", "IN_DNS_QUERY_FAILURE_FLUSHED",     "IN_DNS_QUERY_FAILURE_GIVEN_UP",
        "IN_DNS_QUERY_FAILURE_NOT_ASKABLE", "IN_DNS_QUERY_FAILURE_SYSTEM" };
    return pbStringCreateFromCstr( names[failure], -1 );
}
