// The platform's part of DNS queries: the system's resolver, which blocks, on threads of its own.
#ifndef IN_IMP_DNS_INTERNAL_H
#define IN_IMP_DNS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct in___DnsQueryAddressesImp;
struct in___DnsQueryDomainNamesImp;
struct in___DnsQuerySrvImp;

void in___ImpDnsStartup( void );
// Fails at once what no thread has taken up, and waits for the look-ups under way.
void in___ImpDnsShutdown( void );

// Complete the query on another thread. Up to four look-ups run at a time, at most one of them for a service: service
// queries that get no answer keep the others from nobody. What nobody asks for any more when its turn comes is given
// up. Not with a monitor held.
void in___ImpDnsQueryAddresses( struct in___DnsQueryAddressesImp *query );
void in___ImpDnsQueryDomainNames( struct in___DnsQueryDomainNamesImp *query );
void in___ImpDnsQuerySrv( struct in___DnsQuerySrvImp *query );

PB_DECLS_END

#endif
