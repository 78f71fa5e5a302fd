// pbPriorityMap: entries in the order of their priority.
#include "pb/pb_priority_map.h"
#include "pb/pb_object.hpp"

#include <algorithm>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_PRIORITY_MAP )

namespace {

struct Entry {
    pbInt priority;
    pb::Ref<pbObj> key;

    auto operator<=>( const Entry & ) const = default;
};

} // namespace

struct pbPriorityMap final : pb::Object<struct pbPriorityMap, pb___sort_PB_PRIORITY_MAP> {
    std::vector<Entry> entries;

    auto operator<=>( const pbPriorityMap & ) const = default;

    auto find( const struct pbObj *key ) const
    {
        return std::find_if( entries.begin(), entries.end(),
                             [=]( const Entry &entry ) { return pbObjCompare( entry.key.get(), key ) == 0; } );
    }
};

PB_OBJECT_DEFINE( pbPriorityMap, pb___sort_PB_PRIORITY_MAP )

extern "C" {

struct pbPriorityMap *pbPriorityMapCreate( void ) { return new pbPriorityMap; }

pbInt pbPriorityMapLength( const struct pbPriorityMap *map )
{
    PB_ASSERT( map );
    return static_cast<pbInt>( map->entries.size() );
}

void pbPriorityMapSet( struct pbPriorityMap **map, const struct pbObj *key, pbInt priority )
{
    PB_ASSERT( map );
    PB_ASSERT( *map );
    PB_ASSERT( key );
    Entry entry{ priority, pb::share( key ) }; // first: the key may be the one that is moved
    pbPriorityMapDel( map, key );
    auto &entries = pb::edit( map ).entries;
    const auto behind = std::upper_bound( entries.begin(), entries.end(), priority,
                                          []( pbInt wanted, const Entry &each ) { return wanted < each.priority; } );
    entries.insert( behind, std::move( entry ) );
}

void pbPriorityMapDel( struct pbPriorityMap **map, const struct pbObj *key )
{
    PB_ASSERT( map );
    PB_ASSERT( *map );
    PB_ASSERT( key );
    const auto index = ( *map )->find( key ) - ( *map )->entries.begin();
    if ( index == pbPriorityMapLength( *map ) )
        return;
    auto &entries = pb::edit( map ).entries;
    const Entry dropped = std::move( entries[static_cast<size_t>( index )] );
    entries.erase( entries.begin() + index );
}

struct pbObj *pbPriorityMapKeyAt( const struct pbPriorityMap *map, pbInt index )
{
    PB_ASSERT( map );
    PB_ASSERT( index >= 0 && index < pbPriorityMapLength( map ) );
    return map->entries[static_cast<size_t>( index )].key.share();
}

pbInt pbPriorityMapPriorityAt( const struct pbPriorityMap *map, pbInt index )
{
    PB_ASSERT( map );
    PB_ASSERT( index >= 0 && index < pbPriorityMapLength( map ) );
    return map->entries[static_cast<size_t>( index )].priority;
}

} // extern "C"
