// The table of names behind inNwInterfaceStatusToString. Start-up and shut-down are called by the module, once each.
#ifndef IN_NW_INTERFACE_STATUS_INTERNAL_H
#define IN_NW_INTERFACE_STATUS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___NwInterfaceStatusStartup( void );
void in___NwInterfaceStatusShutdown( void );

// Null-terminated names: names[i] is the value i.
extern const char *const in___NwInterfaceStatusNames[];

PB_DECLS_END

#endif
