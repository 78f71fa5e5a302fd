// pbRangeMap: disjoint ranges in ascending order.
#include "pb/pb_range_map.h"
#include "pb/pb_object.hpp"

#include <algorithm>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_RANGE_MAP )

namespace {

struct Entry {
    pbInt first;
    pbInt last;
    pb::Ref<pbObj> value;

    auto operator<=>( const Entry & ) const = default;
};
using Entries = std::vector<Entry>;

// The first entry that does not end before the key.
Entries::const_iterator atOrBehind( const Entries &entries, pbInt key )
{
    return std::partition_point( entries.begin(), entries.end(),
                                 [=]( const Entry &entry ) { return entry.last < key; } );
}

} // namespace

struct pbRangeMap final : pb::Object<struct pbRangeMap, pb___sort_PB_RANGE_MAP> {
    Entries entries;

    auto operator<=>( const pbRangeMap & ) const = default;
};

PB_OBJECT_DEFINE( pbRangeMap, pb___sort_PB_RANGE_MAP )

extern "C" {

struct pbRangeMap *pbRangeMapCreate( void ) { return new pbRangeMap; }

void pbRangeMapSet( struct pbRangeMap **map, pbInt first, pbInt last, const struct pbObj *value )
{
    PB_ASSERT( map );
    PB_ASSERT( *map );
    PB_ASSERT( first <= last );
    PB_ASSERT( value );
    Entries &entries = pb::edit( map ).entries;
    const auto from = atOrBehind( entries, first );
    const auto to = std::find_if( from, entries.cend(), [=]( const Entry &entry ) { return entry.first > last; } );

    // What takes the place of from..to: the new range between what it leaves of its neighbours.
    Entries replacement;
    if ( from != to && from->first < first )
        replacement.push_back( { from->first, first - 1, from->value } );
    replacement.push_back( { first, last, pb::share( value ) } );
    if ( from != to && ( to - 1 )->last > last )
        replacement.push_back( { last + 1, ( to - 1 )->last, ( to - 1 )->value } );

    Entries dropped( from, to ); // until the map is whole again
    const auto gap = entries.erase( from, to );
    entries.insert( gap, std::make_move_iterator( replacement.begin() ), std::make_move_iterator( replacement.end() ) );
}

struct pbObj *pbRangeMapValue( const struct pbRangeMap *map, pbInt key )
{
    PB_ASSERT( map );
    const auto entry = atOrBehind( map->entries, key );
    return entry != map->entries.end() && entry->first <= key ? entry->value.share() : nullptr;
}

} // extern "C"
