// Record: a store in the making, for results that are printed as JSON.
#ifndef INCTL_RECORD_HPP
#define INCTL_RECORD_HPP

#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <concepts>
#include <string_view>
#include <utility>

namespace inctl {

class Record {
public:
    Record() : store_( pb::adopt( pbStoreCreate() ) ) {}
    explicit Record( pb::Ref<struct pbStore> store ) : store_( std::move( store ) ) {}

    Record &set( std::string_view key, std::string_view text ) { return set( key, pb::string( text ) ); }
    Record &set( std::string_view key, const char *text ) { return set( key, std::string_view( text ) ); }
    Record &set( std::string_view key, const pb::String &text )
    {
        pbStoreSetValueCstr( store_.address(), key.data(), length( key ), text.get() );
        return *this;
    }
    template <std::integral Integer> Record &set( std::string_view key, Integer value )
    {
        if constexpr ( std::same_as<Integer, bool> )
            pbStoreSetValueBoolCstr( store_.address(), key.data(), length( key ), value );
        else
            pbStoreSetValueIntCstr( store_.address(), key.data(), length( key ), static_cast<pbInt>( value ) );
        return *this;
    }
    Record &set( std::string_view key, const pb::Ref<struct pbStore> &store )
    {
        pbStoreSetStoreCstr( store_.address(), key.data(), length( key ), store.get() );
        return *this;
    }
    Record &set( std::string_view key, const Record &record ) { return set( key, record.store_ ); }

    // As a store array.
    Record &append( const Record &entry ) { return append( entry.store_ ); }
    Record &append( const pb::Ref<struct pbStore> &entry )
    {
        pbStoreArrayAppendStore( store_.address(), entry.get() );
        return *this;
    }
    Record &append( const pb::String &entry )
    {
        pbStoreArrayAppendValue( store_.address(), entry.get() );
        return *this;
    }

    const struct pbStore *store() const { return store_.get(); }

private:
    static pbInt length( std::string_view key ) { return static_cast<pbInt>( key.size() ); }

    pb::Ref<struct pbStore> store_;
};

} // namespace inctl

#endif
