// Names of the versions of an IP address.
#include "in/base/in_address_version.h"

#include "in/base/in_address_version_internal.h"
#include "in/base/in_name_table.hpp"

static constinit pb::Global<struct pbEnum> in___AddressVersionEnum;

const char *const in___AddressVersionNames[] = { "IN_ADDRESS_VERSION_4", "IN_ADDRESS_VERSION_6", nullptr };

void in___AddressVersionStartup( void )
{
    in::startEnum( in___AddressVersionEnum, in___AddressVersionNames );
}

void in___AddressVersionShutdown( void )
{
    in___AddressVersionEnum.invalidate();
}

struct pbString *inAddressVersionToString( pbInt version )
{
    PB_ASSERT( IN_ADDRESS_VERSION_OK( version ) );
    return pbEnumGenerate( in___AddressVersionEnum.get(), version );
}

pbInt inAddressVersionFromString( const struct pbString *string )
{
    PB_ASSERT( string );
    return pbEnumParse( in___AddressVersionEnum.get(), string );
}
