// JSON text as a tree in which every key and value knows its place.
#ifndef CS_JSON_READER_INTERNAL_H
#define CS_JSON_READER_INTERNAL_H

#include "pb/pb_object.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct pbStore;

namespace cs {

constexpr size_t JsonBytesMaximum = size_t{ 16 } << 20;
constexpr size_t JsonDepthMaximum = 64; // so that a walk over the tree may recurse
constexpr size_t JsonValuesMaximum = 100'000;

struct JsonMember;

struct JsonValue {
    enum class Kind { Null, Bool, Number, String, Object, Array };

    Kind kind = Kind::Null;
    size_t offset = 0;               // of its first byte
    size_t end = 0;                  // the offset behind its last byte, of complete ones
    bool complete = false;           // false where the text ended inside it
    std::string text{};              // of Null, Bool, Number (as written) and String (without escapes)
    std::vector<JsonMember> members; // of Object and Array

    bool isContainer() const noexcept { return kind == Kind::Object || kind == Kind::Array; }
};

struct JsonMember {
    std::string key{};      // of Array entries "0", "1", ...
    size_t keyOffset = 0;   // of the quote before the key; of Array entries of the value
    bool duplicate = false; // the key stands before in the same object
    bool bad = false;       // a problem was told about it; set by the checks
    bool flawed = false;    // a problem was told about something inside it
    JsonValue value{};

    bool usable() const noexcept { return !duplicate && !bad; }
};

// What made the rest of a text unreadable.
struct JsonError {
    size_t offset = 0;
    std::string text{}; // empty: none
};

struct JsonLimits {
    size_t bytes = JsonBytesMaximum;
    size_t values = JsonValuesMaximum;
};

// Reads the text, comments allowed, in one pass; after an error the tree holds what was read before it. The text is
// refused from the first byte on that is not UTF-8 or is NUL.
JsonError readJson( std::string_view bytes, JsonValue &root, const JsonLimits &limits = {} );

// Sets the key to the value: text, or a store of what is usable in it.
void setFromJson( pb::Ref<struct pbStore> &store, std::string_view key, const JsonValue &value );
pb::Ref<struct pbStore> storeFromJson( const JsonValue &container );

} // namespace cs

#endif
