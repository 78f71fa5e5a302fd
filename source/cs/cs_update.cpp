// csUpdate: the stored tree with functions for its parts.
#include "cs/cs_update.h"

#include "cs/cs_update_internal.h"
#include "pb/pb_module.h"
#include "pb/pb_module_version.h"

using cs::storeOrEmpty;

PB_SORT_DECLARE( cs___sort_CS_UPDATE )

struct csUpdate final : pb::Object<struct csUpdate, cs___sort_CS_UPDATE> {
    explicit csUpdate( const struct pbStore *initial ) : tree( pb::share( initial ) ) {}

    pb::Ref<struct pbStore> tree;
    auto operator<=>( const csUpdate & ) const = default;
};

PB_OBJECT_DEFINE( csUpdate, cs___sort_CS_UPDATE )

namespace {

pb::Ref<struct csUpdateObject> objectFrom( const pb::Ref<struct pbStore> &record )
{
    auto object = pb::make<struct csUpdateObject>();
    object->sortName = pb::adopt( pbStoreValueCstr( record.get(), cs::TreeSort, -1 ) );
    if ( !object->sortName )
        object->sortName = pb::string( "" );
    object->optionalConfig = pb::adopt( pbStoreStoreCstr( record.get(), cs::TreeConfig, -1 ) );
    return object;
}

} // namespace

extern "C" struct csUpdate *csUpdateCreate( const struct pbStore *tree )
{
    PB_ASSERT( tree );
    return pb::make<struct csUpdate>( tree ).release();
}

extern "C" struct pbModuleVersion *csUpdateModuleVersion( const struct csUpdate *update, const struct pbModule *module )
{
    PB_ASSERT( update );
    PB_ASSERT( module );
    const auto entry = storeOrEmpty( storeOrEmpty( update->tree, cs::TreeModules ), module->record->name );
    const auto text = pb::adopt( pbStoreValueCstr( entry.get(), cs::TreeVersion, -1 ) );
    if ( !text )
        return nullptr;
    const std::string bytes = pb::utf8( text );
    return pbModuleVersionTryCreateFromCstr( bytes.data(), static_cast<pbInt>( bytes.size() ) );
}

extern "C" void csUpdateSetModuleVersion( struct csUpdate **update, const struct pbModule *module,
                                          const struct pbModuleVersion *version )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    PB_ASSERT( module );
    PB_ASSERT( version );
    const auto text = pb::adopt( pbModuleVersionToString( version ) );
    auto modules = storeOrEmpty( ( *update )->tree, cs::TreeModules );
    auto entry = storeOrEmpty( modules, module->record->name );
    pbStoreSetValueCstr( entry.address(), cs::TreeVersion, -1, text.get() );
    pbStoreSetStoreCstr( modules.address(), module->record->name, -1, entry.get() );
    pbStoreSetStoreCstr( pb::edit( update ).tree.address(), cs::TreeModules, -1, modules.get() );
}

extern "C" struct csUpdateObjects *csUpdateObjectsBySort( const struct csUpdate *update, const struct pbSort *sort )
{
    PB_ASSERT( update );
    PB_ASSERT( sort );
    return csUpdateObjectsBySortNameCstr( update, pbSortName( sort ), -1 );
}

extern "C" struct csUpdateObjects *csUpdateObjectsBySortNameCstr( const struct csUpdate *update, const char *sortName,
                                                                  pbInt sortNameLength )
{
    PB_ASSERT( update );
    PB_ASSERT( sortName );
    return csUpdateObjectsBySortName( update, pb::adopt( pbStringCreateFromCstr( sortName, sortNameLength ) ).get() );
}

extern "C" struct csUpdateObjects *csUpdateObjectsBySortName( const struct csUpdate *update,
                                                              const struct pbString *sortName )
{
    PB_ASSERT( update );
    PB_ASSERT( sortName );
    const auto records = storeOrEmpty( update->tree, cs::TreeObjects );
    auto objects = pb::make<struct csUpdateObjects>();
    for ( pbInt i = 0; i < pbStoreLength( records.get() ); ++i )
        if ( const auto record = pb::adopt( pbStoreStoreAt( records.get(), i ) ) )
            if ( auto object = objectFrom( record ); pbStringEquals( object->sortName.get(), sortName ) )
                objects->entries.emplace_back( pb::adopt( pbStoreKeyAt( records.get(), i ) ), std::move( object ) );
    return objects.release();
}

extern "C" struct csUpdateObject *csUpdateObject( const struct csUpdate *update, const struct pbString *name )
{
    PB_ASSERT( update );
    PB_ASSERT( name );
    const auto records = storeOrEmpty( update->tree, cs::TreeObjects );
    const auto record = pb::adopt( pbStoreStore( records.get(), name ) );
    return record ? objectFrom( record ).release() : nullptr;
}

extern "C" struct csUpdateObject *csUpdateObjectCstr( const struct csUpdate *update, const char *name,
                                                      pbInt nameLength )
{
    PB_ASSERT( update );
    PB_ASSERT( name );
    return csUpdateObject( update, pb::adopt( pbStringCreateFromCstr( name, nameLength ) ).get() );
}

extern "C" void csUpdateSetObject( struct csUpdate **update, const struct pbString *name,
                                   const struct csUpdateObject *object )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    PB_ASSERT( name );
    PB_ASSERT( object );
    auto &tree = pb::edit( update ).tree;
    auto records = storeOrEmpty( tree, cs::TreeObjects );
    // Taken out for the while: alone it is changed in place, where a shared one would be copied for each object.
    pbStoreSetStoreCstr( tree.address(), cs::TreeObjects, -1, pb::adopt( pbStoreCreate() ).get() );
    auto record = storeOrEmpty( records, name );
    pbStoreSetValueCstr( record.address(), cs::TreeSort, -1, object->sortName.get() );
    if ( object->optionalConfig )
        pbStoreSetStoreCstr( record.address(), cs::TreeConfig, -1, object->optionalConfig.get() );
    else
        pbStoreDelStoreCstr( record.address(), cs::TreeConfig, -1 );
    pbStoreSetStore( records.address(), name, record.get() );
    pbStoreSetStoreCstr( tree.address(), cs::TreeObjects, -1, records.get() );
}

extern "C" struct pbStore *csUpdateCurrent( const struct csUpdate *update )
{
    PB_ASSERT( update );
    return update->tree.share();
}

extern "C" void csUpdateSetCurrent( struct csUpdate **update, const struct pbStore *tree )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    PB_ASSERT( tree );
    pb::edit( update ).tree = pb::share( tree );
}
