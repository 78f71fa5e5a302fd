// in___StackImp: the object behind an inStack. A scheduled process re-evaluates the stack's whole state whenever its
// options, an interface or the set of interfaces change, and when its timer expires.
// Lock order: its monitor (rank 20) is taken before the interface registry's and the interfaces'.
#ifndef IN_STACK_IMP_INTERNAL_H
#define IN_STACK_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct in___DnsQueryAddressesImp;
struct in___DnsQueryDomainNamesImp;
struct in___DnsQuerySrvImp;
struct in___StackImp;
struct inAddress;
struct inNwInterface;
struct inOptions;
struct inTcpAddress;
struct pbSignalable;
struct pbStore;
struct pbString;
struct pbVector;
struct trAnchor;

const struct pbSort *in___StackImpSort( void );
struct in___StackImp *in___StackImpRetain( const struct in___StackImp *obj );
void in___StackImpRelease( const struct in___StackImp *obj );
struct pbObj *in___StackImpObj( const struct in___StackImp *obj );
struct in___StackImp *in___StackImpFrom( struct pbObj *obj );
struct pbString *in___StackImpToString( const struct in___StackImp *obj );
pbInt in___StackImpCompare( const struct in___StackImp *a, const struct in___StackImp *b );
pbBool in___StackImpEquals( const struct in___StackImp *a, const struct in___StackImp *b );

// Runs once before it returns.
struct in___StackImp *in___StackImpCreate( const struct inOptions *options, struct trAnchor *optionalAnchor );
// Ends the process. Does not wait: the imp goes when a run under way has returned.
void in___StackImpHalt( struct in___StackImp *imp );
// Blocks until every halted imp is gone, so that what they use can be released.
void in___StackImpHaltWait( void );
// The process function; the argument is the imp.
void in___StackImpProcessFunc( struct pbObj *argument );

// As the functions of inStack.
void in___StackImpSetOptions( struct in___StackImp *imp, const struct inOptions *options );
void in___StackImpConfiguration( const struct in___StackImp *imp, struct inOptions **optionalOptions,
                                 struct inAddress **optionalAddress, struct inNwInterface **optionalPrimaryInterface,
                                 struct pbVector **optionalInterfaces, pbBool *optionalUp );
pbBool in___StackImpAddressIs( const struct in___StackImp *imp, const struct inAddress *address );
void in___StackImpUpdateAddSignalable( struct in___StackImp *imp, struct pbSignalable *signalable );
void in___StackImpUpdateDelSignalable( struct in___StackImp *imp, struct pbSignalable *signalable );
struct csStatusReporter *in___StackImpCsStatus( const struct in___StackImp *imp );
struct pbStore *in___StackImpDnsQueriesStore( const struct in___StackImp *imp, pbInt limit );
void in___StackImpTraceCompleteAnchor( struct in___StackImp *imp, struct trAnchor *anchor );
void in___StackImpTcpBlacklist( struct in___StackImp *imp, const struct inTcpAddress *address );
pbBool in___StackImpTcpIsBlacklisted( const struct in___StackImp *imp, const struct inTcpAddress *address );
struct in___DnsQueryAddressesImp *in___StackImpDnsQueryAddresses( struct in___StackImp *imp,
                                                                  const struct pbString *domainName,
                                                                  struct trAnchor *optionalAnchor );
struct in___DnsQueryDomainNamesImp *in___StackImpDnsQueryDomainNames( struct in___StackImp *imp,
                                                                      const struct inAddress *address,
                                                                      struct trAnchor *optionalAnchor );
struct in___DnsQuerySrvImp *in___StackImpDnsQuerySrv( struct in___StackImp *imp, const struct pbString *service,
                                                      struct trAnchor *optionalAnchor );

PB_DECLS_END

#endif
