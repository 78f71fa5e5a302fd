// The table of names behind inNwAddressTypeToString. Start-up and shut-down are called by the module, once each.
#ifndef IN_NW_ADDRESS_TYPE_INTERNAL_H
#define IN_NW_ADDRESS_TYPE_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___NwAddressTypeStartup( void );
void in___NwAddressTypeShutdown( void );

// Null-terminated names: names[i] is the value i.
extern const char *const in___NwAddressTypeNames[];

PB_DECLS_END

#endif
