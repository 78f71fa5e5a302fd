// inNwAddress: a layer-2 address of a network interface.
#include "in/nw/in_nw_address.h"

#include "in/base/in_store_form.hpp"
#include "in/nw/in_nw_address_type.h"
#include "in/nw/in_nw_address_type_internal.h"
#include "in/nw/in_nw_mac_address.h"

PB_SORT_DECLARE( in___sort_IN_NW_ADDRESS )

struct inNwAddress final : pb::Object<struct inNwAddress, in___sort_IN_NW_ADDRESS> {
    pbInt type = IN_NW_ADDRESS_TYPE_MAC;
    pb::Ref<struct inNwMacAddress> mac; // set when that is the type

    auto operator<=>( const inNwAddress & ) const = default;
};

PB_OBJECT_DEFINE( inNwAddress, in___sort_IN_NW_ADDRESS )

namespace {

constexpr auto form = std::tuple{
    in::form::Row{ "type", &inNwAddress::type,
                   in::form::Enumeration{ inNwAddressTypeToString, inNwAddressTypeFromString, in___NwAddressTypeNames },
                   in::form::always },
    in::form::Row{ "mac", &inNwAddress::mac,
                   in::form::TextOf<struct inNwMacAddress>{ inNwMacAddressToString, inNwMacAddressTryCreateFromString,
                                                            "a MAC address" },
                   in::form::whenPresent },
};

} // namespace

struct inNwAddress *inNwAddressCreateMac( const struct inNwMacAddress *mac )
{
    PB_ASSERT( mac );
    auto address = pb::make<struct inNwAddress>();
    address->mac = pb::share( mac );
    return address.release();
}

struct inNwAddress *inNwAddressCreateFrom( const struct inNwAddress *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNwAddress>( *source ).release();
}

pbInt inNwAddressType( const struct inNwAddress *address )
{
    PB_ASSERT( address );
    return address->type;
}

struct inNwMacAddress *inNwAddressMac( const struct inNwAddress *address )
{
    PB_ASSERT( address );
    return address->mac.share();
}

pbBool inNwAddressHasMac( const struct inNwAddress *address )
{
    PB_ASSERT( address );
    return PB_BOOL_FROM( address->mac );
}

struct pbStore *inNwAddressStore( const struct inNwAddress *address )
{
    PB_ASSERT( address );
    return in::form::store( *address, form ).release();
}

struct inNwAddress *inNwAddressTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto address = pb::make<struct inNwAddress>();
    return in::form::restore( *address, form, store ) ? address.release() : nullptr;
}
