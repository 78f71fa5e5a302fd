// inDnsQuerySrv: asks a stack for where a service is to be had. Equal questions to one stack share a look-up and, for
// the time that its options say, the answer. Threads:   any. The answer comes from a thread of the library, which only
// wakes who observes the query. Failures:  the query ends in error: no answer, no such name, refused by the stack's
// options, or the stack's address
//            changed meanwhile. It cannot be cancelled; releasing it is leaving it alone.
// The answer's owner names, response code and truncation are not looked at: whatever SRV data it holds is the result.
#ifndef IN_DNS_QUERY_SRV_H
#define IN_DNS_QUERY_SRV_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataInSrv;
struct inDnsQuerySrv;
struct inStack;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

IN_API const struct pbSort *inDnsQuerySrvSort( void );
IN_API struct inDnsQuerySrv *inDnsQuerySrvRetain( const struct inDnsQuerySrv *obj );
IN_API void inDnsQuerySrvRelease( const struct inDnsQuerySrv *obj );
IN_API struct pbObj *inDnsQuerySrvObj( const struct inDnsQuerySrv *obj );
IN_API struct inDnsQuerySrv *inDnsQuerySrvFrom( struct pbObj *obj );
IN_API struct pbString *inDnsQuerySrvToString( const struct inDnsQuerySrv *obj );
IN_API pbInt inDnsQuerySrvCompare( const struct inDnsQuerySrv *a, const struct inDnsQuerySrv *b );
IN_API pbBool inDnsQuerySrvEquals( const struct inDnsQuerySrv *a, const struct inDnsQuerySrv *b );

// The owner name of the SRV records, such as "_sip._udp.example.com": one for which inDnsQueryNameOk holds.
IN_API struct inDnsQuerySrv *inDnsQuerySrvCreate( struct inStack *stack, const struct pbString *service,
                                                  struct trAnchor *optionalAnchor );

IN_API struct inStack *inDnsQuerySrvStack( const struct inDnsQuerySrv *query );
IN_API struct pbString *inDnsQuerySrvService( const struct inDnsQuerySrv *query );

// The query has ended, with a result or in error.
IN_API pbBool inDnsQuerySrvEnd( const struct inDnsQuerySrv *query );
IN_API void inDnsQuerySrvEndAddSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable );
IN_API void inDnsQuerySrvEndDelSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable );
IN_API pbBool inDnsQuerySrvError( const struct inDnsQuerySrv *query );
IN_API void inDnsQuerySrvErrorAddSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable );
IN_API void inDnsQuerySrvErrorDelSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable );
// Why it ended in error: IN_DNS_QUERY_FAILURE_* of in_dns_query_failure.h.
IN_API pbInt inDnsQuerySrvFailure( const struct inDnsQuerySrv *query );
IN_API void inDnsQuerySrvTraceCompleteAnchor( struct inDnsQuerySrv *query, struct trAnchor *anchor );

// Of struct inDnsDataInSrv in the order in which they are to be tried; null, and of length 0, while the query runs and
// in error.
IN_API struct pbVector *inDnsQuerySrvDataInSrvsVector( const struct inDnsQuerySrv *query );
IN_API pbInt inDnsQuerySrvDataInSrvsLength( const struct inDnsQuerySrv *query );
IN_API struct inDnsDataInSrv *inDnsQuerySrvDataInSrvAt( const struct inDnsQuerySrv *query, pbInt index );

PB_DECLS_END

#endif
