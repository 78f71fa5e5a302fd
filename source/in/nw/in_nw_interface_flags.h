// Flags of a network interface.
#ifndef IN_NW_INTERFACE_FLAGS_H
#define IN_NW_INTERFACE_FLAGS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_NW_INTERFACE_FLAG_CANNOT_SET_STATUS ( (uint64_t)1 ) // the link cannot be taken up or down
#define IN_NW_INTERFACE_FLAG_HIDE ( (uint64_t)2 )              // not to be shown to a person

// Keeps the flags defined above.
IN_API uint64_t inNwInterfaceFlagsNormalize( uint64_t flags );
// The names joined by "|"; the empty text for none. Known between start-up and shut-down of the module.
IN_API struct pbString *inNwInterfaceFlagsToString( uint64_t flags );
// Unknown names are ignored.
IN_API uint64_t inNwInterfaceFlagsFromString( const struct pbString *pbs );

PB_DECLS_END

#endif
