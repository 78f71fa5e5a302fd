// The store form of a value, told once as a table of rows: key, member, codec, when it is written. One walker stores,
// one restores, one describes the keys for messages and editors. In-tree only.
//
//     constexpr auto form = std::tuple{
//         in::form::Row{ "firstPort", &inUdpPortRange::firstPort, in::form::Integer{ 1, 65535 }, in::form::always },
//         ...
//     };
//
// Restoring cannot fail: a key that is absent or whose value is not valid leaves the member as it is.
#ifndef IN_STORE_FORM_HPP
#define IN_STORE_FORM_HPP

#include "cs/cs_key.h"
#include "pb/pb_dict.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <string>
#include <tuple>

namespace in::form {

// When a row is written. Members that know when they are absent (a null reference, -1) are left out while they are;
// members with an is-default mark are left out while they are default, unless defaults are asked for.
enum class Written { always, whenPresent, unlessDefault };
using enum Written;

// A codec writes a value under a key, reads it back (false, and the value untouched, when the key is absent or its
// value not valid) and describes what it accepts. `entry` is room for the description of the entries of an array.

struct Integer {
    pbInt minimum, maximum;
    const char *expected = nullptr;

    void write( struct pbStore **store, const char *key, pbInt value, pbBool ) const
    {
        pbStoreSetValueIntCstr( store, key, -1, value );
    }
    bool read( const struct pbStore *store, const char *key, pbInt &value ) const
    {
        pbInt stored;
        if ( !pbStoreValueIntCstr( store, &stored, key, -1 ) || stored < minimum || stored > maximum )
            return false;
        value = stored;
        return true;
    }
    csKey describe( csKey & ) const
    {
        return { .kind = CS_KEY_INT, .expected = expected, .minimum = minimum, .maximum = maximum };
    }
};

// 0..255, written as "0xB8", read in either base.
struct HexadecimalByte {
    void write( struct pbStore **store, const char *key, uint8_t value, pbBool ) const
    {
        static constexpr char digits[] = "0123456789ABCDEF";
        const char text[] = { '0', 'x', digits[value >> 4], digits[value & 15] };
        pbStoreSetValueCstr( store, key, -1, pb::string( { text, sizeof text } ).get() );
    }
    bool read( const struct pbStore *store, const char *key, uint8_t &value ) const
    {
        pbInt stored = 0;
        if ( !Integer{ 0, 255 }.read( store, key, stored ) )
            return false;
        value = static_cast<uint8_t>( stored );
        return true;
    }
    csKey describe( csKey & ) const
    {
        return { .kind = CS_KEY_INT, .expected = "0..255 or 0x00..0xFF", .minimum = 0, .maximum = 255 };
    }
};

struct Boolean {
    void write( struct pbStore **store, const char *key, pbBool value, pbBool ) const
    {
        pbStoreSetValueBoolCstr( store, key, -1, value );
    }
    bool read( const struct pbStore *store, const char *key, pbBool &value ) const
    {
        return pbStoreValueBoolCstr( store, &value, key, -1 );
    }
    csKey describe( csKey & ) const { return { .kind = CS_KEY_BOOL }; }
};

// The name of an enumerant.
struct Enumeration {
    struct pbString *( *toString )( pbInt value );
    pbInt ( *fromString )( const struct pbString *name ); // -1 for an unknown name
    const char *const *names;

    void write( struct pbStore **store, const char *key, pbInt value, pbBool ) const
    {
        pbStoreSetValueCstr( store, key, -1, pb::adopt( toString( value ) ).get() );
    }
    bool read( const struct pbStore *store, const char *key, pbInt &value ) const
    {
        const auto name = pb::adopt( pbStoreValueCstr( store, key, -1 ) );
        const pbInt stored = name ? fromString( name.get() ) : -1;
        if ( stored < 0 )
            return false;
        value = stored;
        return true;
    }
    csKey describe( csKey & ) const { return { .kind = CS_KEY_ENUM, .names = names }; }
};

// Flag names joined by "|".
struct Flags {
    struct pbString *( *toString )( uint64_t flags );
    uint64_t ( *fromString )( const struct pbString *names );
    const char *const *names;

