// Runs the updates on a tree with places: as a store, whose differences are written back into the tree.
#include "cs/cs_migrate_tree_internal.h"

#include "cs/cs_json_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_update.h"
#include "cs/cs_update_internal.h"

#include <unordered_map>

namespace cs {
namespace {

void writeBack( JsonValue &value, const pb::Ref<struct pbStore> &wanted );

void writeBack( JsonValue &value, const pb::String &wanted )
{
    const std::string text = pb::utf8( wanted );
    if ( !value.isContainer() && value.text == text )
        return;
    value = { .kind = JsonValue::Kind::String, .offset = value.offset, .complete = true, .text = text, .members = {} };
}

void writeBack( JsonMember &member, const struct pbStore *parent, pbInt index )
{
    if ( const auto store = pb::adopt( pbStoreStoreAt( parent, index ) ) )
        writeBack( member.value, store );
    else
        writeBack( member.value, pb::adopt( pbStoreValueAt( parent, index ) ) );
}

void writeBack( JsonValue &value, const pb::Ref<struct pbStore> &wanted )
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
        writeBack( value.members[place->second], wanted.get(), i );
    }
    value.kind = isArray( wanted.get() ) || ( value.kind == JsonValue::Kind::Array && value.members.empty() )
                     ? JsonValue::Kind::Array
                     : JsonValue::Kind::Object;
}

} // namespace

void migrate( JsonValue &root )
{
    if ( root.kind != JsonValue::Kind::Object || Registry::instance().steps().empty() )
        return;
    auto update = pb::adopt( csUpdateCreate( storeFromJson( root ).get() ) );
    csUpdateBackendsRun( update.address() );
    writeBack( root, pb::adopt( csUpdateCurrent( update.get() ) ) );
}

} // namespace cs
