// inQosOptions: a profile of marking and three settings that follow it or were set explicitly.
#include "in/qos/in_qos_options.h"

#include "in/base/in_store_form.hpp"
#include "in/qos/in_qos_defaults.h"
#include "in/qos/in_qos_defaults_internal.h"
#include "in/qos/in_qos_layer2_pcp.h"
#include "in/qos/in_qos_layer2_pcp_internal.h"
#include "in/qos/in_qos_options_internal.h"
#include "in/qos/in_qos_windows_traffic_type.h"
#include "in/qos/in_qos_windows_traffic_type_internal.h"

PB_SORT_DECLARE( in___sort_IN_QOS_OPTIONS )

namespace {

struct Profile {
    uint8_t layer3Tos;
    pbInt layer2Pcp;
    pbInt windowsTrafficType;
};

constexpr Profile profiles[] = {
    /* NONE      */ { 0x00, IN_QOS_LAYER2_PCP_BEST_EFFORT, IN_QOS_WINDOWS_TRAFFIC_TYPE_BEST_EFFORT },
    /* IPC       */ { 0xA0, IN_QOS_LAYER2_PCP_EXCELLENT_EFFORT, IN_QOS_WINDOWS_TRAFFIC_TYPE_EXCELLENT_EFFORT },
    /* VOICE     */ { 0xB8, IN_QOS_LAYER2_PCP_VOICE, IN_QOS_WINDOWS_TRAFFIC_TYPE_VOICE },
    /* SIGNALING */ { 0xA0, IN_QOS_LAYER2_PCP_EXCELLENT_EFFORT, IN_QOS_WINDOWS_TRAFFIC_TYPE_EXCELLENT_EFFORT },
};

} // namespace

struct inQosOptions final : pb::Object<struct inQosOptions, in___sort_IN_QOS_OPTIONS> {
    pbInt defaults = IN_QOS_DEFAULTS_NONE;
    pb::Defaulted<uint8_t> layer3Tos{ profiles[IN_QOS_DEFAULTS_NONE].layer3Tos };
    pb::Defaulted<pbInt> layer2Pcp{ profiles[IN_QOS_DEFAULTS_NONE].layer2Pcp };
    pb::Defaulted<pbInt> windowsTrafficType{ profiles[IN_QOS_DEFAULTS_NONE].windowsTrafficType };

    auto operator<=>( const inQosOptions & ) const = default;

    // Gives every setting that is not explicit what the profile says.
    void followProfile()
    {
        const Profile &profile = profiles[defaults];
        if ( layer3Tos.isDefault )
            layer3Tos.value = profile.layer3Tos;
        if ( layer2Pcp.isDefault )
            layer2Pcp.value = profile.layer2Pcp;
        if ( windowsTrafficType.isDefault )
            windowsTrafficType.value = profile.windowsTrafficType;
    }
};

PB_OBJECT_DEFINE( inQosOptions, in___sort_IN_QOS_OPTIONS )

namespace {

using in::form::Enumeration;
using in::form::Row;
using in::form::Told;

constexpr auto form = std::tuple{
    Row{ "defaults", &inQosOptions::defaults,
         Told{ Enumeration{ inQosDefaultsToString, inQosDefaultsFromString, in___QosDefaultsNames },
               "The profile that gives the settings that are not given" },
         in::form::always },
    Row{ "layer3Tos", &inQosOptions::layer3Tos,
         Told{ in::form::HexadecimalByte{}, "The traffic class octet of the IP header" }, in::form::unlessDefault },
    Row{ "layer2Pcp", &inQosOptions::layer2Pcp,
         Told{ Enumeration{ inQosLayer2PcpToString, inQosLayer2PcpFromString, in___QosLayer2PcpNames },
               "The priority of the link layer, set as the priority of the socket" },
         in::form::unlessDefault },
    Row{ "windowsTrafficType", &inQosOptions::windowsTrafficType,
         Told{ Enumeration{ inQosWindowsTrafficTypeToString, inQosWindowsTrafficTypeFromString,
                            in___QosWindowsTrafficTypeNames },
               "The traffic type on Windows hosts" },
         in::form::unlessDefault },
};

} // namespace

const struct csKey *in___QosOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inQosOptions *inQosOptionsCreate( void )
{
    return pb::make<struct inQosOptions>().release();
}

struct inQosOptions *inQosOptionsCreateFrom( const struct inQosOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inQosOptions>( *source ).release();
}

pbInt inQosOptionsDefaults( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->defaults;
}

void inQosOptionsSetDefaults( struct inQosOptions **opt, pbInt dflt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( IN_QOS_DEFAULTS_OK( dflt ) );
    struct inQosOptions &edited = pb::edit( opt );
    edited.defaults = dflt;
    edited.followProfile();
}

pbInt inQosOptionsLayer3Tos( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->layer3Tos.value;
}

void inQosOptionsSetLayer3Tos( struct inQosOptions **opt, pbInt tos )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).layer3Tos.set( static_cast<uint8_t>( tos ) );
}

pbBool inQosOptionsLayer3TosDefault( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->layer3Tos.isDefault;
}

void inQosOptionsSetLayer3TosDefault( struct inQosOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    struct inQosOptions &edited = pb::edit( opt );
    edited.layer3Tos.setDefault( profiles[edited.defaults].layer3Tos );
}

pbInt inQosOptionsLayer2Pcp( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->layer2Pcp.value;
}

void inQosOptionsSetLayer2Pcp( struct inQosOptions **opt, pbInt pcp )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( IN_QOS_LAYER2_PCP_OK( pcp ) );
    pb::edit( opt ).layer2Pcp.set( pcp );
}

pbBool inQosOptionsLayer2PcpDefault( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->layer2Pcp.isDefault;
}

void inQosOptionsSetLayer2PcpDefault( struct inQosOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    struct inQosOptions &edited = pb::edit( opt );
    edited.layer2Pcp.setDefault( profiles[edited.defaults].layer2Pcp );
}

pbInt inQosOptionsWindowsTrafficType( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->windowsTrafficType.value;
}

void inQosOptionsSetWindowsTrafficType( struct inQosOptions **opt, pbInt tt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( IN_QOS_WINDOWS_TRAFFIC_TYPE_OK( tt ) );
    pb::edit( opt ).windowsTrafficType.set( tt );
}

pbBool inQosOptionsWindowsTrafficTypeDefault( const struct inQosOptions *opt )
{
    PB_ASSERT( opt );
    return opt->windowsTrafficType.isDefault;
}

void inQosOptionsSetWindowsTrafficTypeDefault( struct inQosOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    struct inQosOptions &edited = pb::edit( opt );
    edited.windowsTrafficType.setDefault( profiles[edited.defaults].windowsTrafficType );
}

struct pbStore *inQosOptionsStore( const struct inQosOptions *opt, pbBool storeDefaults )
{
    PB_ASSERT( opt );
    return in::form::store( *opt, form, storeDefaults ).release();
}

struct inQosOptions *inQosOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto opt = pb::make<struct inQosOptions>();
    in::form::restore( *opt, form, store );
    opt->followProfile();
    return opt.release();
}
