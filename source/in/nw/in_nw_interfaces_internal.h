// The registry of the host's interfaces in the module's life.
#ifndef IN_NW_INTERFACES_INTERNAL_H
#define IN_NW_INTERFACES_INTERNAL_H

#include "in/nw/in_nw_interfaces.h"

PB_DECLS_BEGIN

// Creates the registry and enumerates once: the interfaces are there when it returns.
void in___NwInterfacesStartup( void );
// Stops the enumeration and asks every interface to end. The registry stays readable.
void in___NwInterfacesShutdown( void );
// Waits until the enumeration and every interface have come to rest, then releases the registry. Blocks.
void in___NwInterfacesShutdownWait( void );

PB_DECLS_END

#endif
