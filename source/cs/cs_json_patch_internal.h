// Changes values in JSON text and leaves the rest of it alone.
#ifndef CS_JSON_PATCH_INTERNAL_H
#define CS_JSON_PATCH_INTERNAL_H

#include "pb/pb_object.hpp"

#include <string>
#include <string_view>

struct pbStore;

namespace cs {

// The text, which readJson has accepted and whose top is an object, changed so that it says what the store holds.
// Values that differ are replaced and new keys added behind the others of their object, in its layout; comments and
// order stay. An object that loses a key, or becomes something else, is written anew.
std::string patchedJson( std::string_view text, const pb::Ref<struct pbStore> &wanted );

// The store that the text stands for; null when it is not JSON or its top is no object.
pb::Ref<struct pbStore> storeFromJsonText( std::string_view text );

} // namespace cs

#endif
