// csMigration: a stored file, and the edits that bring it up to date.
#include "cs/cs_migration.h"

#include "cs/cs_configuration.h"
#include "cs/cs_diagnosis_internal.h"
#include "cs/cs_json_patch_internal.h"
#include "cs/cs_json_reader_internal.h"
#include "cs/cs_records_change_internal.h"
#include "cs/cs_saved_file_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_text_file_internal.h"
#include "cs/cs_update.h"
#include "cs/cs_update_internal.h"
#include "pb/pb_buffer.h"
#include "pb/pb_vector.h"

PB_SORT_DECLARE( cs___sort_CS_MIGRATION )

struct csMigration final : pb::Object<struct csMigration, cs___sort_CS_MIGRATION> {
    std::string path, text;
    std::vector<cs::TextEdit> edits;
    pb::Ref<struct pbVector> updates = pb::adopt( pbVectorCreate() );

    std::string newText() const { return cs::editedText( text, edits ); }
};

PB_OBJECT_DEFINE( csMigration, cs___sort_CS_MIGRATION )

namespace {

using Store = pb::Ref<struct pbStore>;

// A store holds a key once: nothing else may be lost on the way through one.
void findDuplicates( const cs::JsonValue &value, const std::string &path, cs::Problems &problems )
{
    for ( const cs::JsonMember &member : value.members ) {
        const std::string place = path + ( path.empty() ? "" : "." ) + cs::printable( member.key );
        if ( member.duplicate )
            problems.add( member.keyOffset, { "", place }, { "the key stands twice", "once" } );
        findDuplicates( member.value, place, problems );
    }
}

// The tree that the text stands for, or problems.
Store read( std::string_view text, cs::Problems &problems )
{
    cs::JsonValue root;
    const cs::JsonError error = cs::readJson( text, root );
    if ( !error.text.empty() )
        problems.add( error.offset, {}, { error.text } );
    else if ( root.kind != cs::JsonValue::Kind::Object )
        problems.add( root.offset, {}, { "not an object", "an object with the key \"objects\"" } );
    else {
        findDuplicates( root, "", problems );
        const auto objects = std::find_if( root.members.begin(), root.members.end(),
                                           []( const auto &member ) { return member.key == cs::TreeObjects; } );
        if ( objects == root.members.end() )
            problems.add( root.offset, {}, { "the key \"objects\" is missing", "{\"objects\": {...}}" } );
        else if ( objects->value.kind != cs::JsonValue::Kind::Object )
            problems.add( objects->value.offset, { "", cs::TreeObjects },
                          { "not an object", "an object of named objects" } );
    }
    return problems.empty() ? cs::storeFromJson( root ) : nullptr;
}

pb::String versionOf( const Store &tree, const struct pbString *module )
{
    const Store modules = cs::storeOrEmpty( tree, cs::TreeModules );
    return pb::adopt( pbStoreValueCstr( cs::storeOrEmpty( modules, module ).get(), cs::TreeVersion, -1 ) );
}

// "objects" of an update: the names of those that differ.
Store changedNames( const Store &before, const Store &after )
{
    const Store old = cs::storeOrEmpty( before, cs::TreeObjects ), now = cs::storeOrEmpty( after, cs::TreeObjects );
    Store names = pb::adopt( pbStoreCreate() );
    for ( pbInt i = 0; i < pbStoreLength( now.get() ); ++i ) {
        const auto name = pb::adopt( pbStoreKeyAt( now.get(), i ) );
        if ( !( pb::adopt( pbStoreStore( old.get(), name.get() ) ) == pb::adopt( pbStoreStoreAt( now.get(), i ) ) ) )
            pbStoreArrayAppendValue( names.address(), name.get() );
    }
    return names;
}

// The store of csMigrationUpdates, or null of an update that did not run.
Store described( const cs::UpdateStep &step, const Store &before, const Store &after )
{
    if ( before == after )
        return nullptr;
    Store update = pb::adopt( pbStoreCreate() );
    const auto set = [&]( const char *key, const pb::String &text ) {
        if ( text )
            pbStoreSetValueCstr( update.address(), key, -1, text.get() );
    };
    set( "date", pb::string( step.date ) );
    const Store modules = cs::storeOrEmpty( after, cs::TreeModules );
    bool info = false;
    for ( pbInt i = 0; i < pbStoreLength( modules.get() ); ++i ) {
        const auto name = pb::adopt( pbStoreKeyAt( modules.get(), i ) );
        const pb::String was = versionOf( before, name.get() ), is = versionOf( after, name.get() );
        const auto infoOf = [&]( const Store &tree ) {
            return cs::storeOrEmpty( cs::storeOrEmpty( cs::storeOrEmpty( tree, cs::TreeModules ), name.get() ),
                                     cs::TreeInfo );
        };
        info |= !( infoOf( before ) == infoOf( after ) );
        if ( was == is )
            continue;
        set( "module", name );
        set( "before", was );
        set( "after", is );
    }
    pbStoreSetStoreCstr( update.address(), "objects", -1, changedNames( before, after ).get() );
    pbStoreSetValueBoolCstr( update.address(), "info", -1, info );
    return update;
}

Store migrated( const Store &tree, pb::Ref<struct pbVector> &updates )
{
    auto update = pb::adopt( csUpdateCreate( tree.get() ) );
    Store before = tree;
    cs::runSteps( update.address(), [&]( const cs::UpdateStep &step ) {
        Store after = pb::adopt( csUpdateCurrent( update.get() ) );
        if ( const Store description = described( step, before, after ) )
            pbVectorAppend( updates.address(), pbStoreObj( description.get() ) );
        before = std::move( after );
    } );
    return before;
}

struct pbBuffer *bufferFrom( std::string_view bytes )
{
    return pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) );
}

