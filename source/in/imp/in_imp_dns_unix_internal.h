// The look-ups themselves. Each blocks for as long as the system's resolver takes, and completes the query once.
#ifndef IN_IMP_DNS_UNIX_INTERNAL_H
#define IN_IMP_DNS_UNIX_INTERNAL_H

#include "in/imp/in_imp_dns_internal.h"

PB_DECLS_BEGIN

struct inDnsMessage;
struct pbVector;

// getaddrinfo
void in___ImpDnsDoQueryAddresses( struct in___DnsQueryAddressesImp *query );
// getnameinfo
void in___ImpDnsDoQueryDomainNames( struct in___DnsQueryDomainNamesImp *query );
// res_mkquery and res_send. One at a time: the caller holds the resolver's monitor.
void in___ImpDnsDoQuerySrv( struct in___DnsQuerySrvImp *query );

// The SRV data of the answer section, whoever owns it: each of several equal records once, in the order in which the
// targets are to be tried. Empty when there is none. A new reference.
struct pbVector *in___ImpDnsServiceData( const struct inDnsMessage *msg );

PB_DECLS_END

#endif
