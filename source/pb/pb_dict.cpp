// pbDict: entries in ascending order of their keys, in leaves of bounded size. A change moves the entries of one leaf,
// however large the dictionary is, and a copy shares the leaves until one of the two changes them.
#include "pb/pb_dict.h"
#include "pb/pb_boxed_int.hpp"
#include "pb/pb_string.h"
#include "pb/pb_vector.h"

#include <algorithm>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_DICT )
PB_SORT_DECLARE( pb___sort_PB_DICT_LEAF )

namespace {

constexpr size_t leafLimit = 128;

struct Entry {
    pb::Ref<pbObj> key;
    pb::Ref<pbObj> value;
};

// Never empty.
struct Leaf final : pb::Object<Leaf, pb___sort_PB_DICT_LEAF> {
    std::vector<Entry> entries;
};

struct Slot {
    pb::Ref<Leaf> leaf;
    const pbObj *firstKey; // of the leaf: a search among the leaves of a large dictionary touches none of them
    size_t start;          // how many entries stand in the leaves before

    explicit Slot( pb::Ref<Leaf> filled ) : leaf( std::move( filled ) ), firstKey( nullptr ), start( 0 ) { refreshKey(); }
    void refreshKey() { firstKey = entries().empty() ? nullptr : entries().front().key.get(); }

    const std::vector<Entry> &entries() const { return leaf->entries; }
    std::vector<Entry> &edit() { return pb::edit( leaf.address() ).entries; }
};

// An entry, or the place where it would have to stand: then perhaps one behind the last entry of its leaf.
struct Place {
    size_t slot;
    size_t entry;
};

} // namespace

constinit const struct pbSort pb___sort_PB_DICT_LEAF = pb::detail::makeSort<Leaf>( "PB_DICT_LEAF" );

struct pbDict final : pb::Object<struct pbDict, pb___sort_PB_DICT> {
    std::vector<Slot> slots;

    size_t length() const { return slots.empty() ? 0 : slots.back().start + slots.back().entries().size(); }
    const Entry &at( size_t index ) const
    {
        const Place place = placeOf( index );
        return slots[place.slot].entries()[place.entry];
    }
    const Entry *find( const pbObj *key ) const;
    void set( const pbObj *key, const pbObj *value );
    void removeAt( size_t index );
    Place placeOf( const pbObj *key ) const;
    bool holds( Place place, const pbObj *key ) const;
    void erase( Place place );

    std::strong_ordering operator<=>( const pbDict &other ) const;

private:
    Place placeOf( size_t index ) const;
    void insert( Place place, Entry entry );
    bool tryMergeWithNext( size_t slot );
    void countFrom( size_t slot );
    void shiftFrom( size_t slot, ptrdiff_t by );
};

PB_OBJECT_DEFINE( pbDict, pb___sort_PB_DICT )

namespace {

// pbObjCompare, quick where both keys are integers.
pbInt compareKeys( const pbObj *a, const pbObj *b )
{
    if ( a->sort == &pb___sort_PB_BOXED_INT && b->sort == &pb___sort_PB_BOXED_INT ) {
        const pbInt left = static_cast<const pbBoxedInt *>( a )->value;
        const pbInt right = static_cast<const pbBoxedInt *>( b )->value;
        return left < right ? -1 : left > right;
    }
    return pbObjCompare( a, b );
}

} // namespace

Place pbDict::placeOf( size_t index ) const
{
    const auto behind = std::partition_point( slots.begin(), slots.end(),
                                              [=]( const Slot &slot ) { return slot.start <= index; } );
    const size_t slot = static_cast<size_t>( behind - slots.begin() ) - 1;
    return { slot, index - slots[slot].start };
}

// The first entry whose key is not less, in the last leaf that begins at or before the key.
Place pbDict::placeOf( const pbObj *key ) const
{
    if ( slots.empty() )
        return { 0, 0 };
    const auto behind = std::partition_point( slots.begin() + 1, slots.end(), [=]( const Slot &slot ) {
        return compareKeys( slot.firstKey, key ) <= 0;
    } );
    const auto slot = behind - 1;
    const auto entry = std::partition_point( slot->entries().begin(), slot->entries().end(), [=]( const Entry &entry ) {
        return compareKeys( entry.key.get(), key ) < 0;
    } );
    return { static_cast<size_t>( slot - slots.begin() ), static_cast<size_t>( entry - slot->entries().begin() ) };
}

