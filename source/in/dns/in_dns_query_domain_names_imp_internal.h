// in___DnsQueryDomainNamesImp: the query for the domain names of an address that everyone who asks a stack the same at
// the same time shares. It runs until it is completed, once, with a result or as failed.
#ifndef IN_DNS_QUERY_DOMAIN_NAMES_IMP_INTERNAL_H
#define IN_DNS_QUERY_DOMAIN_NAMES_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct in___DnsQueryDomainNamesImp;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

const struct pbSort *in___DnsQueryDomainNamesImpSort( void );
struct in___DnsQueryDomainNamesImp *in___DnsQueryDomainNamesImpRetain( const struct in___DnsQueryDomainNamesImp *obj );
void in___DnsQueryDomainNamesImpRelease( const struct in___DnsQueryDomainNamesImp *obj );
struct pbObj *in___DnsQueryDomainNamesImpObj( const struct in___DnsQueryDomainNamesImp *obj );
struct in___DnsQueryDomainNamesImp *in___DnsQueryDomainNamesImpFrom( struct pbObj *obj );
struct pbString *in___DnsQueryDomainNamesImpToString( const struct in___DnsQueryDomainNamesImp *obj );
pbInt in___DnsQueryDomainNamesImpCompare( const struct in___DnsQueryDomainNamesImp *a,
                                          const struct in___DnsQueryDomainNamesImp *b );
pbBool in___DnsQueryDomainNamesImpEquals( const struct in___DnsQueryDomainNamesImp *a,
                                          const struct in___DnsQueryDomainNamesImp *b );

struct in___DnsQueryDomainNamesImp *in___DnsQueryDomainNamesImpCreate( const struct inAddress *address,
                                                                       struct trAnchor *optionalAnchor );
struct inAddress *in___DnsQueryDomainNamesImpAddress( const struct in___DnsQueryDomainNamesImp *imp );

// Completers. All but the first call are ignored.
void in___DnsQueryDomainNamesImpEndSet( struct in___DnsQueryDomainNamesImp *imp,
                                        const struct pbVector *domainNamesVector );
void in___DnsQueryDomainNamesImpErrorSet( struct in___DnsQueryDomainNamesImp *imp );

// As the functions of inDnsQueryDomainNames.
pbBool in___DnsQueryDomainNamesImpEnd( const struct in___DnsQueryDomainNamesImp *imp );
void in___DnsQueryDomainNamesImpEndAddSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                  struct pbSignalable *signalable );
void in___DnsQueryDomainNamesImpEndDelSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                  struct pbSignalable *signalable );
pbBool in___DnsQueryDomainNamesImpError( const struct in___DnsQueryDomainNamesImp *imp );
void in___DnsQueryDomainNamesImpErrorAddSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                    struct pbSignalable *signalable );
void in___DnsQueryDomainNamesImpErrorDelSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                    struct pbSignalable *signalable );
void in___DnsQueryDomainNamesImpTraceCompleteAnchor( struct in___DnsQueryDomainNamesImp *imp, struct trAnchor *anchor );
struct pbVector *in___DnsQueryDomainNamesImpDomainNamesVector( const struct in___DnsQueryDomainNamesImp *imp );
pbInt in___DnsQueryDomainNamesImpDomainNamesLength( const struct in___DnsQueryDomainNamesImp *imp );
struct pbString *in___DnsQueryDomainNamesImpDomainNameAt( const struct in___DnsQueryDomainNamesImp *imp, pbInt index );

PB_DECLS_END

#endif
