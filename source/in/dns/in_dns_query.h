// What can be asked for, and queries that wait for their answer.
// Blocking:  for the answer, for the stack's maxBlockDuration or until the optional signal is asserted, whatever comes
//            first. Not for threads of the library or of the scheduler.
// Failures:  no answer in that time, or a query in error: null, and an empty vector where one is returned.
#ifndef IN_DNS_QUERY_H
#define IN_DNS_QUERY_H

#include "in/base/in_api.h"
#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inAddress;
struct inStack;
struct pbSignal;
struct pbString;
struct pbVector;
struct trAnchor;

// Whether the system's resolver can be asked for the name: a valid domain name whose ASCII form neither ends in "." nor
// holds U+0000. A name from outside may be valid and no question: U+2026 prepares to "...". Look at it first when it
// comes from an answer, such as the target of a service; a query for a name that is none aborts.
IN_API pbBool inDnsQueryNameOk( const struct pbString *name );

// The best of the addresses, see inDnsQueryAddressesBestAddress.
IN_API struct inAddress *inDnsQueryAddressForDomainName( struct inStack *stack, const struct pbString *domainName,
                                                         struct pbSignal *optionalSignal,
                                                         struct trAnchor *optionalAnchor );
IN_API struct pbVector *inDnsQueryAddressesVectorForDomainName( struct inStack *stack,
                                                                const struct pbString *domainName,
                                                                struct pbSignal *optionalSignal,
                                                                struct trAnchor *optionalAnchor );
// The first of the names.
IN_API struct pbString *inDnsQueryDomainNameForAddress( struct inStack *stack, const struct inAddress *address,
                                                        struct pbSignal *optionalSignal,
                                                        struct trAnchor *optionalAnchor );
IN_API struct pbVector *inDnsQueryDomainNamesVectorForAddress( struct inStack *stack, const struct inAddress *address,
                                                               struct pbSignal *optionalSignal,
                                                               struct trAnchor *optionalAnchor );
// In the order in which they are to be tried.
IN_API struct pbVector *inDnsQuerySrv( struct inStack *stack, const struct pbString *service,
                                       struct pbSignal *optionalSignal, struct trAnchor *optionalAnchor );

PB_DECLS_END

#endif
