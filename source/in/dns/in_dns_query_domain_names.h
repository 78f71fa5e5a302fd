// inDnsQueryDomainNames: asks a stack for the domain names of an address. Equal questions to one stack share a look-up
// and, for the time that its options say, the answer. Threads:   any. The answer comes from a thread of the library,
// which only wakes who observes the query. Failures:  the query ends in error: no answer, no such name, refused by the
// stack's options, or the stack's address
//            changed meanwhile. It cannot be cancelled; releasing it is leaving it alone.
#ifndef IN_DNS_QUERY_DOMAIN_NAMES_H
#define IN_DNS_QUERY_DOMAIN_NAMES_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inDnsQueryDomainNames;
struct inStack;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

IN_API const struct pbSort *inDnsQueryDomainNamesSort( void );
IN_API struct inDnsQueryDomainNames *inDnsQueryDomainNamesRetain( const struct inDnsQueryDomainNames *obj );
IN_API void inDnsQueryDomainNamesRelease( const struct inDnsQueryDomainNames *obj );
IN_API struct pbObj *inDnsQueryDomainNamesObj( const struct inDnsQueryDomainNames *obj );
IN_API struct inDnsQueryDomainNames *inDnsQueryDomainNamesFrom( struct pbObj *obj );
IN_API struct pbString *inDnsQueryDomainNamesToString( const struct inDnsQueryDomainNames *obj );
IN_API pbInt inDnsQueryDomainNamesCompare( const struct inDnsQueryDomainNames *a,
                                           const struct inDnsQueryDomainNames *b );
IN_API pbBool inDnsQueryDomainNamesEquals( const struct inDnsQueryDomainNames *a,
                                           const struct inDnsQueryDomainNames *b );

// An address of either version.
IN_API struct inDnsQueryDomainNames *
inDnsQueryDomainNamesCreate( struct inStack *stack, const struct inAddress *address, struct trAnchor *optionalAnchor );

IN_API struct inStack *inDnsQueryDomainNamesStack( const struct inDnsQueryDomainNames *query );
IN_API struct inAddress *inDnsQueryDomainNamesAddress( const struct inDnsQueryDomainNames *query );

// The query has ended, with a result or in error.
IN_API pbBool inDnsQueryDomainNamesEnd( const struct inDnsQueryDomainNames *query );
IN_API void inDnsQueryDomainNamesEndAddSignalable( struct inDnsQueryDomainNames *query,
                                                   struct pbSignalable *signalable );
IN_API void inDnsQueryDomainNamesEndDelSignalable( struct inDnsQueryDomainNames *query,
                                                   struct pbSignalable *signalable );
IN_API pbBool inDnsQueryDomainNamesError( const struct inDnsQueryDomainNames *query );
IN_API void inDnsQueryDomainNamesErrorAddSignalable( struct inDnsQueryDomainNames *query,
                                                     struct pbSignalable *signalable );
IN_API void inDnsQueryDomainNamesErrorDelSignalable( struct inDnsQueryDomainNames *query,
                                                     struct pbSignalable *signalable );
// Why it ended in error: IN_DNS_QUERY_FAILURE_* of in_dns_query_failure.h.
IN_API pbInt inDnsQueryDomainNamesFailure( const struct inDnsQueryDomainNames *query );
IN_API void inDnsQueryDomainNamesTraceCompleteAnchor( struct inDnsQueryDomainNames *query, struct trAnchor *anchor );

// Of struct pbString; null, and of length 0, while the query runs and in error.
IN_API struct pbVector *inDnsQueryDomainNamesDomainNamesVector( const struct inDnsQueryDomainNames *query );
IN_API pbInt inDnsQueryDomainNamesDomainNamesLength( const struct inDnsQueryDomainNames *query );
IN_API struct pbString *inDnsQueryDomainNamesDomainNameAt( const struct inDnsQueryDomainNames *query, pbInt index );

PB_DECLS_END

#endif
