// How a command's datagrams are marked.
#include "inctl/qos_choice.hpp"

#include "inctl/help_formatter.hpp"

#include "in/qos/in_qos_defaults.h"
#include "in/qos/in_qos_options.h"

#include <fmt/format.h>

#include <map>

namespace inctl {
namespace {

const std::map<std::string, pbInt> profiles = { { "none", IN_QOS_DEFAULTS_NONE },
                                                { "ipc", IN_QOS_DEFAULTS_IPC },
                                                { "voice", IN_QOS_DEFAULTS_VOICE },
                                                { "signaling", IN_QOS_DEFAULTS_SIGNALING } };

} // namespace

pb::Ref<struct inQosStack> QosChoice::stack() const
{
    if ( profile.empty() && tos < 0 )
        return {};
    auto options = pb::adopt( inQosOptionsCreate() );
    if ( !profile.empty() )
        inQosOptionsSetDefaults( options.address(), profiles.at( profile ) );
    if ( tos >= 0 )
        inQosOptionsSetLayer3Tos( options.address(), tos );
    return pb::adopt( inQosStackCreate( options.get(), nullptr ) );
}

void addQosOptions( CLI::App &command, QosChoice &choice )
{
    command.add_option( "--qos", choice.profile, "Mark as none, ipc, voice or signaling" )
        ->type_name( "PROFILE" )
        ->check( oneOf( { "none", "ipc", "voice", "signaling" } ) );
    command.add_option( "--tos", choice.tos, "Mark with this TOS or traffic class byte, 0..255 or 0x00..0xFF" )
        ->type_name( "BYTE" )
        ->check( quiet( CLI::Range( 0, 255 ) ) );
}

std::string tosText( pbInt tos )
{
    return fmt::format( "0x{:02X} (DSCP {})", tos, tos >> 2 );
}

} // namespace inctl
