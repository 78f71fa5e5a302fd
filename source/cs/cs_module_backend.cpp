// csModuleBackend: a module's presence in the configuration service, and what all of them tell.
#include "cs/cs_module_backend.h"

#include "cs/cs_configuration.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_store.h"

PB_SORT_DECLARE( cs___sort_CS_MODULE_BACKEND )

struct csModuleBackend final : pb::Object<struct csModuleBackend, cs___sort_CS_MODULE_BACKEND> {
    explicit csModuleBackend( std::shared_ptr<cs::Module> present ) : module( std::move( present ) )
    {
        cs::Registry::instance().addModule( module );
    }
    ~csModuleBackend() { cs::Registry::instance().removeModule( module ); }

    const std::shared_ptr<cs::Module> module;
};

PB_OBJECT_DEFINE( csModuleBackend, cs___sort_CS_MODULE_BACKEND )

extern "C" struct csModuleBackend *csModuleBackendCreate( const struct pbModule *module,
                                                          struct pbStore *( *optionalInfo )(void))
{
    PB_ASSERT( module );
    PB_ASSERT( module->record );
    return pb::make<struct csModuleBackend>( std::make_shared<cs::Module>( cs::Module{ module, optionalInfo } ) )
        .release();
}

extern "C" struct pbStore *csConfigurationModules( void )
{
    auto modules = pb::adopt( pbStoreCreate() );
    for ( const auto &module : cs::Registry::instance().modules() ) {
        auto entry = pb::adopt( pbStoreCreate() );
        if ( const cs::Call call( module ); call && module->info )
            if ( const auto info = pb::adopt( module->info() ) )
                pbStoreSetStoreCstr( entry.address(), "info", -1, info.get() );
        pbStoreSetStoreCstr( modules.address(), module->module->record->name, -1, entry.get() );
    }
    auto result = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( result.address(), "modules", -1, modules.get() );
    return result.release();
}
