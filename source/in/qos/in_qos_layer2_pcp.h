// Priority code points of IEEE 802.1Q; the constants are the code points.
#ifndef IN_QOS_LAYER2_PCP_H
#define IN_QOS_LAYER2_PCP_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define IN_QOS_LAYER2_PCP_BEST_EFFORT PB_INT_FROM( 0 )
#define IN_QOS_LAYER2_PCP_BACKGROUND PB_INT_FROM( 1 )
#define IN_QOS_LAYER2_PCP_EXCELLENT_EFFORT PB_INT_FROM( 2 )
#define IN_QOS_LAYER2_PCP_CRITICAL_APPLICATIONS PB_INT_FROM( 3 )
#define IN_QOS_LAYER2_PCP_VIDEO PB_INT_FROM( 4 )
#define IN_QOS_LAYER2_PCP_VOICE PB_INT_FROM( 5 )
#define IN_QOS_LAYER2_PCP_INTERNETWORK_CONTROL PB_INT_FROM( 6 )
#define IN_QOS_LAYER2_PCP_NETWORK_CONTROL PB_INT_FROM( 7 )
#define IN_QOS_LAYER2_PCP_OK( pcp ) ( (uint64_t)( pcp ) <= 7 )

// The name of the constant. Known between start-up and shut-down of the module.
IN_API struct pbString *inQosLayer2PcpToString( pbInt pcp );
// -1 for an unknown name.
IN_API pbInt inQosLayer2PcpFromString( const struct pbString *string );

PB_DECLS_END

#endif
