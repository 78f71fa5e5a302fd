// InTables: the tables of names behind the values, started in the module's order while it lives; and stores written as
// JSON, for tests of values without a running module.
#ifndef SUPPORT_IN_TABLES_HPP
#define SUPPORT_IN_TABLES_HPP

#include "cs/cs_json.h"
#include "in/base/in_address_version_internal.h"
#include "in/base/in_flags_internal.h"
#include "in/nw/in_nw_address_type_internal.h"
#include "in/nw/in_nw_interface_flags_internal.h"
#include "in/nw/in_nw_interface_status_internal.h"
#include "in/qos/in_qos_defaults_internal.h"
#include "in/qos/in_qos_layer2_pcp_internal.h"
#include "in/qos/in_qos_windows_traffic_type_internal.h"
#include "in/tcp/in_tcp_flags_internal.h"
#include "in/udp/in_udp_flags_internal.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <string>
#include <string_view>

namespace support {

class InTables {
public:
    InTables()
    {
        in___AddressVersionStartup();
        in___FlagsStartup();
        in___NwAddressTypeStartup();
        in___NwInterfaceStatusStartup();
        in___NwInterfaceFlagsStartup();
        in___QosDefaultsStartup();
        in___QosLayer2PcpStartup();
        in___QosWindowsTrafficTypeStartup();
        in___TcpFlagsStartup();
        in___UdpFlagsStartup();
    }
    ~InTables()
    {
        in___UdpFlagsShutdown();
        in___TcpFlagsShutdown();
        in___QosWindowsTrafficTypeShutdown();
        in___QosLayer2PcpShutdown();
        in___QosDefaultsShutdown();
        in___NwInterfaceFlagsShutdown();
        in___NwInterfaceStatusShutdown();
        in___NwAddressTypeShutdown();
        in___FlagsShutdown();
        in___AddressVersionShutdown();
    }
    InTables( const InTables & ) = delete;
    InTables &operator=( const InTables & ) = delete;
};

inline pb::Ref<struct pbStore> store( std::string_view json )
{
    return pb::adopt( csJsonTryToStore( pb::string( json ).get() ) );
}

// Without blanks between the tokens. Takes over the store.
inline std::string json( struct pbStore *store )
{
    const auto owned = pb::adopt( store );
    if ( !owned )
        return "null";
    std::string compact;
    bool inText = false;
    for ( const char c : pb::utf8( pb::adopt( csJsonFromStore( owned.get(), CS_JSON_SHORT ) ) ) ) {
        inText ^= c == '"';
        if ( inText || c != ' ' )
            compact += c;
    }
    return compact;
}

} // namespace support

#endif
