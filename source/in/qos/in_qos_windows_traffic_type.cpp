// Names of the traffic types of the Windows QoS service.
#include "in/qos/in_qos_windows_traffic_type.h"

#include "in/base/in_name_table.hpp"
#include "in/qos/in_qos_windows_traffic_type_internal.h"

static constinit pb::Global<struct pbEnum> in___QosWindowsTrafficTypeEnum;

const char *const in___QosWindowsTrafficTypeNames[] = {
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_BEST_EFFORT",
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_BACKGROUND",
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_EXCELLENT_EFFORT",
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_AUDIO_VIDEO",
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_VOICE",
    "IN_QOS_WINDOWS_TRAFFIC_TYPE_CONTROL",
    nullptr,
};

void in___QosWindowsTrafficTypeStartup( void )
{
    in::startEnum( in___QosWindowsTrafficTypeEnum, in___QosWindowsTrafficTypeNames );
}

void in___QosWindowsTrafficTypeShutdown( void )
{
    in___QosWindowsTrafficTypeEnum.invalidate();
}

struct pbString *inQosWindowsTrafficTypeToString( pbInt tt )
{
    PB_ASSERT( IN_QOS_WINDOWS_TRAFFIC_TYPE_OK( tt ) );
    return pbEnumGenerate( in___QosWindowsTrafficTypeEnum.get(), tt );
}

pbInt inQosWindowsTrafficTypeFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___QosWindowsTrafficTypeEnum.get(), string );
}
