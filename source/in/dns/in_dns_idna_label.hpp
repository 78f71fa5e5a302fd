// ToASCII and ToUnicode of one label (RFC 3490, section 4) between arrays of code points. In-tree only.
#ifndef IN_DNS_IDNA_LABEL_HPP
#define IN_DNS_IDNA_LABEL_HPP

#include "pb/pb_string.hpp"

#include <optional>
#include <string_view>

namespace in::idna {

inline constexpr size_t longestLabel = 63; // code points of an ASCII form

struct Rules {
    bool allowUnassigned = true;
    bool useStd3Ascii = false;
};

// Where a conversion leaves its result, and nameprep its own.
struct Room {
    char32_t result[longestLabel];
    char32_t prepared[2 * longestLabel];
    pb::String preparedString;
};

// The ASCII form: the label itself, or a view of the room. Nothing when the label has none.
std::optional<std::u32string_view> toAscii( std::u32string_view label, Rules rules, Room &room );

// The Unicode form of a label that has an ASCII form: the label itself, or a view of the room.
std::u32string_view toUnicode( std::u32string_view label, Rules rules, Room &room );

} // namespace in::idna

#endif
