// How the configuration service makes, reads and changes stacks.
#include "cs/cs_sort_backend.h"
#include "cs/cs_warnings.h"
#include "in/base/in_options.h"
#include "in/base/in_options_internal.h"
#include "in/base/in_stack_internal.h"
#include "in/base/in_stack_warnings_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"

namespace {

constinit pb::Global<struct csSortBackend> backend;

struct pbObj *in___StackTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor )
{
    const auto options = pb::adopt( optionalStore ? inOptionsRestore( optionalStore ) : inOptionsCreate() );
    return inStackObj( inStackCreate( options.get(), optionalAnchor ) );
}

struct pbStore *in___StackConfigFunc( struct pbObj *obj, pbBool storeDefaults )
{
    return inOptionsStore( pb::adopt( inStackOptions( inStackFrom( obj ) ) ).get(), storeDefaults );
}

void in___StackSetConfigFunc( struct pbObj *obj, struct pbStore *store )
{
    inStackSetOptions( inStackFrom( obj ), pb::adopt( inOptionsRestore( store ) ).get() );
}

struct pbStore *in___StackNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults )
{
    return inOptionsStore( pb::adopt( inOptionsRestore( store ) ).get(), storeDefaults );
}

struct csStatusReporter *in___StackStatusFunc( struct pbObj *obj )
{
    return inStackCsStatus( inStackFrom( obj ) );
}

void in___StackTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor )
{
    inStackTraceCompleteAnchor( inStackFrom( obj ), anchor );
}

} // namespace

void in___StackCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate( inStackSort(), in___StackTryCreateFunc, in___StackConfigFunc,
                                                 in___StackSetConfigFunc, in___StackNormalizeConfigFunc,
                                                 in___StackStatusFunc, in___StackTraceCompleteAnchorFunc ) ) );
    pbInt keyCount = 0;
    const struct csKey *keys = in___OptionsKeys( &keyCount );
    csSortBackendSetKeys( backend.get(), keys, keyCount );
    csSortBackendSetWarnings( backend.get(), in___StackWarningsFunc );
}

void in___StackCsShutdown( void )
{
    backend.invalidate();
}