bool pbDict::holds( Place place, const pbObj *key ) const
{
    return place.slot < slots.size() && place.entry < slots[place.slot].entries().size()
        && compareKeys( slots[place.slot].entries()[place.entry].key.get(), key ) == 0;
}

const Entry *pbDict::find( const pbObj *key ) const
{
    const Place place = placeOf( key );
    return holds( place, key ) ? &slots[place.slot].entries()[place.entry] : nullptr;
}

void pbDict::set( const pbObj *key, const pbObj *value )
{
    const Place place = placeOf( key );
    if ( !holds( place, key ) )
        insert( place, { pb::share( key ), pb::share( value ) } );
    else
        slots[place.slot].edit()[place.entry].value = pb::share( value );
}

void pbDict::insert( Place place, Entry entry )
{
    if ( slots.empty() )
        slots.emplace_back( pb::make<Leaf>() );
    std::vector<Entry> &entries = slots[place.slot].edit();
    entries.insert( entries.begin() + static_cast<ptrdiff_t>( place.entry ), std::move( entry ) );
    slots[place.slot].refreshKey();
    if ( entries.size() <= leafLimit )
        return shiftFrom( place.slot + 1, 1 );
    const auto middle = entries.begin() + leafLimit / 2;
    auto upper = pb::make<Leaf>();
    upper->entries.assign( std::make_move_iterator( middle ), std::make_move_iterator( entries.end() ) );
    entries.erase( middle, entries.end() );
    slots.insert( slots.begin() + static_cast<ptrdiff_t>( place.slot ) + 1, Slot( std::move( upper ) ) );
    countFrom( place.slot );
}

void pbDict::removeAt( size_t index ) { erase( placeOf( index ) ); }

void pbDict::erase( Place place )
{
    // Dropped when the dictionary is whole again: the last reference may run a destructor that reads it.
    std::vector<Entry> &entries = slots[place.slot].edit();
    const Entry dropped = std::move( entries[place.entry] );
    entries.erase( entries.begin() + static_cast<ptrdiff_t>( place.entry ) );
    slots[place.slot].refreshKey();
    if ( entries.empty() )
        slots.erase( slots.begin() + static_cast<ptrdiff_t>( place.slot ) );
    else if ( entries.size() >= leafLimit / 2 ) // and so is alone, whatever its neighbours have
        return shiftFrom( place.slot + 1, -1 );
    else if ( place.slot && tryMergeWithNext( place.slot - 1 ) )
        --place.slot;
    else if ( !tryMergeWithNext( place.slot ) )
        return shiftFrom( place.slot + 1, -1 );
    countFrom( place.slot );
}

// Joins two leaves that are small together, well below the limit so that the next insertions do not split them again.
bool pbDict::tryMergeWithNext( size_t slot )
{
    if ( slot + 1 >= slots.size() || slots[slot].entries().size() + slots[slot + 1].entries().size() > leafLimit / 2 )
        return false;
    const pb::Ref<Leaf> next = slots[slot + 1].leaf;
    std::vector<Entry> &entries = slots[slot].edit();
    entries.insert( entries.end(), next->entries.begin(), next->entries.end() );
    slots.erase( slots.begin() + static_cast<ptrdiff_t>( slot ) + 1 );
    return true;
}

void pbDict::countFrom( size_t slot )
{
    for ( ; slot < slots.size(); ++slot )
        slots[slot].start = slot ? slots[slot - 1].start + slots[slot - 1].entries().size() : 0;
}

// The leaves themselves are left alone: in a large dictionary few of them are in the processor's cache.
void pbDict::shiftFrom( size_t slot, ptrdiff_t by )
{
    for ( ; slot < slots.size(); ++slot )
        slots[slot].start += static_cast<size_t>( by );
}

std::strong_ordering pbDict::operator<=>( const pbDict &other ) const
{
    const size_t common = std::min( length(), other.length() );
    for ( size_t i = 0; i < common; ++i )
        if ( const pbInt order = compareKeys( at( i ).key.get(), other.at( i ).key.get() ) )
            return order <=> 0;
    if ( length() != other.length() )
        return length() <=> other.length();
    for ( size_t i = 0; i < common; ++i )
        if ( const pbInt order = pbObjCompare( at( i ).value.get(), other.at( i ).value.get() ) )
            return order <=> 0;
    return std::strong_ordering::equal;
}

