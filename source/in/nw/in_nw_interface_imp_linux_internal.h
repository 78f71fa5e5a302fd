// in___NwInterfaceImp: the object behind an inNwInterface. A scheduled process reads the interface's properties every
// five seconds and publishes a new state when they differ.
// Lock order: its monitor (rank 50) is taken under the registry's; the imp never calls the registry.
#ifndef IN_NW_INTERFACE_IMP_LINUX_INTERNAL_H
#define IN_NW_INTERFACE_IMP_LINUX_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct in___NwInterfaceImp;
struct inAddress;
struct inNetwork;
struct inNwInterfaceState;
struct pbSignalable;
struct pbString;
struct trAnchor;

const struct pbSort *in___NwInterfaceImpSort( void );
struct in___NwInterfaceImp *in___NwInterfaceImpRetain( const struct in___NwInterfaceImp *obj );
void in___NwInterfaceImpRelease( const struct in___NwInterfaceImp *obj );
struct pbObj *in___NwInterfaceImpObj( const struct in___NwInterfaceImp *obj );
struct in___NwInterfaceImp *in___NwInterfaceImpFrom( struct pbObj *obj );
struct pbString *in___NwInterfaceImpToString( const struct in___NwInterfaceImp *obj );
pbInt in___NwInterfaceImpCompare( const struct in___NwInterfaceImp *a, const struct in___NwInterfaceImp *b );
pbBool in___NwInterfaceImpEquals( const struct in___NwInterfaceImp *a, const struct in___NwInterfaceImp *b );

// Reads the first state before it returns. canSetStatus must be true.
struct in___NwInterfaceImp *in___NwInterfaceImpCreate( const struct pbString *identifier, pbBool canSetStatus,
                                                       struct trAnchor *optionalAnchor );
// Asks the imp to end: its process publishes the end and halts. Again, and after the end, without effect.
void in___NwInterfaceImpSetEnd( struct in___NwInterfaceImp *imp );
// Blocks until the process has come to rest, behind a SetEnd.
void in___NwInterfaceImpEndWait( struct in___NwInterfaceImp *imp );

struct pbString *in___NwInterfaceImpIdentifier( const struct in___NwInterfaceImp *imp );
struct inNwInterfaceState *in___NwInterfaceImpState( const struct in___NwInterfaceImp *imp );
void in___NwInterfaceImpUpdateAddSignalable( struct in___NwInterfaceImp *imp, struct pbSignalable *signalable );
void in___NwInterfaceImpUpdateDelSignalable( struct in___NwInterfaceImp *imp, struct pbSignalable *signalable );
void in___NwInterfaceImpTraceCompleteAnchor( struct in___NwInterfaceImp *imp, struct trAnchor *anchor );

// Change the interface, with the monitor held until the kernel has answered; the state is read anew at once. False when
// the interface has ended or the kernel does not do it; *optionalError is then the error number that says why, 0 when
// there is none.
// status IN_NW_INTERFACE_STATUS_...
pbBool in___NwInterfaceImpTrySetStatus( struct in___NwInterfaceImp *imp, pbInt status, pbInt *optionalError );
// With the prefix length of the network, which contains the address, if it has one; else with the full length. A new
// IPv4 address is announced to the link.
pbBool in___NwInterfaceImpTrySetLayer3UnicastAddress( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress,
                                                      const struct inNetwork *optionalInNetwork,
                                                      pbInt *optionalError );
// True also when the interface does not have the address. The kernel refuses for IPv6 unless the address was set with
// its full length.
pbBool in___NwInterfaceImpTryDelLayer3UnicastAddress( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress,
                                                      pbInt *optionalError );

// The process function; the argument is the imp.
void in___NwInterfaceImpProcessFunc( struct pbObj *argument );

// The number of leading one bits of a netmask. -1 when it makes no network of the interface: when a one bit follows a
// zero bit, and when there is no zero bit, which is a host route.
pbInt in___NwInterfaceImpPrefixLength( const struct inAddress *netmask );

PB_DECLS_END

#endif
