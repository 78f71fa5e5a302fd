// The entry points of the module, which its descriptor names.
#ifndef IN_MODULE_INTERNAL_H
#define IN_MODULE_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbStore;

pbBool in___ModuleStartup( void );
void in___ModuleShutdown( void );
void in___ModuleShutdownWait( void );
// Prints what the module is and how it was built.
int in___ModulePersonality( int argumentCount, char **arguments );

// "interfaces": an array with "identifier" and "state" of each interface.
struct pbStore *in___CsModuleInfoFunc( void );

PB_DECLS_END

#endif
