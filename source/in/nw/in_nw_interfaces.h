// The set of the host's network interfaces, kept by the module while it runs.
#ifndef IN_NW_INTERFACES_H
#define IN_NW_INTERFACES_H

#include "in/nw/in_nw_interface.h"

PB_DECLS_BEGIN

struct pbVector;

// All current interfaces, ascending by name.
IN_API struct pbVector *inNwInterfacesVector( void );
// The interface of that name, or null.
IN_API struct inNwInterface *inNwInterfacesInterfaceByIdentifier( const struct pbString *identifier );
// Signalled once, when an interface is added or has ended: register, then read, each time. An interface that only
// changes signals by itself.
IN_API void inNwInterfacesUpdateAddSignalable( struct pbSignalable *signalable );
IN_API void inNwInterfacesUpdateDelSignalable( struct pbSignalable *signalable );

PB_DECLS_END

#endif
