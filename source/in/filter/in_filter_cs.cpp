// How the configuration service makes, reads and changes address filters.
#include "cs/cs_sort_backend.h"
#include "cs/cs_warnings.h"
#include "in/filter/in_filter_internal.h"
#include "in/filter/in_filter_options.h"
#include "in/filter/in_filter_options_internal.h"
#include "in/filter/in_filter_warnings_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"

namespace {

constinit pb::Global<struct csSortBackend> backend;

struct pbObj *in___FilterTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor )
{
    const auto options = pb::adopt( optionalStore ? inFilterOptionsRestore( optionalStore ) : inFilterOptionsCreate() );
    return inFilterObj( inFilterCreate( options.get(), optionalAnchor ) );
}

struct pbStore *in___FilterConfigFunc( struct pbObj *obj, pbBool storeDefaults )
{
    return inFilterOptionsStore( pb::adopt( inFilterOptions( inFilterFrom( obj ) ) ).get(), storeDefaults );
}

void in___FilterSetConfigFunc( struct pbObj *obj, struct pbStore *store )
{
    inFilterSetOptions( inFilterFrom( obj ), pb::adopt( inFilterOptionsRestore( store ) ).get() );
}

struct pbStore *in___FilterNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults )
{
    return inFilterOptionsStore( pb::adopt( inFilterOptionsRestore( store ) ).get(), storeDefaults );
}

struct csStatusReporter *in___FilterStatusFunc( struct pbObj *obj )
{
    return inFilterCsStatus( inFilterFrom( obj ) );
}

void in___FilterTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor )
{
    inFilterTraceCompleteAnchor( inFilterFrom( obj ), anchor );
}

} // namespace

void in___FilterCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate( inFilterSort(), in___FilterTryCreateFunc, in___FilterConfigFunc,
                                                 in___FilterSetConfigFunc, in___FilterNormalizeConfigFunc,
                                                 in___FilterStatusFunc, in___FilterTraceCompleteAnchorFunc ) ) );
    pbInt keyCount = 0;
    const struct csKey *keys = in___FilterOptionsKeys( &keyCount );
    csSortBackendSetKeys( backend.get(), keys, keyCount );
    csSortBackendSetWarnings( backend.get(), in___FilterWarningsFunc );
}

void in___FilterCsShutdown( void )
{
    backend.invalidate();
}
