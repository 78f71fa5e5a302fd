// Flags of a TCP channel or listener.
#ifndef IN_TCP_FLAGS_H
#define IN_TCP_FLAGS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_TCP_FLAG_NO_DELAY ( (uint64_t)1 )   // TCP_NODELAY
#define IN_TCP_FLAG_KEEP_ALIVE ( (uint64_t)2 ) // keep-alive on, even when the options leave it off

// Keeps the flags defined above.
IN_API uint64_t inTcpFlagsNormalize( uint64_t flags );
// The names joined by "|"; the empty text for none. Known between start-up and shut-down of the module.
IN_API struct pbString *inTcpFlagsToString( uint64_t flags );
// Unknown names are ignored.
IN_API uint64_t inTcpFlagsFromString( const struct pbString *pbs );

PB_DECLS_END

#endif
