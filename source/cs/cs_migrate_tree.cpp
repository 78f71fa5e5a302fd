// Runs the updates on a tree with places: as a store, whose differences are written back into the tree.
#include "cs/cs_migrate_tree_internal.h"

#include "cs/cs_json_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_update.h"
#include "cs/cs_update_internal.h"

#include <unordered_map>

namespace cs {
namespace {

// level: of the value in the tree, from 0.
void writeBack( JsonValue &value, const pb::Ref<struct pbStore> &wanted, size_t level );

void writeBack( JsonValue &value, const pb::String &wanted )
{
    const std::string text = pb::utf8( wanted );
    if ( !value.isContainer() && value.text == text )
        return;
    value = { .kind = JsonValue::Kind::String, .offset = value.offset, .complete = true, .text = text, .members = {} };
}

void writeBack( JsonMember &member, const struct pbStore *parent, pbInt index, size_t level )
{
    if ( const auto store = pb::adopt( pbStoreStoreAt( parent, index ) ) )
        writeBack( member.value, store, level );
    else
        writeBack( member.value, pb::adopt( pbStoreValueAt( parent, index ) ) );
}

// Of a container that holds what stays of it. An array where the tree has objects stays one, to be told.
JsonValue::Kind kindOf( const JsonValue &value, const struct pbStore *wanted, size_t level )
{
    const bool wasArray = value.kind == JsonValue::Kind::Array;
    if ( !wasArray && ( level < TreeObjectLevels || !value.members.empty() ) )
        return JsonValue::Kind::Object;
    return isArray( wanted ) || ( wasArray && pbStoreLength( wanted ) == 0 ) ? JsonValue::Kind::Array
                                                                            : JsonValue::Kind::Object;
}

void writeBack( JsonValue &value, const pb::Ref<struct pbStore> &wanted, size_t level )
{
    if ( value.isContainer() && storeFromJson( value ) == wanted )
        return;
    if ( !value.isContainer() )
        value = { .offset = value.offset, .complete = true, .members = {} };
    // Members that stand twice are none of the store and stay, to be told.
    std::erase_if( value.members, [&]( const JsonMember &member ) {
        const auto key = pb::string( member.key );
        return !member.duplicate && !pb::adopt( pbStoreStore( wanted.get(), key.get() ) ) &&
               !pb::adopt( pbStoreValue( wanted.get(), key.get() ) );
    } );
    value.kind = kindOf( value, wanted.get(), level );
    std::unordered_map<std::string, size_t> places; // of members by key
    for ( size_t i = 0; i < value.members.size(); ++i )
        if ( value.members[i].usable() )
            places.emplace( value.members[i].key, i );
    for ( pbInt i = 0; i < pbStoreLength( wanted.get() ); ++i ) {
        const std::string key = pb::utf8( pb::adopt( pbStoreKeyAt( wanted.get(), i ) ) );
        const auto [place, added] = places.emplace( key, value.members.size() );
        if ( added ) {
            const JsonValue none{ .offset = value.offset, .complete = true, .members = {} };
            value.members.push_back( { .key = key, .keyOffset = value.offset, .value = none } );
        }
        writeBack( value.members[place->second], wanted.get(), i, level + 1 );
    }
}

} // namespace

void migrate( JsonValue &root )
{
    if ( root.kind != JsonValue::Kind::Object || Registry::instance().steps().empty() )
        return;
    auto update = pb::adopt( csUpdateCreate( storeFromJson( root ).get() ) );
    csUpdateBackendsRun( update.address() );
    writeBack( root, pb::adopt( csUpdateCurrent( update.get() ) ), 0 );
}

} // namespace cs
