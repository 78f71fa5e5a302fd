// The look-ups themselves. Each blocks for as long as the system's resolver takes, and completes the query once.
#ifndef IN_IMP_DNS_UNIX_INTERNAL_H
#define IN_IMP_DNS_UNIX_INTERNAL_H

#include "in/imp/in_imp_dns_internal.h"

PB_DECLS_BEGIN

// getaddrinfo
void in___ImpDnsDoQueryAddresses( struct in___DnsQueryAddressesImp *query );
// getnameinfo
void in___ImpDnsDoQueryDomainNames( struct in___DnsQueryDomainNamesImp *query );
// res_mkquery and res_send. One at a time.
void in___ImpDnsDoQuerySrv( struct in___DnsQuerySrvImp *query );

PB_DECLS_END

#endif
