// Whether a network interface is up.
#ifndef IN_NW_INTERFACE_STATUS_H
#define IN_NW_INTERFACE_STATUS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_NW_INTERFACE_STATUS_DOWN PB_INT_FROM( 0 )
#define IN_NW_INTERFACE_STATUS_UP PB_INT_FROM( 1 )
#define IN_NW_INTERFACE_STATUS_OK( status ) ( (uint64_t)( status ) <= 1 )

// The name of the constant. Known between start-up and shut-down of the module.
IN_API struct pbString *inNwInterfaceStatusToString( pbInt status );
// -1 for an unknown name.
IN_API pbInt inNwInterfaceStatusFromString( const struct pbString *string );

PB_DECLS_END

#endif
