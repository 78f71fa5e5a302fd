// The versions of an IP address, and their names as configuration stores them. The names are known between start-up
// and shut-down of the module.
#ifndef IN_ADDRESS_VERSION_H
#define IN_ADDRESS_VERSION_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_ADDRESS_VERSION_4 PB_INT_FROM( 0 )
#define IN_ADDRESS_VERSION_6 PB_INT_FROM( 1 )
#define IN_ADDRESS_VERSION_OK( version ) ( (uint64_t)( version ) <= 1 )

// "IN_ADDRESS_VERSION_4" or "IN_ADDRESS_VERSION_6".
IN_API struct pbString *inAddressVersionToString( pbInt version );
// -1 for an unknown name.
IN_API pbInt inAddressVersionFromString( const struct pbString *string );

PB_DECLS_END

#endif