cs::Saved write( const struct csMigration &migration )
{
    std::string now;
    const cs::Unreadable unreadable = cs::readTextFile( pb::string( migration.path ).get(), now );
    if ( !unreadable.reason.empty() )
        return { .problem = "not saved: it cannot be read (" + unreadable.reason + ")",
                 .permitted = unreadable.origin != cs::Origin::Permission };
    if ( now != migration.text )
        return { .problem = "not saved: it was changed since it was read" };
    const std::string text = migration.newText();
    if ( !cs::storeFromJsonText( text ) )
        return { .problem = "not saved: it would be too long to be read again" };
    cs::Saved saved = cs::saveFile( migration.path, text );
    if ( !saved.problem.empty() )
        saved.problem.insert( 0, saved.replaced ? "saved, but " : "not saved: " );
    return saved;
}

} // namespace

extern "C" struct csMigration *csMigrationTryLoad( const struct pbString *path, struct pbVector **diagnoses )
{
    PB_ASSERT( path );
    PB_ASSERT( diagnoses );
    auto migration = pb::make<struct csMigration>();
    migration->path = pb::utf8( path );
    cs::Problems problems;
    Store tree;
    if ( const cs::Unreadable unreadable = cs::readTextFile( path, migration->text ); unreadable.reason.empty() )
        tree = read( migration->text, problems );
    else
        problems.add( 0, {}, cs::unreadableFile( unreadable ) );
    cs::setVector( diagnoses, cs::diagnosesOf( problems, migration->path, migration->text ) );
    if ( !tree )
        return nullptr;
    migration->edits = cs::jsonEdits( migration->text, migrated( tree, migration->updates ) );
    return migration.release();
}

extern "C" pbBool csMigrationChanged( const struct csMigration *migration )
{
    PB_ASSERT( migration );
    return !migration->edits.empty();
}

extern "C" struct pbBuffer *csMigrationText( const struct csMigration *migration )
{
    PB_ASSERT( migration );
    return bufferFrom( migration->newText() );
}

extern "C" struct pbBuffer *csMigrationDiff( const struct csMigration *migration )
{
    PB_ASSERT( migration );
    return bufferFrom( cs::unifiedDiff( migration->text, migration->edits, migration->path ) );
}

extern "C" struct pbVector *csMigrationUpdates( const struct csMigration *migration )
{
    PB_ASSERT( migration );
    return migration->updates.share();
}

extern "C" pbBool csMigrationTryWrite( const struct csMigration *migration, struct pbString **problem,
                                       pbInt *optionalOrigin )
{
    PB_ASSERT( migration );
    PB_ASSERT( problem );
    if ( migration->edits.empty() )
        return true;
    const cs::Saved saved = write( *migration );
    if ( saved.problem.empty() )
        return true;
    if ( optionalOrigin )
        *optionalOrigin = saved.permitted ? CS_DIAGNOSIS_OF_SYSTEM : CS_DIAGNOSIS_OF_PERMISSION;
    pbStringRelease( *problem );
    *problem = pb::string( migration->path + ": " + saved.problem ).release();
    return false;
}
