// The place of the interface configuration stacks in the module's life.
#ifndef IN_NW_STACK_INTERNAL_H
#define IN_NW_STACK_INTERNAL_H

#include "in/nw/in_nw_stack.h"

PB_DECLS_BEGIN

// Registers and unregisters the sort at the configuration service.
void in___NwStackCsStartup( void );
void in___NwStackCsShutdown( void );

PB_DECLS_END

#endif
