// The module: its record, and the order in which its parts start and stop.
#include "in/base/in_module.h"

#include "cs/cs_module_backend.h"
#include "in/base/in_address_version_internal.h"
#include "in/base/in_flags_internal.h"
#include "in/base/in_module_internal.h"
#include "in/base/in_stack_imp_internal.h"
#include "in/base/in_stack_internal.h"
#include "in/csupdate/in_csupdate_internal.h"
#include "in/filter/in_filter_entry_flags_internal.h"
#include "in/filter/in_filter_imp_internal.h"
#include "in/filter/in_filter_internal.h"
#include "in/imp/in_imp_dns_internal.h"
#include "in/imp/in_imp_qos_internal.h"
#include "in/imp/in_imp_udp_internal.h"
#include "in/nw/in_nw_address_type_internal.h"
#include "in/nw/in_nw_interface_flags_internal.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interface_status_internal.h"
#include "in/nw/in_nw_interfaces_internal.h"
#include "in/nw/in_nw_stack_imp_internal.h"
#include "in/nw/in_nw_stack_internal.h"
#include "in/qos/in_qos_defaults_internal.h"
#include "in/qos/in_qos_layer2_pcp_internal.h"
#include "in/qos/in_qos_stack_internal.h"
#include "in/qos/in_qos_windows_traffic_type_internal.h"
#include "in/tcp/in_tcp_flags_internal.h"
#include "in/udp/in_udp_flags_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"

#include <cstdio>

namespace {

constinit pb::Global<struct csModuleBackend> in___CsModuleBackend;

// The product's identification comes from the build, see source/CMakeLists.txt.
constexpr struct pbModuleRecord in___module_record = {
    .name = "in",
    .description = "Internetworking",
    .version = "17.1",
    .requiredModules = "cs iri pb pr rfc tr unix",
    .productName = IN_PRODUCT_NAME,
    .productVersion = { IN_PRODUCT_VERSION },
    .buildTime = IN_BUILD_TIME,
    .vendor = IN_VENDOR,
};

constexpr struct pbModule in___module = {
    .record = &in___module_record,
    .startup = in___ModuleStartup,
    .reserved = nullptr,
    .shutdown = in___ModuleShutdown,
    .shutdownWait = in___ModuleShutdownWait,
    .personality = in___ModulePersonality,
};

} // namespace

const struct pbModule *inModule( void )
{
    return &in___module;
}

// A sort may stand before the tables that its callbacks use: the configuration service calls none of them before the
// module's backend, which comes last.
pbBool in___ModuleStartup( void )
{
    in___AddressVersionStartup();
    in___FlagsStartup();
    in___StackCsStartup();
    in___Csupdate20130104Startup();
    in___Csupdate20171013Startup();
    in___Csupdate20180703Startup();
    in___Csupdate20190306Startup();
    in___Csupdate20200204Startup();
    in___Csupdate20200219Startup();
    in___FilterCsStartup();
    in___FilterEntryFlagsStartup();
    in___ImpDnsStartup();
    in___ImpQosStartup();
    in___ImpUdpStartup();
    in___ImpUdpChannelStartup();
    in___NwAddressTypeStartup();
    in___NwInterfaceStatusStartup();
    in___NwInterfaceFlagsStartup();
    in___NwInterfacesStartup();
    in___NwStackCsStartup();
    in___QosDefaultsStartup();
    in___QosLayer2PcpStartup();
    in___QosStackCsStartup();
    in___QosWindowsTrafficTypeStartup();
    in___TcpFlagsStartup();
    in___UdpFlagsStartup();
    in___CsModuleBackend.set( pb::adopt( csModuleBackendCreate( &in___module, in___CsModuleInfoFunc ) ) );
    return true;
}

// Phase one: nobody calls in any more, and what runs by itself is asked to end.
void in___ModuleShutdown( void )
{
    in___CsModuleBackend.invalidate();
    in___QosStackCsShutdown();
    // What the stacks have changed is taken back while there are interfaces to do it.
    in___NwStackImpHaltWait();
    in___NwInterfacesShutdown();
    in___NwStackCsShutdown();
    in___FilterCsShutdown();
    in___StackCsShutdown();
}

// Phase two: wait for what runs, then release what it used.
void in___ModuleShutdownWait( void )
{
    // What was released during a run goes with that run's end: a filter leaves its stack then, and a stack still uses
    // the interfaces.
    in___FilterImpHaltWait();
    in___StackImpHaltWait();
    in___NwStackImpHaltWait();
    in___UdpFlagsShutdown();
    in___TcpFlagsShutdown();
    in___QosWindowsTrafficTypeShutdown();
    in___QosLayer2PcpShutdown();
    in___QosDefaultsShutdown();
    in___NwInterfacesShutdownWait();
    in___NwInterfaceFlagsShutdown();
    in___NwInterfaceStatusShutdown();
    in___NwAddressTypeShutdown();
    in___ImpUdpChannelShutdown();
    in___ImpUdpShutdown();
    in___ImpQosShutdown();
    in___ImpDnsShutdown();
    in___FilterEntryFlagsShutdown();
    in___Csupdate20200219Shutdown();
    in___Csupdate20200204Shutdown();
    in___Csupdate20190306Shutdown();
    in___Csupdate20180703Shutdown();
    in___Csupdate20171013Shutdown();
    in___Csupdate20130104Shutdown();
    in___FlagsShutdown();
    in___AddressVersionShutdown();
}

int in___ModulePersonality( int, char ** )
{
    const auto &record = in___module_record;
    return std::printf( "%s %s (%s)\n%s %lld.%lld.%lld, built %s\n%s\n", record.name, record.version,
                        record.description, record.productName, static_cast<long long>( record.productVersion[0] ),
                        static_cast<long long>( record.productVersion[1] ),
                        static_cast<long long>( record.productVersion[2] ), record.buildTime, record.vendor ) < 0;
}

struct pbStore *in___CsModuleInfoFunc( void )
{
    auto array = pb::adopt( pbStoreCreate() );
    const auto interfaces = pb::adopt( inNwInterfacesVector() );
    for ( pbInt index = 0; index < pbVectorLength( interfaces.get() ); ++index ) {
        const auto iface = pb::adopt( inNwInterfaceFrom( pbVectorObjAt( interfaces.get(), index ) ) );
        const auto state = pb::adopt( inNwInterfaceState( iface.get() ) );
        auto entry = pb::adopt( pbStoreCreate() );
        pbStoreSetValueCstr( entry.address(), "identifier", -1,
                             pb::adopt( inNwInterfaceIdentifier( iface.get() ) ).get() );
        pbStoreSetStoreCstr( entry.address(), "state", -1, pb::adopt( inNwInterfaceStateStore( state.get() ) ).get() );
        pbStoreArrayAppendStore( array.address(), entry.get() );
    }
    auto info = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( info.address(), "interfaces", -1, array.get() );
    return info.release();
}
