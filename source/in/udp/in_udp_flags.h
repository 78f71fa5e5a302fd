// Flags of a UDP channel.
#ifndef IN_UDP_FLAGS_H
#define IN_UDP_FLAGS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_UDP_FLAG_NO_RECEIVE ( (uint64_t)1 ) // only sends: smallest receive buffer, never watched for readability

// Keeps the flags defined above.
IN_API uint64_t inUdpFlagsNormalize( uint64_t flags );
// The names joined by "|"; the empty text for none. Known between start-up and shut-down of the module.
IN_API struct pbString *inUdpFlagsToString( uint64_t flags );
// Unknown names are ignored.
IN_API uint64_t inUdpFlagsFromString( const struct pbString *pbs );

PB_DECLS_END

#endif
