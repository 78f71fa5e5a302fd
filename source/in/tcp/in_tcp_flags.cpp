// Names and normal form of the flags of a TCP channel or listener.
#include "in/tcp/in_tcp_flags.h"

#include "in/base/in_name_table.hpp"
#include "in/tcp/in_tcp_flags_internal.h"

static constinit pb::Global<struct pbFlagset> in___TcpFlagsFlagset;

const char *const in___TcpFlagsNames[] = { "IN_TCP_FLAG_NO_DELAY", "IN_TCP_FLAG_KEEP_ALIVE", nullptr };

void in___TcpFlagsStartup( void )
{
    in::startFlagset( in___TcpFlagsFlagset, "in___TcpFlagsFlagset", in___TcpFlagsNames );
}

void in___TcpFlagsShutdown( void )
{
    in___TcpFlagsFlagset.invalidate();
}

uint64_t inTcpFlagsNormalize( uint64_t flags )
{
    return flags & ( IN_TCP_FLAG_NO_DELAY | IN_TCP_FLAG_KEEP_ALIVE );
}

struct pbString *inTcpFlagsToString( uint64_t flags )
{
    return pbFlagsetGenerate( in___TcpFlagsFlagset.get(), inTcpFlagsNormalize( flags ) );
}

uint64_t inTcpFlagsFromString( const struct pbString *pbs )
{
    PB_ASSERT( pbs );
    return inTcpFlagsNormalize( pbFlagsetParse( in___TcpFlagsFlagset.get(), pbs ) );
}
