// The registry of the host's interfaces in the module's life.
#ifndef IN_NW_INTERFACES_INTERNAL_H
#define IN_NW_INTERFACES_INTERNAL_H

#include "in/nw/in_nw_interfaces.h"

PB_DECLS_BEGIN

struct pbDict;

// Creates the registry and enumerates once: the interfaces are there when it returns.
void in___NwInterfacesStartup( void );
// Stops the enumeration and asks every interface to end. The registry stays readable.
void in___NwInterfacesShutdown( void );
// Waits until the enumeration and every interface have come to rest, then releases the registry. Blocks.
void in___NwInterfacesShutdownWait( void );

// The enumeration's process function; the argument is null.
void in___NwInterfacesProcessFunc( struct pbObj *argument );
// Adds the interfaces that a file in the form of proc_net_dev(5) lists, as keys. A file that cannot be read lists none.
void in___NwInterfacesAddNamesFromProcNetDev( struct pbDict **names, const char *path );

PB_DECLS_END

#endif
