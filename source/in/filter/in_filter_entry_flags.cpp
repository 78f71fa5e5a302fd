// Names and normal form of the flags of a filter entry.
#include "in/filter/in_filter_entry_flags.h"

#include "in/base/in_name_table.hpp"
#include "in/filter/in_filter_entry_flags_internal.h"

static constinit pb::Global<struct pbFlagset> in___FilterEntryFlagsFlagset;

const char *const in___FilterEntryFlagsNames[] = { "IN_FILTER_ENTRY_FLAG_ADDRESS",
                                                   "IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES",
                                                   "IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV", nullptr };

void in___FilterEntryFlagsStartup( void )
{
    in::startFlagset( in___FilterEntryFlagsFlagset, "in___FilterEntryFlagsFlagset", in___FilterEntryFlagsNames );
}

void in___FilterEntryFlagsShutdown( void )
{
    in___FilterEntryFlagsFlagset.invalidate();
}

uint64_t inFilterEntryFlagsNormalize( uint64_t flags )
{
    return flags & ( IN_FILTER_ENTRY_FLAG_ADDRESS | IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES |
                     IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV );
}

struct pbString *inFilterEntryFlagsToString( uint64_t flags )
{
    return pbFlagsetGenerate( in___FilterEntryFlagsFlagset.get(), inFilterEntryFlagsNormalize( flags ) );
}

uint64_t inFilterEntryFlagsFromString( const struct pbString *pbs )
{
    PB_ASSERT( pbs );
    return inFilterEntryFlagsNormalize( pbFlagsetParse( in___FilterEntryFlagsFlagset.get(), pbs ) );
}
