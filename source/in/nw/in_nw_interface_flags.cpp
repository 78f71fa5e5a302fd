// Names and normal form of the flags of a network interface.
#include "in/nw/in_nw_interface_flags.h"

#include "in/base/in_name_table.hpp"
#include "in/nw/in_nw_interface_flags_internal.h"

static constinit pb::Global<struct pbFlagset> in___NwInterfaceFlagsFlagset;

const char *const in___NwInterfaceFlagsNames[] = { "IN_NW_INTERFACE_FLAG_CANNOT_SET_STATUS",
                                                   "IN_NW_INTERFACE_FLAG_HIDE", nullptr };

void in___NwInterfaceFlagsStartup( void )
{
    in::startFlagset( in___NwInterfaceFlagsFlagset, "in___NwInterfaceFlagsFlagset", in___NwInterfaceFlagsNames );
}

void in___NwInterfaceFlagsShutdown( void )
{
    in___NwInterfaceFlagsFlagset.invalidate();
}

uint64_t inNwInterfaceFlagsNormalize( uint64_t flags )
{
    return flags & ( IN_NW_INTERFACE_FLAG_CANNOT_SET_STATUS | IN_NW_INTERFACE_FLAG_HIDE );
}

struct pbString *inNwInterfaceFlagsToString( uint64_t flags )
{
    return pbFlagsetGenerate( in___NwInterfaceFlagsFlagset.get(), inNwInterfaceFlagsNormalize( flags ) );
}

uint64_t inNwInterfaceFlagsFromString( const struct pbString *pbs )
{
    PB_ASSERT( pbs );
    return inNwInterfaceFlagsNormalize( pbFlagsetParse( in___NwInterfaceFlagsFlagset.get(), pbs ) );
}
