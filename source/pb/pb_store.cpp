// pbStore: entries in the order of their keys' arrival; a large store finds them through an index.
#include "pb/pb_store.h"

#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"

#include <algorithm>
#include <unordered_map>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_STORE )

namespace {

struct Entry {
    uint64_t arrival; // ascending, so that an entry is found again after others went
    pb::String key;
    pb::String value;            // one of these two
    pb::Ref<struct pbStore> store;
};

// The number that the text is the decimal form of, or -1.
pbInt arrayIndex( std::u32string_view text )
{
    if ( text.empty() || ( text.front() == U'0' && text.size() > 1 ) )
        return -1;
    const auto digits = pb::text::scanDigits( text, 10, false );
    return digits && digits->count == text.size() ? digits->value : -1;
}

} // namespace

struct pbStore final : pb::Object<struct pbStore, pb___sort_PB_STORE> {
    std::vector<Entry> entries;

    // Null when absent.
    const Entry *find( std::u32string_view key ) const;
    const Entry *find( const char *key, pbInt keyLength ) const;
    const Entry *findElement( pbInt number ) const;
    void set( const struct pbString *key, const struct pbString *value, const struct pbStore *store );
    void remove( const Entry *entry );
    pbInt elements() const { return elements_; }

    std::strong_ordering operator<=>( const pbStore &other ) const;
    bool operator==( const pbStore &other ) const { return ( *this <=> other ) == 0; }

private:
    std::vector<const Entry *> sorted() const;

    static constexpr size_t largestWithoutIndex = 16;
    // Keys are immutable while an entry holds them, and copies of a store share them: the views stay valid.
    std::unordered_map<std::u32string_view, uint64_t> index_; // by key, the arrival; empty while the store is small
    uint64_t arrivals_ = 0;
    pbInt elements_ = 0; // how many of "0", "1", ... there are without a gap
};

PB_OBJECT_DEFINE( pbStore, pb___sort_PB_STORE )

const Entry *pbStore::find( std::u32string_view key ) const
{
    if ( index_.empty() ) {
        const auto found =
            std::ranges::find_if( entries, [&]( const Entry &entry ) { return pb::view( entry.key.get() ) == key; } );
        return found == entries.end() ? nullptr : &*found;
    }
    const auto found = index_.find( key );
    return found == index_.end() ? nullptr : &*std::ranges::lower_bound( entries, found->second, {}, &Entry::arrival );
}

const Entry *pbStore::find( const char *key, pbInt keyLength ) const
{
    if ( index_.empty() ) {
        const auto found = std::ranges::find_if( entries, [&]( const Entry &entry ) {
            return pbStringEqualsCstr( entry.key.get(), key, keyLength );
        } );
        return found == entries.end() ? nullptr : &*found;
    }
    return find( pb::view( pb::adopt( pbStringCreateFromCstr( key, keyLength ) ).get() ) );
}

const Entry *pbStore::findElement( pbInt number ) const
{
    return find( pb::view( pb::format( "%i", number ).get() ) );
}

void pbStore::set( const struct pbString *key, const struct pbString *value, const struct pbStore *store )
{
    if ( const Entry *found = find( pb::view( key ) ) ) {
        Entry &entry = entries[static_cast<size_t>( found - entries.data() )];
        entry.value = pb::share( value );
        entry.store = pb::share( store );
        return;
    }
    entries.push_back( { arrivals_++, pb::share( key ), pb::share( value ), pb::share( store ) } );
    if ( !index_.empty() )
        index_.emplace( pb::view( key ), entries.back().arrival );
    else if ( entries.size() > largestWithoutIndex )
        for ( const Entry &entry : entries )
            index_.emplace( pb::view( entry.key.get() ), entry.arrival );
    if ( arrayIndex( pb::view( key ) ) == elements_ )
        do
            ++elements_;
        while ( findElement( elements_ ) );
}

void pbStore::remove( const Entry *entry )
{
    const std::u32string_view key = pb::view( entry->key.get() );
    if ( const pbInt number = arrayIndex( key ); number >= 0 )
        elements_ = std::min( elements_, number );
    index_.erase( key );
    entries.erase( entries.begin() + ( entry - entries.data() ) );
}

std::vector<const Entry *> pbStore::sorted() const
{
    std::vector<const Entry *> sorted;
    sorted.reserve( entries.size() );
    for ( const Entry &entry : entries )
        sorted.push_back( &entry );
    std::ranges::sort( sorted, {}, []( const Entry *entry ) { return pb::view( entry->key.get() ); } );
    return sorted;
}

