// inNwInterface: one network interface of the host, observed.
// It lives from its discovery until its end is published in its state; an interface that comes back under the same name
// is a new object.
// Threads:   any. A state is a snapshot that never changes; a new one replaces it.
// Ownership: the module holds an interface while the host lists it; a holder keeps the object, not the interface.
#ifndef IN_NW_INTERFACE_H
#define IN_NW_INTERFACE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inNwInterface;
struct inNwInterfaceState;
struct pbSignalable;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inNwInterfaceSort( void );
IN_API struct inNwInterface *inNwInterfaceRetain( const struct inNwInterface *obj );
IN_API void inNwInterfaceRelease( const struct inNwInterface *obj );
IN_API struct pbObj *inNwInterfaceObj( const struct inNwInterface *obj );
IN_API struct inNwInterface *inNwInterfaceFrom( struct pbObj *obj );
IN_API struct pbString *inNwInterfaceToString( const struct inNwInterface *obj );
IN_API pbInt inNwInterfaceCompare( const struct inNwInterface *a, const struct inNwInterface *b );
IN_API pbBool inNwInterfaceEquals( const struct inNwInterface *a, const struct inNwInterface *b );

// The kernel's name of the interface.
IN_API struct pbString *inNwInterfaceIdentifier( const struct inNwInterface *iface );
// The latest published snapshot.
IN_API struct inNwInterfaceState *inNwInterfaceState( const struct inNwInterface *iface );
// Signalled once, when the next state is published: register, then read, each time.
IN_API void inNwInterfaceUpdateAddSignalable( struct inNwInterface *iface, struct pbSignalable *signalable );
IN_API void inNwInterfaceUpdateDelSignalable( struct inNwInterface *iface, struct pbSignalable *signalable );
IN_API void inNwInterfaceTraceCompleteAnchor( struct inNwInterface *iface, struct trAnchor *anchor );

PB_DECLS_END

#endif
