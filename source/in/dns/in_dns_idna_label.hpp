// ToASCII and ToUnicode of one label (RFC 3490, section 4) between arrays of code points. In-tree only.
#ifndef IN_DNS_IDNA_LABEL_HPP
#define IN_DNS_IDNA_LABEL_HPP

#include "pb/pb_string.hpp"

#include <cstring>
#include <optional>
#include <string_view>

namespace in::idna {

inline constexpr size_t longestLabel = 63; // code points of an ASCII form

struct Rules {
    bool allowUnassigned = true;
    bool useStd3Ascii = false;
};

inline bool isAscii( std::u32string_view text )
{
    constexpr uint64_t beyond = 0xFFFFFF80FFFFFF80; // in either of two code points
    uint64_t seen = text.size() % 2 ? text.back() : 0;
    for ( size_t i = 0; i + 2 <= text.size(); i += 2 ) {
        uint64_t two;
        std::memcpy( &two, text.data() + i, sizeof two );
        seen |= two;
    }
    return !( seen & beyond );
}

// "xn--" in any letter case.
inline bool hasAcePrefix( std::u32string_view text )
{
    return text.size() >= 4 && ( text[0] | 0x20 ) == U'x' && ( text[1] | 0x20 ) == U'n' && text[2] == U'-' && text[3] == U'-';
}

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
