// Names of the priority code points of IEEE 802.1Q.
#include "in/qos/in_qos_layer2_pcp.h"

#include "in/base/in_name_table.hpp"
#include "in/qos/in_qos_layer2_pcp_internal.h"

static constinit pb::Global<struct pbEnum> in___QosLayer2PcpEnum;

const char *const in___QosLayer2PcpNames[] = {
    "IN_QOS_LAYER2_PCP_BEST_EFFORT",
    "IN_QOS_LAYER2_PCP_BACKGROUND",
    "IN_QOS_LAYER2_PCP_EXCELLENT_EFFORT",
    "IN_QOS_LAYER2_PCP_CRITICAL_APPLICATIONS",
    "IN_QOS_LAYER2_PCP_VIDEO",
    "IN_QOS_LAYER2_PCP_VOICE",
    "IN_QOS_LAYER2_PCP_INTERNETWORK_CONTROL",
    "IN_QOS_LAYER2_PCP_NETWORK_CONTROL",
    nullptr,
};

void in___QosLayer2PcpStartup( void )
{
    in::startEnum( in___QosLayer2PcpEnum, in___QosLayer2PcpNames );
}

void in___QosLayer2PcpShutdown( void )
{
    in___QosLayer2PcpEnum.invalidate();
}

struct pbString *inQosLayer2PcpToString( pbInt pcp )
{
    PB_ASSERT( IN_QOS_LAYER2_PCP_OK( pcp ) );
    return pbEnumGenerate( in___QosLayer2PcpEnum.get(), pcp );
}

pbInt inQosLayer2PcpFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___QosLayer2PcpEnum.get(), string );
}
