// in___DnsQuerySrvImp: the query for where a service is to be had that everyone who asks a stack the same at the same
// time shares. It runs until it is completed, once, with a result or as failed.
#ifndef IN_DNS_QUERY_SRV_IMP_INTERNAL_H
#define IN_DNS_QUERY_SRV_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataInSrv;
struct in___DnsQuerySrvImp;
struct pbSignalable;
struct pbString;
struct pbVector;
struct trAnchor;

const struct pbSort *in___DnsQuerySrvImpSort( void );
struct in___DnsQuerySrvImp *in___DnsQuerySrvImpRetain( const struct in___DnsQuerySrvImp *obj );
void in___DnsQuerySrvImpRelease( const struct in___DnsQuerySrvImp *obj );
struct pbObj *in___DnsQuerySrvImpObj( const struct in___DnsQuerySrvImp *obj );
struct in___DnsQuerySrvImp *in___DnsQuerySrvImpFrom( struct pbObj *obj );
struct pbString *in___DnsQuerySrvImpToString( const struct in___DnsQuerySrvImp *obj );
pbInt in___DnsQuerySrvImpCompare( const struct in___DnsQuerySrvImp *a, const struct in___DnsQuerySrvImp *b );
pbBool in___DnsQuerySrvImpEquals( const struct in___DnsQuerySrvImp *a, const struct in___DnsQuerySrvImp *b );

struct in___DnsQuerySrvImp *in___DnsQuerySrvImpCreate( const struct pbString *service,
                                                       struct trAnchor *optionalAnchor );
struct pbString *in___DnsQuerySrvImpService( const struct in___DnsQuerySrvImp *imp );

// Completers. All but the first call are ignored.
void in___DnsQuerySrvImpEndSet( struct in___DnsQuerySrvImp *imp, const struct pbVector *dataInSrvsVector );
void in___DnsQuerySrvImpErrorSet( struct in___DnsQuerySrvImp *imp );

// As the functions of inDnsQuerySrv.
pbBool in___DnsQuerySrvImpEnd( const struct in___DnsQuerySrvImp *imp );
void in___DnsQuerySrvImpEndAddSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable );
void in___DnsQuerySrvImpEndDelSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable );
pbBool in___DnsQuerySrvImpError( const struct in___DnsQuerySrvImp *imp );
void in___DnsQuerySrvImpErrorAddSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable );
void in___DnsQuerySrvImpErrorDelSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable );
void in___DnsQuerySrvImpTraceCompleteAnchor( struct in___DnsQuerySrvImp *imp, struct trAnchor *anchor );
struct pbVector *in___DnsQuerySrvImpDataInSrvsVector( const struct in___DnsQuerySrvImp *imp );
pbInt in___DnsQuerySrvImpDataInSrvsLength( const struct in___DnsQuerySrvImp *imp );
struct inDnsDataInSrv *in___DnsQuerySrvImpDataInSrvAt( const struct in___DnsQuerySrvImp *imp, pbInt index );

PB_DECLS_END

#endif
