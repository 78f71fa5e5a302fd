// in___DnsQueryAddressesImp: the query for the addresses of a domain name that everyone who asks a stack the same at
// the same time shares. It runs until it is completed, once, with a result or as failed.
#ifndef IN_DNS_QUERY_ADDRESSES_IMP_INTERNAL_H
#define IN_DNS_QUERY_ADDRESSES_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct in___DnsQueryAddressesImp;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

const struct pbSort *in___DnsQueryAddressesImpSort( void );
struct in___DnsQueryAddressesImp *in___DnsQueryAddressesImpRetain( const struct in___DnsQueryAddressesImp *obj );
void in___DnsQueryAddressesImpRelease( const struct in___DnsQueryAddressesImp *obj );
struct pbObj *in___DnsQueryAddressesImpObj( const struct in___DnsQueryAddressesImp *obj );
struct in___DnsQueryAddressesImp *in___DnsQueryAddressesImpFrom( struct pbObj *obj );
struct pbString *in___DnsQueryAddressesImpToString( const struct in___DnsQueryAddressesImp *obj );
pbInt in___DnsQueryAddressesImpCompare( const struct in___DnsQueryAddressesImp *a,
                                        const struct in___DnsQueryAddressesImp *b );
pbBool in___DnsQueryAddressesImpEquals( const struct in___DnsQueryAddressesImp *a,
                                        const struct in___DnsQueryAddressesImp *b );

struct in___DnsQueryAddressesImp *in___DnsQueryAddressesImpCreate( const struct pbString *domainName,
                                                                   struct trAnchor *optionalAnchor );
struct pbString *in___DnsQueryAddressesImpDomainName( const struct in___DnsQueryAddressesImp *imp );

// Completers. All but the first call are ignored.
void in___DnsQueryAddressesImpEndSet( struct in___DnsQueryAddressesImp *imp, const struct pbVector *addressesVector );
void in___DnsQueryAddressesImpErrorSet( struct in___DnsQueryAddressesImp *imp );

// As the functions of inDnsQueryAddresses.
pbBool in___DnsQueryAddressesImpEnd( const struct in___DnsQueryAddressesImp *imp );
void in___DnsQueryAddressesImpEndAddSignalable( struct in___DnsQueryAddressesImp *imp,
                                                struct pbSignalable *signalable );
void in___DnsQueryAddressesImpEndDelSignalable( struct in___DnsQueryAddressesImp *imp,
                                                struct pbSignalable *signalable );
pbBool in___DnsQueryAddressesImpError( const struct in___DnsQueryAddressesImp *imp );
void in___DnsQueryAddressesImpErrorAddSignalable( struct in___DnsQueryAddressesImp *imp,
                                                  struct pbSignalable *signalable );
void in___DnsQueryAddressesImpErrorDelSignalable( struct in___DnsQueryAddressesImp *imp,
                                                  struct pbSignalable *signalable );
void in___DnsQueryAddressesImpTraceCompleteAnchor( struct in___DnsQueryAddressesImp *imp, struct trAnchor *anchor );
struct pbVector *in___DnsQueryAddressesImpAddressesVector( const struct in___DnsQueryAddressesImp *imp );
pbInt in___DnsQueryAddressesImpAddressesLength( const struct in___DnsQueryAddressesImp *imp );
struct inAddress *in___DnsQueryAddressesImpAddressAt( const struct in___DnsQueryAddressesImp *imp, pbInt index );

PB_DECLS_END

#endif
