// How the configuration service makes, reads and changes QoS stacks.
#include "cs/cs_sort_backend.h"
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_options_internal.h"
#include "in/qos/in_qos_stack_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"

namespace {

constinit pb::Global<struct csSortBackend> backend;

struct pbObj *in___QosStackTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor )
{
    const auto options = pb::adopt( optionalStore ? inQosOptionsRestore( optionalStore ) : inQosOptionsCreate() );
    return inQosStackObj( inQosStackCreate( options.get(), optionalAnchor ) );
}

struct pbStore *in___QosStackConfigFunc( struct pbObj *obj, pbBool storeDefaults )
{
    return inQosOptionsStore( pb::adopt( inQosStackOptions( inQosStackFrom( obj ) ) ).get(), storeDefaults );
}

void in___QosStackSetConfigFunc( struct pbObj *obj, struct pbStore *store )
{
    inQosStackSetOptions( inQosStackFrom( obj ), pb::adopt( inQosOptionsRestore( store ) ).get() );
}

struct pbStore *in___QosStackNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults )
{
    return inQosOptionsStore( pb::adopt( inQosOptionsRestore( store ) ).get(), storeDefaults );
}

void in___QosStackTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor )
{
    inQosStackTraceCompleteAnchor( inQosStackFrom( obj ), anchor );
}

} // namespace

void in___QosStackCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate( inQosStackSort(), in___QosStackTryCreateFunc, in___QosStackConfigFunc,
                                                 in___QosStackSetConfigFunc, in___QosStackNormalizeConfigFunc, nullptr,
                                                 in___QosStackTraceCompleteAnchorFunc ) ) );
    pbInt keyCount = 0;
    const struct csKey *keys = in___QosOptionsKeys( &keyCount );
    csSortBackendSetKeys( backend.get(), keys, keyCount );
}

void in___QosStackCsShutdown( void )
{
    backend.invalidate();
}
