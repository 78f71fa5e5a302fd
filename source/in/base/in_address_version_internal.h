// The table of names behind inAddressVersionToString. Start-up and shut-down are called by the module, once each.
#ifndef IN_ADDRESS_VERSION_INTERNAL_H
#define IN_ADDRESS_VERSION_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___AddressVersionStartup( void );
void in___AddressVersionShutdown( void );

// Null-terminated names of the versions: names[i] is version i.
extern const char *const in___AddressVersionNames[];

PB_DECLS_END

#endif
