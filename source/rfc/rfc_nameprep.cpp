// Nameprep by look-up: a text stays as it is when each code point does so alone and none can act on a neighbour.
#include "rfc/rfc_nameprep.hpp"

namespace {

bool stays( char32_t c )
{
    if ( c > 0x10FFFF )
        return false;
    const rfc::detail::Leaf &leaf = rfc::detail::nameprepLeaves[rfc::detail::nameprepIndex[c / 256]];
    return leaf[c % 256 / 64] >> c % 64 & 1;
}

// Capital letters whose small ones stay and follow at this distance: ASCII, Latin-1, Greek, Cyrillic.
constexpr char32_t caseDistance = 0x20;
bool isCapital( char32_t c )
{
    return ( c >= U'A' && c <= U'Z' ) || ( c >= 0xC0 && c <= 0xDE ) || ( c >= 0x391 && c <= 0x3A9 ) || ( c >= 0x410 && c <= 0x42F );
}

} // namespace

std::optional<size_t> rfc::nameprepQuick( std::u32string_view text, char32_t *room )
{
    constexpr char32_t sharpS = 0xDF;
    char32_t *end = room;
    for ( const char32_t c : text ) {
        if ( stays( c ) )
            *end++ = c;
        else if ( isCapital( c ) )
            *end++ = c + caseDistance;
        else if ( c == sharpS ) {
            *end++ = U's';
            *end++ = U's';
        }
        else
            return std::nullopt;
    }
    return static_cast<size_t>( end - room );
}
