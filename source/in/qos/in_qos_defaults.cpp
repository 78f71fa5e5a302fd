// Names of the profiles of QoS options.
#include "in/qos/in_qos_defaults.h"

#include "in/base/in_name_table.hpp"
#include "in/qos/in_qos_defaults_internal.h"

static constinit pb::Global<struct pbEnum> in___QosDefaultsEnum;

const char *const in___QosDefaultsNames[] = {
    "IN_QOS_DEFAULTS_NONE", "IN_QOS_DEFAULTS_IPC", "IN_QOS_DEFAULTS_VOICE", "IN_QOS_DEFAULTS_SIGNALING", nullptr,
};

void in___QosDefaultsStartup( void )
{
    in::startEnum( in___QosDefaultsEnum, in___QosDefaultsNames );
}

void in___QosDefaultsShutdown( void )
{
    in___QosDefaultsEnum.invalidate();
}

struct pbString *inQosDefaultsToString( pbInt dflt )
{
    PB_ASSERT( IN_QOS_DEFAULTS_OK( dflt ) );
    return pbEnumGenerate( in___QosDefaultsEnum.get(), dflt );
}

pbInt inQosDefaultsFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___QosDefaultsEnum.get(), string );
}