namespace {

struct pbVector *vectorOf( const pbDict &dict, pb::Ref<pbObj> Entry::*part )
{
    auto vector = pb::adopt( pbVectorCreate() );
    for ( const Slot &slot : dict.slots )
        for ( const Entry &entry : slot.entries() )
            pbVectorAppend( vector.address(), ( entry.*part ).get() );
    return vector.release();
}

} // namespace

extern "C" {

struct pbDict *pbDictCreate( void ) { return new pbDict; }

struct pbDict *pbDictCreateFrom( const struct pbDict *source )
{
    PB_ASSERT( source );
    return new pbDict( *source );
}

pbInt pbDictLength( const struct pbDict *dict )
{
    PB_ASSERT( dict );
    return static_cast<pbInt>( dict->length() );
}

void pbDictSetObjKey( struct pbDict **dict, const struct pbObj *key, const struct pbObj *value )
{
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    PB_ASSERT( key );
    PB_ASSERT( value );
    pb::edit( dict ).set( key, value );
}

struct pbObj *pbDictObjKey( const struct pbDict *dict, const struct pbObj *key )
{
    PB_ASSERT( dict );
    PB_ASSERT( key );
    const Entry *entry = dict->find( key );
    return entry ? entry->value.share() : nullptr;
}

pbBool pbDictHasObjKey( const struct pbDict *dict, const struct pbObj *key )
{
    PB_ASSERT( dict );
    PB_ASSERT( key );
    return dict->find( key ) != nullptr;
}

void pbDictDelObjKey( struct pbDict **dict, const struct pbObj *key )
{
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    PB_ASSERT( key );
    const Place place = ( *dict )->placeOf( key );
    if ( ( *dict )->holds( place, key ) )
        pb::edit( dict ).erase( place ); // a copy has it in the same place
}

struct pbObj *pbDictKeyAt( const struct pbDict *dict, pbInt index )
{
    PB_ASSERT( dict );
    PB_ASSERT( index >= 0 && index < pbDictLength( dict ) );
    return dict->at( static_cast<size_t>( index ) ).key.share();
}

struct pbObj *pbDictValueAt( const struct pbDict *dict, pbInt index )
{
    PB_ASSERT( dict );
    PB_ASSERT( index >= 0 && index < pbDictLength( dict ) );
    return dict->at( static_cast<size_t>( index ) ).value.share();
}

void pbDictDelAt( struct pbDict **dict, pbInt index )
{
    PB_ASSERT( dict );
    PB_ASSERT( *dict );
    PB_ASSERT( index >= 0 && index < pbDictLength( *dict ) );
    pb::edit( dict ).removeAt( static_cast<size_t>( index ) );
}

struct pbVector *pbDictKeysVector( const struct pbDict *dict )
{
    PB_ASSERT( dict );
    return vectorOf( *dict, &Entry::key );
}

struct pbVector *pbDictValuesVector( const struct pbDict *dict )
{
    PB_ASSERT( dict );
    return vectorOf( *dict, &Entry::value );
}

// Integer keys are looked up with a key on the stack: comparing makes no reference.

void pbDictSetIntKey( struct pbDict **dict, pbInt key, const struct pbObj *value )
{
    const auto boxed = pb::make<pbBoxedInt>( key );
    pbDictSetObjKey( dict, boxed.get(), value );
}

struct pbObj *pbDictIntKey( const struct pbDict *dict, pbInt key )
{
    const pbBoxedInt boxed( key );
    return pbDictObjKey( dict, &boxed );
}

void pbDictDelIntKey( struct pbDict **dict, pbInt key )
{
    const pbBoxedInt boxed( key );
    pbDictDelObjKey( dict, &boxed );
}

void pbDictSetStringKey( struct pbDict **dict, const struct pbString *key, const struct pbObj *value )
{
    pbDictSetObjKey( dict, pbStringObj( key ), value );
}

struct pbObj *pbDictStringKey( const struct pbDict *dict, const struct pbString *key )
{
    return pbDictObjKey( dict, pbStringObj( key ) );
}

void pbDictDelStringKey( struct pbDict **dict, const struct pbString *key )
{
    pbDictDelObjKey( dict, pbStringObj( key ) );
}

} // extern "C"