std::strong_ordering pbStore::operator<=>( const pbStore &other ) const
{
    const auto compare = []( const Entry *a, const Entry *b ) {
        if ( const auto order = a->key <=> b->key; order != 0 )
            return order;
        const auto order = a->value <=> b->value;
        return order != 0 ? order : a->store <=> b->store;
    };
    const auto mine = sorted();
    const auto others = other.sorted();
    return std::lexicographical_compare_three_way( mine.begin(), mine.end(), others.begin(), others.end(), compare );
}

namespace {

pb::String keyOf( const char *key, pbInt keyLength ) { return pb::adopt( pbStringCreateFromCstr( key, keyLength ) ); }

struct pbString *valueOf( const Entry *entry ) { return entry ? entry->value.share() : nullptr; }
struct pbStore *storeOf( const Entry *entry ) { return entry ? entry->store.share() : nullptr; }

void del( struct pbStore **store, const char *key, pbInt keyLength, bool isValue )
{
    const Entry *found = ( *store )->find( key, keyLength );
    if ( !found || isValue != static_cast<bool>( found->value ) )
        return;
    const auto position = found - ( *store )->entries.data();
    pbStore &own = pb::edit( store );
    own.remove( own.entries.data() + position );
}

// The next key of an array. Beyond a gap there may be keys already; an appended element closes the gap first.
pb::String nextElement( const struct pbStore *array ) { return pb::format( "%i", array->elements() ); }

} // namespace

