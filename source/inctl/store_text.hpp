// What a store holds under a key, as the program shows it.
#ifndef INCTL_STORE_TEXT_HPP
#define INCTL_STORE_TEXT_HPP

#include "pb/pb_object.hpp"
#include "pb/pb_store.h"

#include <string>
#include <vector>

namespace inctl {

// "" where it has no text.
std::string textIn( const struct pbStore *store, const char *key );
inline std::string textIn( const pb::Ref<struct pbStore> &store, const char *key )
{
    return textIn( store.get(), key );
}

// The stores of an array; empty where there is none.
std::vector<pb::Ref<struct pbStore>> storesIn( const struct pbStore *store, const char *key );
inline std::vector<pb::Ref<struct pbStore>> storesIn( const pb::Ref<struct pbStore> &store, const char *key )
{
    return storesIn( store.get(), key );
}

} // namespace inctl

#endif
