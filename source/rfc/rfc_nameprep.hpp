// Nameprep of the usual labels by look-up, without the library and its buffers. In-tree only.
#ifndef RFC_NAMEPREP_HPP
#define RFC_NAMEPREP_HPP

#include "pb/pb_base.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace rfc {

// Nameprep with unassigned code points allowed. The length of the result, written to room for nameprepQuickGrowth code
// points for each of the text; nothing where the library must decide, on refusal above all.
PB_API std::optional<size_t> nameprepQuick( std::u32string_view text, char32_t *room );
inline constexpr size_t nameprepQuickGrowth = 2;

// What nameprep maps to nothing (RFC 3454, table B.1).
constexpr bool nameprepDrops( char32_t c )
{
    constexpr char32_t ranges[][2] = { { 0xAD, 0xAD },     { 0x34F, 0x34F },   { 0x1806, 0x1806 }, { 0x180B, 0x180D },
                                       { 0x200B, 0x200D }, { 0x2060, 0x2060 }, { 0xFE00, 0xFE0F }, { 0xFEFF, 0xFEFF } };
    return std::any_of( std::begin( ranges ), std::end( ranges ), [c]( const auto &range ) { return c >= range[0] && c <= range[1]; } );
}

// The table of code points that stay as they are in any company of each other: bit c % 256 of the leaf that the index
// names for c / 256. Generated; rfc_nameprep_table.cpp.
namespace detail {
using Leaf = uint64_t[4];
extern const uint8_t nameprepIndex[0x1100];
extern const Leaf nameprepLeaves[];
} // namespace detail

} // namespace rfc

#endif
