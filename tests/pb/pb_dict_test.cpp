// Dictionaries against std::map, priority maps and range maps.
#include "pb/pb_dict.h"
#include "pb/pb_boxed_bool.h"
#include "pb/pb_boxed_int.h"
#include "pb/pb_priority_map.h"
#include "pb/pb_range_map.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"
#include "support/target.hpp"

#include <algorithm>
#include <map>
#include <random>

namespace {

using Model = std::map<pbInt, pbInt>;

pb::Ref<pbObj> boxed( pbInt value ) { return pb::adopt( pbBoxedIntObj( pbBoxedIntCreate( value ) ) ); }
pbInt unboxed( pb::Ref<pbObj> obj ) { return obj ? pbBoxedIntValue( pbBoxedIntFrom( obj.get() ) ) : -1; }
pb::Ref<pbObj> text( const char *utf8 ) { return pb::share( pbStringObj( pb::string( utf8 ).get() ) ); }

Model contents( const pb::Ref<pbDict> &dict )
{
    Model model;
    pbInt before = -1;
    for ( pbInt i = 0; i < pbDictLength( dict.get() ); ++i ) {
        const pbInt key = unboxed( pb::adopt( pbDictKeyAt( dict.get(), i ) ) );
        EXPECT_LT( before, key );
        before = key;
        const pb::Ref<pbObj> value = pb::adopt( pbDictValueAt( dict.get(), i ) );
        EXPECT_TRUE( pbObjEquals( value.get(), pb::adopt( pbDictIntKey( dict.get(), key ) ).get() ) );
        model[key] = unboxed( value );
    }
    return model;
}

TEST( DictDeathTest, Preconditions )
{
    static pb::Ref<pbDict> dict = pb::adopt( pbDictCreate() ), none;
    static pb::Ref<pbRangeMap> ranges = pb::adopt( pbRangeMapCreate() );
    static pb::Ref<pbPriorityMap> priorities = pb::adopt( pbPriorityMapCreate() );
    support::expectDeaths( {
        { [] { pbDictSetIntKey( none.address(), 1, boxed( 1 ).get() ); }, "*dict" },
        { [] { pbDictSetIntKey( dict.address(), 1, nullptr ); }, "value" },
        { [] { pbDictKeyAt( dict.get(), 0 ); }, "index >= 0 && index < pbDictLength( dict )" },
        { [] { pbDictDelAt( dict.address(), -1 ); }, "index >= 0 && index < pbDictLength( *dict )" },
        { [] { pbRangeMapSet( ranges.address(), 2, 1, boxed( 1 ).get() ); }, "first <= last" },
        { [] { pbPriorityMapKeyAt( priorities.get(), 0 ); }, "index >= 0 && index < pbPriorityMapLength( map )" },
    } );
}

// Grows far beyond one leaf and shrinks to nothing, in ascending, descending and random order, while copies that were
// taken on the way stay what they were.
TEST( Dict, HoldsWhatAMapHoldsThroughGrowthAndShrinking )
{
    constexpr pbInt count = 2000;
    std::mt19937 random( 17 );
    const std::function<pbInt( pbInt )> orders[] = { []( pbInt i ) { return i; },
                                                     []( pbInt i ) { return count - 1 - i; },
                                                     [&]( pbInt ) { return random() % count; } };
    for ( const auto &order : orders ) {
        auto dict = pb::adopt( pbDictCreate() );
        Model model;
        std::vector<std::pair<pb::Ref<pbDict>, Model>> copies;
        for ( pbInt i = 0; i < 2 * count; ++i ) {
            const pbInt key = order( i % count );
            const auto there = model.find( key );
            if ( i < count )
                pbDictSetIntKey( dict.address(), key, boxed( model[key] = i ).get() );
            else if ( i % 2 || there == model.end() )
                pbDictDelIntKey( dict.address(), key );
            else
                pbDictDelAt( dict.address(), std::distance( model.begin(), there ) );
            if ( i >= count )
                model.erase( key );
            ASSERT_EQ( pbDictLength( dict.get() ), static_cast<pbInt>( model.size() ) );
            if ( i % 500 == 250 )
                copies.emplace_back( dict, model );
        }
        copies.emplace_back( dict, model );
        for ( const auto &[copy, then] : copies ) {
            EXPECT_EQ( contents( copy ), then );
            auto same = pb::adopt( pbDictCreate() ); // in other leaves
            for ( const auto &[key, value] : then )
                pbDictSetIntKey( same.address(), key, boxed( value ).get() );
            EXPECT_EQ( pbDictCompare( same.get(), copy.get() ), 0 );
            pbDictSetIntKey( same.address(), 0, boxed( -1 ).get() );
            EXPECT_NE( pbDictCompare( same.get(), copy.get() ), 0 );
        }
    }
}

TEST( Dict, KeysOfAllSortsLieSideBySide )
{
    auto dict = pb::adopt( pbDictCreate() );
    const pb::Ref<pbObj> keys[] = { pb::adopt( pbBoxedBoolObj( pbBoxedBoolCreate( true ) ) ), boxed( -5 ), boxed( 7 ),
                                    text( "7" ), text( "eth10" ), text( "eth2" ) };
    for ( size_t i = std::size( keys ); i-- > 0; )
        pbDictSetObjKey( dict.address(), keys[i].get(), keys[i].get() );
    const auto inOrder = pb::adopt( pbDictKeysVector( dict.get() ) );
    for ( pbInt i = 0; i < PB_SIZEOF_ARRAY( keys ); ++i )
        EXPECT_TRUE( pbObjEquals( pb::adopt( pbVectorObjAt( inOrder.get(), i ) ).get(), keys[i].get() ) );
    EXPECT_FALSE( pb::adopt( pbDictStringKey( dict.get(), pb::string( "eth1" ).get() ) ) );
    pbDictDelStringKey( dict.address(), pb::string( "7" ).get() );
    EXPECT_EQ( unboxed( pb::adopt( pbDictIntKey( dict.get(), 7 ) ) ), 7 );
}

// Dropping a value may run a destructor that reads the dictionary.
TEST( Dict, IsWholeWhenItDropsAValue )
{
    auto dict = pb::adopt( pbDictCreate() );
    pbInt length = 300, seen = 0;
    for ( pbInt key = 0; key < length; ++key ) {
        const auto value = pb::make<support::Target>();
        value->onFree = [&] { seen = pbVectorLength( pb::adopt( pbDictValuesVector( dict.get() ) ).get() ); };
        pbDictSetIntKey( dict.address(), key, value.get() );
    }
    pbDictSetIntKey( dict.address(), 0, boxed( 0 ).get() );
    EXPECT_EQ( seen, length );
    while ( length > 1 ) {
        pbDictDelAt( dict.address(), length / 2 );
        EXPECT_EQ( seen, --length );
    }
}

TEST( PriorityMap, OrdersByPriorityThenByTimeOfSetting )
{
    auto map = pb::adopt( pbPriorityMapCreate() );
    const struct {
        pbInt key, priority; // priority -1: delete
        const char *order;
    } steps[] = { { 1, 20, "1" },   { 2, 10, "21" },   { 3, 20, "213" }, { 1, 20, "231" }, { 2, 30, "312" },
                  { 9, -1, "312" }, { 1, -1, "32" },   { 3, 40, "23" } };
    for ( const auto &[key, priority, order] : steps ) {
        const auto before = map;
        if ( priority < 0 )
            pbPriorityMapDel( map.address(), boxed( key ).get() );
        else
            pbPriorityMapSet( map.address(), boxed( key ).get(), priority );
        std::string keys;
        for ( pbInt i = 0; i < pbPriorityMapLength( map.get() ); ++i )
            keys += std::to_string( unboxed( pb::adopt( pbPriorityMapKeyAt( map.get(), i ) ) ) );
        EXPECT_EQ( keys, order );
        EXPECT_EQ( pbPriorityMapEquals( before.get(), map.get() ), key == 9 );
    }
    EXPECT_EQ( pbPriorityMapPriorityAt( map.get(), 1 ), 40 );
}

TEST( RangeMap, ReplacesWhatItOverlaps )
{
    auto map = pb::adopt( pbRangeMapCreate() );
    const struct {
        pbInt first, last;
        const char *values; // of the keys 0..9, "." for none
    } steps[] = { { 2, 4, "..000....." }, { 6, 8, "..000.111." }, { 3, 3, "..020.111." }, { 4, 6, "..0233311." },
                  { 0, 9, "4444444444" }, { 9, PB_INT_MAX, "4444444445" }, { PB_INT_MIN, 0, "6444444445" } };
    for ( pbInt i = 0; i < static_cast<pbInt>( std::size( steps ) ); ++i ) {
        pbRangeMapSet( map.address(), steps[i].first, steps[i].last, boxed( i ).get() );
        std::string values;
        for ( pbInt key = 0; key < 10; ++key ) {
            const auto value = pb::adopt( pbRangeMapValue( map.get(), key ) );
            values += value ? std::to_string( unboxed( value ) ) : ".";
        }
        EXPECT_EQ( values, steps[i].values );
    }
    auto fresh = pb::adopt( pbRangeMapCreate() );
    for ( auto *each : { &map, &fresh, &map } )
        pbRangeMapSet( each->address(), PB_INT_MIN, PB_INT_MAX, boxed( 8 ).get() );
    EXPECT_TRUE( pbRangeMapEquals( map.get(), fresh.get() ) );
}

} // namespace
