// What writers of JSON share.
#ifndef CS_JSON_INTERNAL_H
#define CS_JSON_INTERNAL_H

#include "pb/pb_string.hpp"

#include <cstddef>

struct pbStore;

namespace cs {

// Whether the store is one that is printed as an array: its keys are "0", "1", ... and there is one at least.
bool isArray( const struct pbStore *store );

// csJsonFromStore, but the store and what stands in it down to that many levels are objects, whatever their keys.
pb::String jsonFromObjects( const struct pbStore *store, pbInt style, size_t objectLevels );

} // namespace cs

#endif
