// What the steps of the configuration's migration share.
#include "in/csupdate/in_csupdate.hpp"

#include "in/base/in_module.h"
#include "pb/pb_module_version.h"

void in::csupdate::start( Backend &backend, const char *date, csUpdateFunc *func )
{
    backend.set( pb::adopt( csUpdateBackendCreateCstr( date, -1, func ) ) );
}

bool in::csupdate::isAtMost( const struct csUpdate *update, pbInt major )
{
    const auto version = pb::adopt( csUpdateModuleVersion( update, inModule() ) );
    return !version || pbModuleVersionMajor( version.get() ) <= major;
}

void in::csupdate::setVersion( struct csUpdate **update, const char *version )
{
    const auto reached = pb::adopt( pbModuleVersionTryCreateFromCstr( version, -1 ) );
    csUpdateSetModuleVersion( update, inModule(), reached.get() );
}

bool in::csupdate::remove( Store &store, const char *key )
{
    const pbInt before = pbStoreLength( store.get() );
    pbStoreDelValueCstr( store.address(), key, -1 );
    pbStoreDelStoreCstr( store.address(), key, -1 );
    return pbStoreLength( store.get() ) < before;
}
