// What the values of an update are made of.
#ifndef CS_UPDATE_INTERNAL_H
#define CS_UPDATE_INTERNAL_H

#include "pb/pb_object.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <cstddef>
#include <utility>
#include <vector>

PB_SORT_DECLARE( cs___sort_CS_UPDATE_OBJECT )
PB_SORT_DECLARE( cs___sort_CS_UPDATE_OBJECTS )

struct csUpdateObject final : pb::Object<struct csUpdateObject, cs___sort_CS_UPDATE_OBJECT> {
    pb::String sortName;
    pb::Ref<struct pbStore> optionalConfig;
    auto operator<=>( const csUpdateObject & ) const = default;
};

struct csUpdateObjects final : pb::Object<struct csUpdateObjects, cs___sort_CS_UPDATE_OBJECTS> {
    std::vector<std::pair<pb::String, pb::Ref<struct csUpdateObject>>> entries; // name, object
    auto operator<=>( const csUpdateObjects & ) const = default;
};

namespace cs {

// The keys of the stored tree.
constexpr const char *TreeObjects = "objects", *TreeSort = "sort", *TreeConfig = "config";
constexpr const char *TreeModules = "modules", *TreeVersion = "version", *TreeInfo = "info";
// The tree, its two parts, what is named in these, and its configuration or information are objects, whatever the names
// in them: a record may be called "0". What stands deeper is an object or an array.
constexpr size_t TreeObjectLevels = 4;

// The store of the key, or an empty one.
inline pb::Ref<struct pbStore> storeOrEmpty( const pb::Ref<struct pbStore> &parent, const struct pbString *key )
{
    auto store = pb::adopt( pbStoreStore( parent.get(), key ) );
    return store ? store : pb::adopt( pbStoreCreate() );
}
inline pb::Ref<struct pbStore> storeOrEmpty( const pb::Ref<struct pbStore> &parent, const char *key )
{
    return storeOrEmpty( parent, pb::string( key ).get() );
}

} // namespace cs

#endif
