// Names and normal form of the flags of a stack's options.
#include "in/base/in_flags.h"

#include "in/base/in_flags_internal.h"
#include "in/base/in_name_table.hpp"

static constinit pb::Global<struct pbFlagset> in___FlagsFlagset;

const char *const in___FlagsNames[] = { "IN_FLAG_LOOPBACK_ONLY", nullptr };

void in___FlagsStartup( void )
{
    in::startFlagset( in___FlagsFlagset, "in___FlagsFlagset", in___FlagsNames );
}

void in___FlagsShutdown( void )
{
    in___FlagsFlagset.invalidate();
}

uint64_t inFlagsNormalize( uint64_t flags )
{
    return flags & IN_FLAG_LOOPBACK_ONLY;
}

struct pbString *inFlagsToString( uint64_t flags )
{
    return pbFlagsetGenerate( in___FlagsFlagset.get(), inFlagsNormalize( flags ) );
}

uint64_t inFlagsFromString( const struct pbString *pbs )
{
    PB_ASSERT( pbs );
    return inFlagsNormalize( pbFlagsetParse( in___FlagsFlagset.get(), pbs ) );
}
