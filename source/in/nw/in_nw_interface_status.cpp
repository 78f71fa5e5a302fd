// Names of the states of a link.
#include "in/nw/in_nw_interface_status.h"

#include "in/base/in_name_table.hpp"
#include "in/nw/in_nw_interface_status_internal.h"

static constinit pb::Global<struct pbEnum> in___NwInterfaceStatusEnum;

const char *const in___NwInterfaceStatusNames[] = { "IN_NW_INTERFACE_STATUS_DOWN", "IN_NW_INTERFACE_STATUS_UP",
                                                    nullptr };

void in___NwInterfaceStatusStartup( void )
{
    in::startEnum( in___NwInterfaceStatusEnum, in___NwInterfaceStatusNames );
}

void in___NwInterfaceStatusShutdown( void )
{
    in___NwInterfaceStatusEnum.invalidate();
}

struct pbString *inNwInterfaceStatusToString( pbInt status )
{
    PB_ASSERT( IN_NW_INTERFACE_STATUS_OK( status ) );
    return pbEnumGenerate( in___NwInterfaceStatusEnum.get(), status );
}

pbInt inNwInterfaceStatusFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___NwInterfaceStatusEnum.get(), string );
}
