// The table of flag names behind inNwInterfaceFlags. Start-up and shut-down are called by the module, once each.
#ifndef IN_NW_INTERFACE_FLAGS_INTERNAL_H
#define IN_NW_INTERFACE_FLAGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___NwInterfaceFlagsStartup( void );
void in___NwInterfaceFlagsShutdown( void );

// Null-terminated names of the flags: names[i] is bit i.
extern const char *const in___NwInterfaceFlagsNames[];

PB_DECLS_END

#endif
