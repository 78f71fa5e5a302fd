// inDnsQueryAddresses: asks a stack for the addresses of a domain name. Equal questions to one stack share a look-up
// and, for the time that its options say, the answer. Threads:   any. The answer comes from a thread of the library,
// which only wakes who observes the query. Failures:  the query ends in error: no answer, no such name, refused by the
// stack's options, or the stack's address
//            changed meanwhile. It cannot be cancelled; releasing it is leaving it alone.
#ifndef IN_DNS_QUERY_ADDRESSES_H
#define IN_DNS_QUERY_ADDRESSES_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inDnsQueryAddresses;
struct inStack;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

IN_API const struct pbSort *inDnsQueryAddressesSort( void );
IN_API struct inDnsQueryAddresses *inDnsQueryAddressesRetain( const struct inDnsQueryAddresses *obj );
IN_API void inDnsQueryAddressesRelease( const struct inDnsQueryAddresses *obj );
IN_API struct pbObj *inDnsQueryAddressesObj( const struct inDnsQueryAddresses *obj );
IN_API struct inDnsQueryAddresses *inDnsQueryAddressesFrom( struct pbObj *obj );
IN_API struct pbString *inDnsQueryAddressesToString( const struct inDnsQueryAddresses *obj );
IN_API pbInt inDnsQueryAddressesCompare( const struct inDnsQueryAddresses *a, const struct inDnsQueryAddresses *b );
IN_API pbBool inDnsQueryAddressesEquals( const struct inDnsQueryAddresses *a, const struct inDnsQueryAddresses *b );

// A name for which inDnsQueryNameOk holds.
IN_API struct inDnsQueryAddresses *inDnsQueryAddressesCreate( struct inStack *stack, const struct pbString *domainName,
                                                              struct trAnchor *optionalAnchor );

IN_API struct inStack *inDnsQueryAddressesStack( const struct inDnsQueryAddresses *query );
IN_API struct pbString *inDnsQueryAddressesDomainName( const struct inDnsQueryAddresses *query );

// The query has ended, with a result or in error.
IN_API pbBool inDnsQueryAddressesEnd( const struct inDnsQueryAddresses *query );
IN_API void inDnsQueryAddressesEndAddSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable );
IN_API void inDnsQueryAddressesEndDelSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable );
IN_API pbBool inDnsQueryAddressesError( const struct inDnsQueryAddresses *query );
IN_API void inDnsQueryAddressesErrorAddSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable );
IN_API void inDnsQueryAddressesErrorDelSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable );
// Why it ended in error: IN_DNS_QUERY_FAILURE_* of in_dns_query_failure.h.
IN_API pbInt inDnsQueryAddressesFailure( const struct inDnsQueryAddresses *query );
IN_API void inDnsQueryAddressesTraceCompleteAnchor( struct inDnsQueryAddresses *query, struct trAnchor *anchor );

// Of struct inAddress, ascending, IPv4 first; null, and of length 0, while the query runs and in error.
IN_API struct pbVector *inDnsQueryAddressesAddressesVector( const struct inDnsQueryAddresses *query );
IN_API pbInt inDnsQueryAddressesAddressesLength( const struct inDnsQueryAddresses *query );
IN_API struct inAddress *inDnsQueryAddressesAddressAt( const struct inDnsQueryAddresses *query, pbInt index );
// The address that has most leading bits in common with the stack's own, the same version before all; the first one
// while the stack has no address, null without a result.
IN_API struct inAddress *inDnsQueryAddressesBestAddress( const struct inDnsQueryAddresses *query );

PB_DECLS_END

#endif
