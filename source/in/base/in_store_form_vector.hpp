// More codecs for store forms: vectors of value objects, and names of records. In-tree only.
#ifndef IN_STORE_FORM_VECTOR_HPP
#define IN_STORE_FORM_VECTOR_HPP

#include "cs/cs_configuration.h"
#include "in/base/in_store_form.hpp"
#include "pb/pb_vector.h"

namespace in::form {

// A vector of T: an array of its objects. Entries that are not valid are left out.
template <class T, class Entry> struct VectorOf {
    Entry entry;

    void write( struct pbStore **store, const char *key, const pb::Ref<struct pbVector> &value,
                pbBool storeDefaults ) const
    {
        auto array = pb::adopt( pbStoreCreate() );
        for ( pbInt i = 0; i < pbVectorLength( value.get() ); ++i ) {
            const auto obj = pb::adopt( reinterpret_cast<T *>( pbVectorObjAt( value.get(), i ) ) );
            entry.write( array.address(), std::to_string( i ).c_str(), obj, storeDefaults );
        }
        pbStoreSetStoreCstr( store, key, -1, array.get() );
    }
    bool read( const struct pbStore *store, const char *key, pb::Ref<struct pbVector> &value ) const
    {
        const auto array = pb::adopt( pbStoreStoreCstr( store, key, -1 ) );
        if ( !array )
            return false;
        value = pb::adopt( pbVectorCreate() );
        const pbInt length = pbStoreArrayLength( array.get() );
        for ( pbInt i = 0; i < length; ++i ) {
            pb::Ref<T> obj;
            if ( entry.read( array.get(), std::to_string( i ).c_str(), obj ) ) // every object begins with its header
                pbVectorAppend( value.address(), reinterpret_cast<struct pbObj *>( obj.get() ) );
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

// The name of a record of a sort.
struct RecordName : Text {
    const char *sort;

    explicit constexpr RecordName( const char *sort ) : sort( sort ) {}
    bool read( const struct pbStore *store, const char *key, pb::String &value ) const
    {
        pb::String stored;
        if ( !Text::read( store, key, stored ) || !csObjectRecordNameOk( stored.get() ) )
            return false;
        value = stored;
        return true;
    }
    csKey describe( csKey & ) const
    {
        return { .kind = CS_KEY_TEXT,
                 .expected = "a record name: 1 to 255 letters, digits, \"_\", \"-\", \".\"",
                 .recordSort = sort };
    }
};

// Text that a function accepts.
struct AcceptedText : Text {
    pbBool ( *accepts )( const struct pbString *text );
    const char *expected;

    constexpr AcceptedText( pbBool ( *accepts )( const struct pbString * ), const char *expected )
        : accepts( accepts ), expected( expected )
    {
    }
    bool read( const struct pbStore *store, const char *key, pb::String &value ) const
    {
        pb::String stored;
        if ( !Text::read( store, key, stored ) || !accepts( stored.get() ) )
            return false;
        value = stored;
        return true;
    }
    csKey describe( csKey & ) const
    {
        return { .kind = CS_KEY_TEXT, .expected = expected, .accepts = accepts };
    }
};

} // namespace in::form

#endif
