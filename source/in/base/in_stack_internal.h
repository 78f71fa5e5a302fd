// What other files of the library ask of a stack: the blacklist of its TCP peers, and its place in the module's life.
#ifndef IN_STACK_INTERNAL_H
#define IN_STACK_INTERNAL_H

#include "in/base/in_stack.h"

PB_DECLS_BEGIN

struct inTcpAddress;

// Keeps the address on the list for the blacklist timeout of the stack's TCP options, counted anew when it is there
// already. Without effect while the options disable the blacklist.
void in___StackTcpBlacklist( struct inStack *stack, const struct inTcpAddress *address );
pbBool in___StackTcpIsBlacklisted( const struct inStack *stack, const struct inTcpAddress *address );

// Registers and unregisters the sort at the configuration service.
void in___StackCsStartup( void );
void in___StackCsShutdown( void );

PB_DECLS_END

#endif
