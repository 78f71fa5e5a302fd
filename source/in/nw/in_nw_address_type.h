// Kinds of layer-2 addresses.
#ifndef IN_NW_ADDRESS_TYPE_H
#define IN_NW_ADDRESS_TYPE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_NW_ADDRESS_TYPE_MAC PB_INT_FROM( 0 )
#define IN_NW_ADDRESS_TYPE_OK( at ) ( (uint64_t)( at ) <= 0 )

// The name of the constant. Known between start-up and shut-down of the module.
IN_API struct pbString *inNwAddressTypeToString( pbInt at );
// -1 for an unknown name.
IN_API pbInt inNwAddressTypeFromString( const struct pbString *string );

PB_DECLS_END

#endif
