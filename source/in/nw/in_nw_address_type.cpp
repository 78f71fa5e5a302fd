// Names of the kinds of layer-2 addresses.
#include "in/nw/in_nw_address_type.h"

#include "in/base/in_name_table.hpp"
#include "in/nw/in_nw_address_type_internal.h"

static constinit pb::Global<struct pbEnum> in___NwAddressTypeEnum;

const char *const in___NwAddressTypeNames[] = { "IN_NW_ADDRESS_TYPE_MAC", nullptr };

void in___NwAddressTypeStartup( void )
{
    in::startEnum( in___NwAddressTypeEnum, in___NwAddressTypeNames );
}

void in___NwAddressTypeShutdown( void )
{
    in___NwAddressTypeEnum.invalidate();
}

struct pbString *inNwAddressTypeToString( pbInt at )
{
    PB_ASSERT( IN_NW_ADDRESS_TYPE_OK( at ) );
    return pbEnumGenerate( in___NwAddressTypeEnum.get(), at );
}

pbInt inNwAddressTypeFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___NwAddressTypeEnum.get(), string );
}
