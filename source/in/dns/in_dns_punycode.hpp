// Punycode between arrays of code points, without objects. In-tree only.
#ifndef IN_DNS_PUNYCODE_HPP
#define IN_DNS_PUNYCODE_HPP

#include <optional>
#include <span>
#include <string_view>

namespace in::punycode {

// The length of what was written to the room, which may be overwritten also on failure. Nothing when the room is too
// small or the source cannot be converted.
std::optional<size_t> encode( std::u32string_view source, std::span<char32_t> room );
std::optional<size_t> decode( std::u32string_view source, std::span<char32_t> room );

} // namespace in::punycode

#endif
