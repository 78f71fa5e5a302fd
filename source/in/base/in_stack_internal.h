// What other files of the library ask of a stack: its address as a packet meets it, the blacklist of its TCP peers, and
// its place in the module's life.
#ifndef IN_STACK_INTERNAL_H
#define IN_STACK_INTERNAL_H

#include "in/base/in_stack.h"

PB_DECLS_BEGIN

struct inAddress;
struct in___DnsQueryAddressesImp;
struct in___DnsQueryDomainNamesImp;
struct in___DnsQuerySrvImp;
struct inTcpAddress;

// The query for the name, the address or the service, shared by all who ask for it: one that runs or whose answer has
// not expired, else a new one. Names are compared as they are written. Where the options disable the kind, it has
// failed.
struct in___DnsQueryAddressesImp *in___StackDnsQueryAddresses( struct inStack *stack, const struct pbString *domainName,
                                                               struct trAnchor *optionalAnchor );
struct in___DnsQueryDomainNamesImp *in___StackDnsQueryDomainNames( struct inStack *stack,
                                                                   const struct inAddress *address,
                                                                   struct trAnchor *optionalAnchor );
struct in___DnsQuerySrvImp *in___StackDnsQuerySrv( struct inStack *stack, const struct pbString *service,
                                                   struct trAnchor *optionalAnchor );

// Keeps the address on the list for the blacklist timeout of the stack's TCP options, counted anew when it is there
// already. Without effect while the options disable the blacklist.
void in___StackTcpBlacklist( struct inStack *stack, const struct inTcpAddress *address );
pbBool in___StackTcpIsBlacklisted( const struct inStack *stack, const struct inTcpAddress *address );

// Whether inStackAddress() would give this address now; takes no monitor and never waits.
pbBool in___StackAddressIs( const struct inStack *stack, const struct inAddress *address );

// Registers and unregisters the sort at the configuration service.
void in___StackCsStartup( void );
void in___StackCsShutdown( void );

PB_DECLS_END

#endif
