// in___NwInterfaceImp: the object behind an inNwInterface. A scheduled process reads the interface's properties every
// five seconds and publishes a new state when they differ.
// Lock order: its monitor (rank 50) is taken under the registry's; the imp never calls the registry.
#ifndef IN_NW_INTERFACE_IMP_LINUX_INTERNAL_H
#define IN_NW_INTERFACE_IMP_LINUX_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct in___NwInterfaceImp;
struct inAddress;
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

// The process function; the argument is the imp.
void in___NwInterfaceImpProcessFunc( struct pbObj *argument );

// The number of leading one bits of a netmask. -1 when it makes no network of the interface: when a one bit follows a
// zero bit, and when there is no zero bit, which is a host route.
pbInt in___NwInterfaceImpPrefixLength( const struct inAddress *netmask );

PB_DECLS_END

#endif
