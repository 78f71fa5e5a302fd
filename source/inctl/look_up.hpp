// One DNS query on a stack, waited for.
#ifndef INCTL_LOOK_UP_HPP
#define INCTL_LOOK_UP_HPP

#include "inctl/waiter.hpp"

#include "in/base/in_address.h"
#include "in/base/in_stack.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_domain_names.h"
#include "in/dns/in_dns_query_failure.h"
#include "in/dns/in_dns_query_srv.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <optional>
#include <string>

namespace inctl {

struct LookUp {
    pb::Ref<struct pbVector> found;             // null when there is none
    pbInt failure = IN_DNS_QUERY_FAILURE_NONE;  // why
    bool answerRead = false; // by the library, which then knows its code; else the system's resolver tells what it likes
    std::optional<Waiter::Woken> interruptedBy; // Time or Stop: the query still runs
    double milliseconds = 0;
};

LookUp lookUpAddresses( struct inStack *stack, const pb::String &name, pbInt timeout, Waiter &waiter );
LookUp lookUpDomainNames( struct inStack *stack, const pb::Ref<struct inAddress> &address, pbInt timeout,
                          Waiter &waiter );
LookUp lookUpServices( struct inStack *stack, const pb::String &service, pbInt timeout, Waiter &waiter );

// How long blocking queries on the stack wait at most, in milliseconds.
pbInt defaultTimeout( const struct inStack *stack );

// Why nothing was found, as a sentence; what was asked for is "addresses", say, and disabledBy the switch of the
// stack's options that forbids it.
std::string sentence( const LookUp &lookUp, const std::string &subject, const std::string &what,
                      const std::string &disabledBy, pbInt timeout );

} // namespace inctl

#endif
