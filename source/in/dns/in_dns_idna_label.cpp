// ToASCII and ToUnicode of one label (RFC 3490, section 4).
#include "in/dns/in_dns_idna_label.hpp"

#include "in/dns/in_dns_punycode.hpp"
#include "pb/pb_text.hpp"
#include "rfc/rfc_nameprep.hpp"
#include "rfc/rfc_stringprep.h"

#include <algorithm>

namespace {

using namespace in::idna;

constexpr std::u32string_view acePrefix = U"xn--";

// Letters, digits and hyphens inside (STD 3; RFC 1123, section 2.1).
bool obeysStd3( std::u32string_view text )
{
    return !text.empty() && text.front() != U'-' && text.back() != U'-' &&
           std::all_of( text.begin(), text.end(), []( char32_t c ) { return c == U'-' || pb::text::digitOf( c ) < 36; } );
}

bool equalsButAsciiCase( std::u32string_view a, std::u32string_view b )
{
    return std::equal( a.begin(), a.end(), b.begin(), b.end(), []( char32_t c, char32_t d ) {
        return pb::text::asciiLower( c ) == pb::text::asciiLower( d );
    } );
}

// Nameprep by the library. A label whose result cannot be short enough is refused before, so that the time for a long
// one does not grow with its square: except what maps to nothing, NFKC composes at most four code points into one.
std::optional<std::u32string_view> prepareByLibrary( std::u32string_view label, Rules rules, Room &room )
{
    std::u32string kept;
    for ( const char32_t c : label )
        if ( !rfc::nameprepDrops( c ) ) {
            if ( kept.size() == 4 * longestLabel )
                return std::nullopt;
            kept.push_back( c );
        }
    const pb::String string =
        pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( kept.data() ), static_cast<pbInt>( kept.size() ) ) );
    room.preparedString = pb::adopt( rfcStringprepProfileNameprep( string.get(), rules.allowUnassigned ) );
    if ( !room.preparedString )
        return std::nullopt;
    return pb::view( room.preparedString.get() );
}

std::optional<std::u32string_view> prepare( std::u32string_view label, Rules rules, Room &room )
{
    static_assert( sizeof( Room::prepared ) / sizeof( char32_t ) >= longestLabel * rfc::nameprepQuickGrowth );
    if ( rules.allowUnassigned && label.size() <= longestLabel )
        if ( const auto length = rfc::nameprepQuick( label, room.prepared ) )
            return std::u32string_view( room.prepared, *length );
    return prepareByLibrary( label, rules, room );
}

// Whether ToASCII leads from decoded text back to the label it was decoded from, letter case aside. Punycode writes each
// text in one way only, so where nameprep changes nothing but ASCII case, encoding need not be done to know its result,
// and where it changes more, the result is another one.
bool convertsBack( std::u32string_view decoded, std::u32string_view label, Rules rules )
{
    Room room;
    if ( rules.allowUnassigned && !rules.useStd3Ascii && !isAscii( decoded ) )
        if ( const auto length = rfc::nameprepQuick( decoded, room.prepared ) )
            return !hasAcePrefix( decoded ) && equalsButAsciiCase( decoded, { room.prepared, *length } );
    const auto ascii = toAscii( decoded, rules, room );
    return ascii && equalsButAsciiCase( *ascii, label );
}

} // namespace

std::optional<std::u32string_view> in::idna::toAscii( std::u32string_view label, Rules rules, Room &room )
{
    std::u32string_view text = label;
    if ( !isAscii( text ) ) {
        const auto prepared = prepare( label, rules, room );
        if ( !prepared )
            return std::nullopt;
        text = *prepared;
    }
    if ( rules.useStd3Ascii && !obeysStd3( text ) )
        return std::nullopt;
    if ( !isAscii( text ) ) {
        if ( hasAcePrefix( text ) )
            return std::nullopt;
        constexpr size_t prefix = acePrefix.size();
        std::copy( acePrefix.begin(), acePrefix.end(), room.result );
        const auto length = punycode::encode( text, std::span( room.result ).subspan( prefix ) );
        if ( !length )
            return std::nullopt;
        text = { room.result, prefix + *length };
    }
    if ( text.empty() || text.size() > longestLabel )
        return std::nullopt;
    return text;
}

std::u32string_view in::idna::toUnicode( std::u32string_view label, Rules rules, Room &room )
{
    if ( label.empty() || label.size() > longestLabel )
        return label;
    std::u32string_view text = label;
    if ( !isAscii( text ) ) {
        const auto prepared = prepare( label, rules, room );
        if ( !prepared )
            return label;
        text = *prepared;
    }
    if ( !hasAcePrefix( text ) )
        return label;
    const auto length = punycode::decode( text.substr( acePrefix.size() ), room.result );
    if ( !length )
        return label;
    const std::u32string_view decoded( room.result, *length );
    return convertsBack( decoded, text, rules ) ? decoded : label;
}
