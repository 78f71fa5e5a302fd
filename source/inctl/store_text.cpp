// What a store holds under a key.
#include "inctl/store_text.hpp"

#include "pb/pb_string.hpp"

namespace inctl {

std::string textIn( const struct pbStore *store, const char *key )
{
    const auto value = pb::adopt( pbStoreValueCstr( store, key, -1 ) );
    return value ? pb::utf8( value ) : "";
}

std::vector<pb::Ref<struct pbStore>> storesIn( const struct pbStore *store, const char *key )
{
    std::vector<pb::Ref<struct pbStore>> stores;
    const auto array = pb::adopt( pbStoreStoreCstr( store, key, -1 ) );
    for ( pbInt i = 0; array && i < pbStoreArrayLength( array.get() ); ++i )
        if ( auto element = pb::adopt( pbStoreArrayStoreAt( array.get(), i ) ) )
            stores.push_back( std::move( element ) );
    return stores;
}

} // namespace inctl
