// The stored tree of a configuration as it is now, and its way back into a file.
#include "cs/cs_configuration_imp_internal.h"
#include "cs/cs_json.h"
#include "cs/cs_json_internal.h"
#include "cs/cs_json_patch_internal.h"
#include "cs/cs_saved_file_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_text_file_internal.h"
#include "cs/cs_update_internal.h"
#include "pb/pb_module_version.h"

#include <cerrno>
#include <system_error>

namespace {

using Store = pb::Ref<struct pbStore>;
using Version = pb::Ref<struct pbModuleVersion>;

// The text or store behind a key, or null.
pb::Ref<struct pbObj> member( const Store &store, const struct pbString *key )
{
    if ( auto sub = pb::adopt( pbStoreStore( store.get(), key ) ) )
        return pb::adopt( pbStoreObj( sub.release() ) );
    return pb::adopt( pbStringObj( pbStoreValue( store.get(), key ) ) );
}

void setMember( Store &store, const struct pbString *key, const pb::Ref<struct pbObj> &value )
{
    if ( pbObjSort( value.get() ) == pbStoreSort() )
        pbStoreSetStore( store.address(), key, pbStoreFrom( value.get() ) );
    else
        pbStoreSetValue( store.address(), key, pbStringFrom( value.get() ) );
}

void delMember( Store &store, const std::string &key )
{
    pbStoreDelValueCstr( store.address(), key.data(), static_cast<pbInt>( key.size() ) );
    pbStoreDelStoreCstr( store.address(), key.data(), static_cast<pbInt>( key.size() ) );
}

std::vector<pb::String> keysOf( const Store &store )
{
    std::vector<pb::String> keys;
    for ( pbInt i = 0; i < pbStoreLength( store.get() ); ++i )
        keys.push_back( pb::adopt( pbStoreKeyAt( store.get(), i ) ) );
    return keys;
}

// What the record says with what was set on its object since: keys that the object holds otherwise than the record
// said. A key that went back to its default is written as such where the sort can. Null: still nothing.
Store storeNow( const struct csRecord &record )
{
    const cs::Call call( record.sort );
    if ( !record.optionalObject || !call )
        return record.optionalStore;
    const Store written = pb::adopt( csRecordStore( &record ) );
    const Store said = pb::adopt( record.sort->normalizeConfig( written.get(), false ) );
    const Store holds = pb::adopt( record.sort->config( record.optionalObject.get(), false ) );
    if ( holds == said )
        return record.optionalStore;
    const Store holdsAll = pb::adopt( record.sort->config( record.optionalObject.get(), true ) );
    Store result = written;
    for ( const pb::String &key : keysOf( holds ) )
        if ( const auto value = member( holds, key.get() ); !( value == member( said, key.get() ) ) )
            setMember( result, key.get(), value );
    for ( const pb::String &key : keysOf( said ) ) {
        if ( member( holds, key.get() ) )
            continue;
        if ( const auto value = member( holdsAll, key.get() ) )
            setMember( result, key.get(), value );
        else
            delMember( result, pb::utf8( key ) );
    }
    return result;
}

cs::LiveRecords recordsNow( const cs::LiveRecords &records )
{
    cs::LiveRecords now;
    for ( const auto &record : records ) {
        Store store = storeNow( *record );
        now.push_back( record );
        if ( !( store == record->optionalStore ) )
            pb::edit( now.back().address() ).optionalStore = std::move( store );
    }
    return now;
}

Store objectsStore( const cs::LiveRecords &records )
{
    Store objects = pb::adopt( pbStoreCreate() );
    for ( const auto &record : records ) {
        Store entry = pb::adopt( pbStoreCreate() );
        pbStoreSetValueCstr( entry.address(), cs::TreeSort, -1, pb::string( pbSortName( record->sort->sort ) ).get() );
        if ( record->optionalStore )
            pbStoreSetStoreCstr( entry.address(), cs::TreeConfig, -1, record->optionalStore.get() );
        pbStoreSetStore( objects.address(), pb::string( record->name ).get(), entry.get() );
    }
    return objects;
}

Version versionOf( const Store &module )
{
    const auto text = pb::adopt( pbStoreValueCstr( module.get(), cs::TreeVersion, -1 ) );
    const std::string bytes = text ? pb::utf8( text ) : "";
    return pb::adopt( pbModuleVersionTryCreateFromCstr( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
}

// The modules with the version that the objects are written by now. A newer one that was recorded stays: what an older
// module left alone may still be in its form.
Store modulesStore( const Store &recorded )
{
    Store modules = recorded;
    for ( const auto &module : cs::Registry::instance().modules() ) {
        const char *const name = module->module->record->name;
        Store entry = cs::storeOrEmpty( modules, name );
        const auto running = pb::adopt( pbModuleVersionTryCreateFromCstr( module->module->record->version, -1 ) );
        if ( running && versionOf( entry ) < running )
            pbStoreSetValueCstr( entry.address(), cs::TreeVersion, -1,
                                 pb::adopt( pbModuleVersionToString( running.get() ) ).get() );
        pbStoreSetStoreCstr( modules.address(), name, -1, entry.get() );
    }
    return modules;
}

enum class Infos { OfAll, WhereOneStands, None };

Store withInfos( const Store &modules, Infos infos, const Store &standing )
{
    Store result = modules;
    const Store told = infos == Infos::None ? Store() : pb::adopt( csConfigurationModules() );
    for ( const pb::String &name : keysOf( modules ) ) {
        Store entry = cs::storeOrEmpty( modules, name.get() );
        const bool wanted = infos == Infos::OfAll ||
                            ( infos == Infos::WhereOneStands &&
                              pbStoreHasStoreCstr( cs::storeOrEmpty( standing, name.get() ).get(), cs::TreeInfo, -1 ) );
        if ( !wanted )
            pbStoreDelStoreCstr( entry.address(), cs::TreeInfo, -1 );
        else if ( const Store info = pb::adopt(
                      pbStoreStoreCstr( cs::storeOrEmpty( cs::storeOrEmpty( told, cs::TreeModules ), name.get() ).get(),
                                        cs::TreeInfo, -1 ) ) )
            pbStoreSetStoreCstr( entry.address(), cs::TreeInfo, -1, info.get() );
        pbStoreSetStore( result.address(), name.get(), entry.get() );
    }
    return result;
}

Store treeOf( const Store &objects, const Store &modules )
{
    Store tree = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( tree.address(), cs::TreeObjects, -1, objects.get() );
    pbStoreSetStoreCstr( tree.address(), cs::TreeModules, -1, modules.get() );
    return tree;
}

// Whether a version that the file records is older than the one that would be written. One that records none says
// nothing about its age.
bool isBehind( const Store &recorded, const Store &modules )
{
    for ( const pb::String &name : keysOf( recorded ) ) {
        const Version version = versionOf( cs::storeOrEmpty( recorded, name.get() ) );
        if ( version && version < versionOf( cs::storeOrEmpty( modules, name.get() ) ) )
            return true;
    }
    return false;
}

std::string wholeText( const Store &tree )
{
    return pb::utf8( cs::jsonFromObjects( tree.get(), CS_JSON_PRETTY, cs::TreeObjectLevels ) ) + "\n";
}

// Empty: nothing to be written.
struct Text {
    std::string text{};
    std::string problem{};
};

// The text that somebody wrote, with what changed.
Text editedText( const cs::Source &source, const Store &objects, const Store &modules )
{
    std::string now;
    const cs::Unreadable unreadable = cs::readTextFile( pb::string( source.path ).get(), now );
    if ( !unreadable.reason.empty() )
        return { .problem = "not saved: it cannot be read (" + unreadable.reason + ")" };
    if ( now != source.text )
        return { .problem = "not saved: it was changed since it was read, and is to be loaded again first" };
    const Store stands = cs::storeFromJsonText( source.text );
    const Store standingModules = cs::storeOrEmpty( stands, cs::TreeModules );
    if ( cs::storeOrEmpty( stands, cs::TreeObjects ) == objects && !isBehind( standingModules, modules ) )
        return {};
    const Store tree = treeOf( objects, withInfos( modules, Infos::WhereOneStands, standingModules ) );
    return { .text = cs::editedText( source.text, cs::jsonEdits( source.text, tree ) ) };
}

Text otherText( const struct pbString *path, const Store &objects, const Store &modules )
{
    std::string now;
    const Store stands = cs::readTextFile( path, now ).reason.empty() ? cs::storeFromJsonText( now ) : Store();
    const Store recorded = stands ? cs::storeOrEmpty( stands, cs::TreeModules ) : Store();
    if ( stands && cs::storeOrEmpty( stands, cs::TreeObjects ) == objects &&
         withInfos( recorded, Infos::None, recorded ) == withInfos( modules, Infos::None, recorded ) )
        return {};
    return { .text = wholeText( treeOf( objects, withInfos( modules, Infos::OfAll, recorded ) ) ) };
}

} // namespace

pb::Ref<struct pbStore> csConfiguration::tree()
{
    const cs::TurnTaken taken( turn );
    const cs::Loaded now = current();
    const Store modules = modulesStore( now.source->modules );
    return treeOf( objectsStore( recordsNow( now.records ) ), withInfos( modules, Infos::OfAll, modules ) );
}

std::string csConfiguration::trySave( const struct pbString *path )
{
    const std::string pathText = pb::utf8( path );
    if ( pathText.find( '\0' ) != pathText.npos ) // no path: the system would take what stands before it for one
        return "not saved: finding the file: " + std::system_category().message( EINVAL );
    const cs::TurnTaken taken( turn );
    const cs::Loaded was = current();
    cs::LiveRecords now = recordsNow( was.records );
    const Store objects = objectsStore( now ), modules = modulesStore( was.source->modules );
    const bool isSource = !was.source->path.empty() && ( was.source->path == pathText ||
                                                         was.source->canonicalPath == cs::canonicalPath( pathText ) );
    Text wanted = isSource ? editedText( *was.source, objects, modules ) : otherText( path, objects, modules );
    if ( !wanted.problem.empty() || wanted.text.empty() )
        return wanted.problem;
    if ( !cs::storeFromJsonText( wanted.text ) )
        return "not saved: it would be too long to be read again";
    const cs::Saved saved = cs::saveFile( pathText, wanted.text );
    if ( saved.replaced && isSource ) {
        cs::Source source = *was.source;
        source.text = std::move( wanted.text );
        source.modules = modules;
        publish( std::move( now ), std::make_shared<cs::Source>( std::move( source ) ) );
    }
    return saved.problem.empty() ? "" : ( saved.replaced ? "saved, but " : "not saved: " ) + saved.problem;
}
