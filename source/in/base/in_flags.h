// Flags of a stack's options.
#ifndef IN_FLAGS_H
#define IN_FLAGS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_FLAG_LOOPBACK_ONLY ( (uint64_t)1 ) // only loopback addresses and interfaces

// Keeps the flags defined above.
IN_API uint64_t inFlagsNormalize( uint64_t flags );
// The names joined by "|"; the empty text for none. Known between start-up and shut-down of the module.
IN_API struct pbString *inFlagsToString( uint64_t flags );
// Unknown names are ignored.
IN_API uint64_t inFlagsFromString( const struct pbString *pbs );

PB_DECLS_END

#endif