extern "C" {

struct pbStore *pbStoreCreate( void ) { return new pbStore; }

struct pbStore *pbStoreCreateFrom( const struct pbStore *source )
{
    PB_ASSERT( source );
    return new pbStore( *source );
}

void pbStoreSetValue( struct pbStore **store, const struct pbString *key, const struct pbString *value )
{
    PB_ASSERT( store );
    PB_ASSERT( *store );
    PB_ASSERT( key );
    PB_ASSERT( value );
    pb::edit( store ).set( key, value, nullptr );
}

void pbStoreSetStore( struct pbStore **store, const struct pbString *key, const struct pbStore *value )
{
    PB_ASSERT( store );
    PB_ASSERT( *store );
    PB_ASSERT( key );
    PB_ASSERT( value );
    const auto held = pb::share( value ); // it may be the store itself, which then counts as shared
    pb::edit( store ).set( key, nullptr, value );
}

void pbStoreSetValueCstr( struct pbStore **store, const char *key, pbInt keyLength, const struct pbString *value )
{
    PB_ASSERT( key );
    pbStoreSetValue( store, keyOf( key, keyLength ).get(), value );
}

void pbStoreSetValueIntCstr( struct pbStore **store, const char *key, pbInt keyLength, pbInt value )
{
    pbStoreSetValueCstr( store, key, keyLength, pb::format( "%i", value ).get() );
}

void pbStoreSetValueBoolCstr( struct pbStore **store, const char *key, pbInt keyLength, pbBool value )
{
    pbStoreSetValueCstr( store, key, keyLength, pb::format( "%b", value ).get() );
}

void pbStoreSetStoreCstr( struct pbStore **store, const char *key, pbInt keyLength, const struct pbStore *value )
{
    PB_ASSERT( key );
    pbStoreSetStore( store, keyOf( key, keyLength ).get(), value );
}

void pbStoreDelValueCstr( struct pbStore **store, const char *key, pbInt keyLength )
{
    PB_ASSERT( store );
    PB_ASSERT( *store );
    PB_ASSERT( key );
    del( store, key, keyLength, true );
}

void pbStoreDelStoreCstr( struct pbStore **store, const char *key, pbInt keyLength )
{
    PB_ASSERT( store );
    PB_ASSERT( *store );
    PB_ASSERT( key );
    del( store, key, keyLength, false );
}

struct pbString *pbStoreValueCstr( const struct pbStore *store, const char *key, pbInt keyLength )
{
    PB_ASSERT( store );
    PB_ASSERT( key );
    return valueOf( store->find( key, keyLength ) );
}

struct pbStore *pbStoreStoreCstr( const struct pbStore *store, const char *key, pbInt keyLength )
{
    PB_ASSERT( store );
    PB_ASSERT( key );
    return storeOf( store->find( key, keyLength ) );
}

struct pbString *pbStoreValue( const struct pbStore *store, const struct pbString *key )
{
    PB_ASSERT( store );
    PB_ASSERT( key );
    return valueOf( store->find( pb::view( key ) ) );
}

struct pbStore *pbStoreStore( const struct pbStore *store, const struct pbString *key )
{
    PB_ASSERT( store );
    PB_ASSERT( key );
    return storeOf( store->find( pb::view( key ) ) );
}

pbBool pbStoreValueIntCstr( const struct pbStore *store, pbInt *value, const char *key, pbInt keyLength )
{
    PB_ASSERT( value );
    const auto text = pb::adopt( pbStoreValueCstr( store, key, keyLength ) );
    if ( !text )
        return false;
    std::u32string_view rest = pb::view( text.get() );
    const bool negative = rest.starts_with( U'-' );
    rest.remove_prefix( negative );
    const bool hexadecimal = rest.starts_with( U"0x" ) || rest.starts_with( U"0X" );
    rest.remove_prefix( hexadecimal ? 2 : 0 );
    const auto digits = pb::text::scanDigits( rest, hexadecimal ? 16 : 10, negative );
    if ( !digits || digits->count != rest.size() )
        return false;
    *value = digits->value;
    return true;
}

pbBool pbStoreValueBoolCstr( const struct pbStore *store, pbBool *value, const char *key, pbInt keyLength )
{
    PB_ASSERT( value );
    const auto text = pb::adopt( pbStoreValueCstr( store, key, keyLength ) );
    if ( !text )
        return false;
    const bool isTrue = pbStringEqualsCstr( text.get(), "true", -1 );
    if ( !isTrue && !pbStringEqualsCstr( text.get(), "false", -1 ) )
        return false;
    *value = isTrue;
    return true;
}

pbBool pbStoreHasValueCstr( const struct pbStore *store, const char *key, pbInt keyLength )
{
    return static_cast<bool>( pb::adopt( pbStoreValueCstr( store, key, keyLength ) ) );
}

pbBool pbStoreHasStoreCstr( const struct pbStore *store, const char *key, pbInt keyLength )
{
    return static_cast<bool>( pb::adopt( pbStoreStoreCstr( store, key, keyLength ) ) );
}

pbInt pbStoreLength( const struct pbStore *store )
{
    PB_ASSERT( store );
    return static_cast<pbInt>( store->entries.size() );
}

struct pbString *pbStoreKeyAt( const struct pbStore *store, pbInt index )
{
    PB_ASSERT( store );
    PB_ASSERT( index >= 0 && index < pbStoreLength( store ) );
    return store->entries[static_cast<size_t>( index )].key.share();
}

pbBool pbStoreIsValueAt( const struct pbStore *store, pbInt index )
{
    PB_ASSERT( store );
    PB_ASSERT( index >= 0 && index < pbStoreLength( store ) );
    return static_cast<bool>( store->entries[static_cast<size_t>( index )].value );
}

struct pbString *pbStoreValueAt( const struct pbStore *store, pbInt index )
{
    PB_ASSERT( store );
    PB_ASSERT( index >= 0 && index < pbStoreLength( store ) );
    return store->entries[static_cast<size_t>( index )].value.share();
}

struct pbStore *pbStoreStoreAt( const struct pbStore *store, pbInt index )
{
    PB_ASSERT( store );
    PB_ASSERT( index >= 0 && index < pbStoreLength( store ) );
    return store->entries[static_cast<size_t>( index )].store.share();
}

pbInt pbStoreArrayLength( const struct pbStore *array )
{
    PB_ASSERT( array );
    return array->elements();
}

void pbStoreArrayAppendValue( struct pbStore **array, const struct pbString *value )
{
    PB_ASSERT( array );
    PB_ASSERT( *array );
    PB_ASSERT( value );
    pbStoreSetValue( array, nextElement( *array ).get(), value );
}

void pbStoreArrayAppendStore( struct pbStore **array, const struct pbStore *value )
{
    PB_ASSERT( array );
    PB_ASSERT( *array );
    PB_ASSERT( value );
    pbStoreSetStore( array, nextElement( *array ).get(), value );
}

struct pbString *pbStoreArrayValueAt( const struct pbStore *array, pbInt index )
{
    PB_ASSERT( array );
    PB_ASSERT( index >= 0 );
    return valueOf( array->findElement( index ) );
}

struct pbStore *pbStoreArrayStoreAt( const struct pbStore *array, pbInt index )
{
    PB_ASSERT( array );
    PB_ASSERT( index >= 0 );
    return storeOf( array->findElement( index ) );
}

} // extern "C"