    void write( struct pbStore **store, const char *key, uint64_t value, pbBool ) const
    {
        pbStoreSetValueCstr( store, key, -1, pb::adopt( toString( value ) ).get() );
    }
    bool read( const struct pbStore *store, const char *key, uint64_t &value ) const
    {
        const auto text = pb::adopt( pbStoreValueCstr( store, key, -1 ) );
        if ( text )
            value = fromString( text.get() );
        return static_cast<bool>( text );
    }
    csKey describe( csKey & ) const { return { .kind = CS_KEY_FLAGS, .names = names }; }
};

// Any text, as it stands.
struct Text {
    void write( struct pbStore **store, const char *key, const pb::String &value, pbBool ) const
    {
        pbStoreSetValueCstr( store, key, -1, value.get() );
    }
    bool read( const struct pbStore *store, const char *key, pb::String &value ) const
    {
        auto text = pb::adopt( pbStoreValueCstr( store, key, -1 ) );
        if ( text )
            value = text;
        return static_cast<bool>( text );
    }
    csKey describe( csKey & ) const { return { .kind = CS_KEY_TEXT, .expected = "any text" }; }
};

// A value object by its text. A value that `accepts` refuses is not valid.
template <class T> struct TextOf {
    struct pbString *( *toString )( const T *value );
    T *( *tryFromString )( const struct pbString *text );
    const char *expected;
    pbBool ( *accepts )( const T *value ) = nullptr;
    const char *pattern = nullptr; // see cs_key.h

    void write( struct pbStore **store, const char *key, const pb::Ref<T> &value, pbBool ) const
    {
        pbStoreSetValueCstr( store, key, -1, pb::adopt( toString( value.get() ) ).get() );
    }
    bool read( const struct pbStore *store, const char *key, pb::Ref<T> &value ) const
    {
        const auto text = pb::adopt( pbStoreValueCstr( store, key, -1 ) );
        auto stored = text ? pb::adopt( tryFromString( text.get() ) ) : nullptr;
        if ( !stored || ( accepts && !accepts( stored.get() ) ) )
            return false;
        value = stored;
        return true;
    }
    csKey describe( csKey & ) const { return { .kind = CS_KEY_TEXT, .expected = expected, .pattern = pattern }; }
};

// A value object by a store of its own.
template <class T> struct StoreOf {
    struct pbStore *( *toStore )( const T *value, pbBool storeDefaults );
    T *( *tryRestore )( const struct pbStore *store );
    const csKey *( *keys )( pbInt *count ) = nullptr;
    uint64_t flags = 0; // CS_KEY_FLAG_...

    void write( struct pbStore **store, const char *key, const pb::Ref<T> &value, pbBool storeDefaults ) const
    {
        pbStoreSetStoreCstr( store, key, -1, pb::adopt( toStore( value.get(), storeDefaults ) ).get() );
    }
    bool read( const struct pbStore *store, const char *key, pb::Ref<T> &value ) const
    {
        const auto sub = pb::adopt( pbStoreStoreCstr( store, key, -1 ) );
        auto stored = sub ? pb::adopt( tryRestore( sub.get() ) ) : nullptr;
        if ( stored )
            value = stored;
        return static_cast<bool>( stored );
    }
    csKey describe( csKey & ) const
    {
        csKey key{ .kind = CS_KEY_STORE, .flags = flags };
        if ( keys )
            key.keys = keys( &key.keyCount );
        return key;
    }
};

// A dictionary used as a set of value objects: an array of its keys. Entries that are not valid are left out.
template <class T, class Entry> struct SetOf {
    Entry entry;

    void write( struct pbStore **store, const char *key, const pb::Ref<struct pbDict> &value,
                pbBool storeDefaults ) const
    {
        auto array = pb::adopt( pbStoreCreate() );
        for ( pbInt i = 0; i < pbDictLength( value.get() ); ++i ) {
            const auto obj = pb::adopt( reinterpret_cast<T *>( pbDictKeyAt( value.get(), i ) ) );
            entry.write( array.address(), std::to_string( i ).c_str(), obj, storeDefaults );
        }
        pbStoreSetStoreCstr( store, key, -1, array.get() );
    }
    bool read( const struct pbStore *store, const char *key, pb::Ref<struct pbDict> &value ) const
    {
        const auto array = pb::adopt( pbStoreStoreCstr( store, key, -1 ) );
        if ( !array )
            return false;
        value = pb::adopt( pbDictCreate() );
        const pbInt length = pbStoreArrayLength( array.get() );
        for ( pbInt i = 0; i < length; ++i ) {
            pb::Ref<T> obj;
            if ( entry.read( array.get(), std::to_string( i ).c_str(), obj ) ) {
                auto *const header = reinterpret_cast<struct pbObj *>( obj.get() ); // every object begins with it
                pbDictSetObjKey( value.address(), header, header );
            }
        }
        return true;
    }
    csKey describe( csKey &entryKey ) const
    {
        entryKey = entry.describe( entryKey );
        entryKey.key = "";
        return { .kind = CS_KEY_ARRAY, .keys = &entryKey, .keyCount = 1 };
    }
};

// A codec with what people are told of the key: a sentence without its full stop.
template <class Codec> struct Told : Codec {
    const char *description;
    uint64_t flags = 0; // CS_KEY_FLAG_...

    csKey describe( csKey &entryKey ) const
    {
        csKey key = Codec::describe( entryKey );
        key.description = description;
        key.flags |= flags;
        return key;
    }
};
template <class Codec> Told( Codec, const char * ) -> Told<Codec>;
template <class Codec> Told( Codec, const char *, uint64_t ) -> Told<Codec>;

template <class T, class Member, class Codec> struct Row {
    const char *key;
    Member T::*member;
    Codec codec;
    Written written;
    Member T::*restored = member; // the member that a stored value goes to
};
template <class T, class Member, class Codec> Row( const char *, Member T::*, Codec, Written ) -> Row<T, Member, Codec>;
template <class T, class Member, class Codec>
Row( const char *, Member T::*, Codec, Written, Member T::* ) -> Row<T, Member, Codec>;

namespace detail {

template <class T> struct Member {
    static const T &value( const T &member ) { return member; }
    static bool isPresent( const T &member )
    {
        if constexpr ( std::integral<T> )
            return member != T( -1 );
        else
            return static_cast<bool>( member );
    }
    static bool isDefault( const T & ) { return false; }
    template <class Codec>
    static bool read( const Codec &codec, const struct pbStore *store, const char *key, T &member )
    {
        return codec.read( store, key, member );
    }
};
template <class T> struct Member<pb::Defaulted<T>> {
    static const T &value( const pb::Defaulted<T> &member ) { return member.value; }
    static bool isPresent( const pb::Defaulted<T> & ) { return true; }
    static bool isDefault( const pb::Defaulted<T> &member ) { return member.isDefault; }
    template <class Codec>
    static bool read( const Codec &codec, const struct pbStore *store, const char *key, pb::Defaulted<T> &member )
    {
        const bool valid = codec.read( store, key, member.value );
        if ( valid )
            member.isDefault = false;
        return valid;
    }
};

template <class T, class M, class Codec>
void storeRow( const T &object, const Row<T, M, Codec> &row, pbBool storeDefaults, struct pbStore **store )
{
    const M &member = object.*row.member;
    if ( row.written == whenPresent && !Member<M>::isPresent( member ) )
        return;
    if ( row.written == unlessDefault && Member<M>::isDefault( member ) && !storeDefaults )
        return;
    row.codec.write( store, row.key, Member<M>::value( member ), storeDefaults );
}

template <class T, class M, class Codec>
bool restoreRow( T &object, const Row<T, M, Codec> &row, const struct pbStore *store )
{
    return Member<M>::read( row.codec, store, row.key, object.*row.restored );
}

template <size_t Count> struct Description {
    csKey keys[Count];
    csKey entries[Count];

    template <class... Rows> explicit Description( const std::tuple<Rows...> &form )
    {
        size_t i = 0;
        std::apply( [&]( const auto &...row ) { ( describeRow( row, i++ ), ... ); }, form );
    }
    Description( const Description & ) = delete;

private:
    template <class R> void describeRow( const R &row, size_t index )
    {
        keys[index] = row.codec.describe( entries[index] );
        keys[index].key = row.key;
    }
};

} // namespace detail

template <class T, class... Rows>
[[nodiscard]] pb::Ref<struct pbStore> store( const T &object, const std::tuple<Rows...> &form,
                                             pbBool storeDefaults = false )
{
    auto result = pb::adopt( pbStoreCreate() );
    std::apply(
        [&]( const auto &...row ) { ( detail::storeRow( object, row, storeDefaults, result.address() ), ... ); },
        form );
    return result;
}

// True when every key was there and valid.
template <class T, class... Rows>
bool restore( T &object, const std::tuple<Rows...> &form, const struct pbStore *store )
{
    bool whole = true;
    const auto keep = [&whole]( bool valid ) { whole = whole && valid; };
    std::apply( [&]( const auto &...row ) { ( keep( detail::restoreRow( object, row, store ) ), ... ); }, form );
    return whole;
}

// The keys of a form, for the life of the process.
template <const auto &form> const csKey *describe( pbInt *count )
{
    constexpr size_t size = std::tuple_size_v<std::remove_cvref_t<decltype( form )>>;
    static const detail::Description<size> description( form );
    *count = static_cast<pbInt>( size );
    return description.keys;
}

} // namespace in::form

#endif
