// Traffic types of the Windows QoS service; carried and stored, without effect on Linux.
#ifndef IN_QOS_WINDOWS_TRAFFIC_TYPE_H
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_QOS_WINDOWS_TRAFFIC_TYPE_BEST_EFFORT PB_INT_FROM( 0 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_BACKGROUND PB_INT_FROM( 1 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_EXCELLENT_EFFORT PB_INT_FROM( 2 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_AUDIO_VIDEO PB_INT_FROM( 3 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_VOICE PB_INT_FROM( 4 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_CONTROL PB_INT_FROM( 5 )
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_OK( tt ) ( (uint64_t)( tt ) <= 5 )

// The name of the constant. Known between start-up and shut-down of the module.
IN_API struct pbString *inQosWindowsTrafficTypeToString( pbInt tt );
// -1 for an unknown name.
IN_API pbInt inQosWindowsTrafficTypeFromString( const struct pbString *string );

PB_DECLS_END

#endif
