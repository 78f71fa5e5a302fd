// How the configuration service makes, reads and changes interface configuration stacks.
#include "cs/cs_sort_backend.h"
#include "cs/cs_warnings.h"
#include "in/nw/in_nw_options.h"
#include "in/nw/in_nw_options_internal.h"
#include "in/nw/in_nw_stack_internal.h"
#include "in/nw/in_nw_stack_warnings_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"

namespace {

constinit pb::Global<struct csSortBackend> backend;

struct pbObj *in___NwStackTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor )
{
    const auto options = pb::adopt( optionalStore ? inNwOptionsRestore( optionalStore ) : inNwOptionsCreate() );
    return inNwStackObj( inNwStackCreate( options.get(), optionalAnchor ) );
}

struct pbStore *in___NwStackConfigFunc( struct pbObj *obj, pbBool storeDefaults )
{
    return inNwOptionsStore( pb::adopt( inNwStackOptions( inNwStackFrom( obj ) ) ).get(), storeDefaults );
}

void in___NwStackSetConfigFunc( struct pbObj *obj, struct pbStore *store )
{
    inNwStackSetOptions( inNwStackFrom( obj ), pb::adopt( inNwOptionsRestore( store ) ).get() );
}

struct pbStore *in___NwStackNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults )
{
    return inNwOptionsStore( pb::adopt( inNwOptionsRestore( store ) ).get(), storeDefaults );
}

struct csStatusReporter *in___NwStackStatusFunc( struct pbObj *obj )
{
    return inNwStackCsStatus( inNwStackFrom( obj ) );
}

void in___NwStackTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor )
{
    inNwStackTraceCompleteAnchor( inNwStackFrom( obj ), anchor );
}

} // namespace

void in___NwStackCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate( inNwStackSort(), in___NwStackTryCreateFunc, in___NwStackConfigFunc,
                                                 in___NwStackSetConfigFunc, in___NwStackNormalizeConfigFunc,
                                                 in___NwStackStatusFunc, in___NwStackTraceCompleteAnchorFunc ) ) );
    pbInt keyCount = 0;
    const struct csKey *keys = in___NwOptionsKeys( &keyCount );
    csSortBackendSetKeys( backend.get(), keys, keyCount );
    csSortBackendSetWarnings( backend.get(), in___NwStackWarningsFunc );
}

void in___NwStackCsShutdown( void )
{
    backend.invalidate();
}
