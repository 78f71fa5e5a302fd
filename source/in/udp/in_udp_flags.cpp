// Names and normal form of the flags of a UDP channel.
#include "in/udp/in_udp_flags.h"

#include "in/base/in_name_table.hpp"
#include "in/udp/in_udp_flags_internal.h"

static constinit pb::Global<struct pbFlagset> in___UdpFlagsFlagset;

const char *const in___UdpFlagsNames[] = { "IN_UDP_FLAG_NO_RECEIVE", nullptr };

void in___UdpFlagsStartup( void )
{
    in::startFlagset( in___UdpFlagsFlagset, "in___UdpFlagsFlagset", in___UdpFlagsNames );
}

void in___UdpFlagsShutdown( void )
{
    in___UdpFlagsFlagset.invalidate();
}

uint64_t inUdpFlagsNormalize( uint64_t flags )
{
    return flags & IN_UDP_FLAG_NO_RECEIVE;
}

struct pbString *inUdpFlagsToString( uint64_t flags )
{
    return pbFlagsetGenerate( in___UdpFlagsFlagset.get(), inUdpFlagsNormalize( flags ) );
}

uint64_t inUdpFlagsFromString( const struct pbString *pbs )
{
    PB_ASSERT( pbs );
    return inUdpFlagsNormalize( pbFlagsetParse( in___UdpFlagsFlagset.get(), pbs ) );
}
