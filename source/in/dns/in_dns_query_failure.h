// Why a DNS query ended in error, and the names of the reasons.
#ifndef IN_DNS_QUERY_FAILURE_H
#define IN_DNS_QUERY_FAILURE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

// The query runs, or has a result.
#define IN_DNS_QUERY_FAILURE_NONE PB_INT_FROM( 0 )
// The stack's options forbid queries of its kind.
#define IN_DNS_QUERY_FAILURE_DISABLED PB_INT_FROM( 1 )
// There is no such name (NXDOMAIN). Of addresses the system's resolver says so too when it asks for no such name, or when
// it could use no answer; it does not tell these apart.
#define IN_DNS_QUERY_FAILURE_NO_NAME PB_INT_FROM( 2 )
// The name is there, but has nothing of what was asked for.
#define IN_DNS_QUERY_FAILURE_NO_DATA PB_INT_FROM( 3 )
// No name server has given a usable answer within the resolver's time: none replied, or each reported a failure.
#define IN_DNS_QUERY_FAILURE_NO_ANSWER PB_INT_FROM( 4 )
// A name server reported a failure that asking again does not mend.
#define IN_DNS_QUERY_FAILURE_SERVER PB_INT_FROM( 5 )
// The answer was no acceptable DNS message, or gave no valid domain name.
#define IN_DNS_QUERY_FAILURE_BAD_ANSWER PB_INT_FROM( 6 )
// The stack's address or switches changed meanwhile: an answer now might be another one.
#define IN_DNS_QUERY_FAILURE_FLUSHED PB_INT_FROM( 7 )
// Nobody waited for it any more when its turn came, or the library was shut down.
#define IN_DNS_QUERY_FAILURE_GIVEN_UP PB_INT_FROM( 8 )
// DNS has no such names: the ASCII form has more than 253 characters.
#define IN_DNS_QUERY_FAILURE_NOT_ASKABLE PB_INT_FROM( 9 )
// The system refused; the trace says what.
#define IN_DNS_QUERY_FAILURE_SYSTEM PB_INT_FROM( 10 )
#define IN_DNS_QUERY_FAILURE_OK( failure ) ( (uint64_t)( failure ) <= 10 )

// The constant's name.
IN_API struct pbString *inDnsQueryFailureToString( pbInt failure );

PB_DECLS_END

#endif
