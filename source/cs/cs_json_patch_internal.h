// Changes values in JSON text and leaves the rest of it alone.
#ifndef CS_JSON_PATCH_INTERNAL_H
#define CS_JSON_PATCH_INTERNAL_H

#include "cs/cs_text_edit_internal.h"
#include "pb/pb_object.hpp"

#include <string>
#include <string_view>

struct pbStore;

namespace cs {

// The edits that make the text, which readJson has accepted and whose top is an object, say what the store holds, which
// is a stored tree.
// Values that differ are replaced, keys that are gone taken out and new ones added behind the others of their object, in
// its layout; comments and order stay. Written anew, without their comments, are an object that keeps no key, an array
// that has more or fewer entries or another value among them, and what becomes something else.
std::vector<TextEdit> jsonEdits( std::string_view text, const pb::Ref<struct pbStore> &wanted );

// The store that the text stands for; null when it is not JSON or its top is no object.
pb::Ref<struct pbStore> storeFromJsonText( std::string_view text );

} // namespace cs

#endif
