// Profiles that QoS options start from.
#ifndef IN_QOS_DEFAULTS_H
#define IN_QOS_DEFAULTS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_QOS_DEFAULTS_NONE PB_INT_FROM( 0 )
#define IN_QOS_DEFAULTS_IPC PB_INT_FROM( 1 )
#define IN_QOS_DEFAULTS_VOICE PB_INT_FROM( 2 )
#define IN_QOS_DEFAULTS_SIGNALING PB_INT_FROM( 3 )
#define IN_QOS_DEFAULTS_OK( dflt ) ( (uint64_t)( dflt ) <= 3 )

// The name of the constant. Known between start-up and shut-down of the module.
IN_API struct pbString *inQosDefaultsToString( pbInt dflt );
// -1 for an unknown name.
IN_API pbInt inQosDefaultsFromString( const struct pbString *string );

PB_DECLS_END

#endif
