// Nameprep: by look-up where that decides, else through GNU libidn, which holds the tables of Unicode 3.2 that the profile
// is defined over.
#include "rfc/rfc_stringprep.h"

#include "pb/pb_string.hpp"
#include "rfc/rfc_nameprep.hpp"

#include <algorithm>
#include <stringprep.h>
#include <vector>

namespace {

// libidn's normalisation stops at U+0000. Nameprep treats U+0001 exactly alike: it keeps both, combines neither with
// anything and gives neither a direction. So the one stands in for the other, and their order tells them apart.
constexpr uint32_t standIn = 1;

std::vector<bool> replaceNuls( std::vector<uint32_t> &text )
{
    std::vector<bool> wasNul;
    for ( uint32_t &c : text )
        if ( c <= standIn ) {
            wasNul.push_back( c == 0 );
            c = standIn;
        }
    return wasNul;
}

void restoreNuls( std::vector<uint32_t> &text, const std::vector<bool> &wasNul )
{
    size_t next = 0;
    for ( uint32_t &c : text )
        if ( c == standIn && next < wasNul.size() && wasNul[next++] )
            c = 0;
}

pb::String makeString( const uint32_t *chars, size_t length )
{
    return pb::adopt( pbStringCreateFromChars( chars, static_cast<pbInt>( length ) ) );
}

pb::String prepareQuick( const struct pbString *string )
{
    const std::u32string_view source = pb::view( string );
    std::vector<char32_t> room( rfc::nameprepQuickGrowth * source.size() );
    const auto length = rfc::nameprepQuick( source, room.data() );
    if ( !length )
        return nullptr;
    if ( source == std::u32string_view( room.data(), *length ) )
        return pb::share( string );
    return makeString( reinterpret_cast<const uint32_t *>( room.data() ), *length );
}

} // namespace

extern "C" struct pbString *rfcStringprepProfileNameprep( const struct pbString *string, pbBool allowUnassigned )
{
    PB_ASSERT( string );
    if ( allowUnassigned )
        if ( pb::String prepared = prepareQuick( string ) )
            return prepared.release();
    const std::u32string_view source = pb::view( string );
    if ( !std::all_of( source.begin(), source.end(), []( char32_t c ) { return PB_CHAR_OK( c ); } ) )
        return nullptr; // surrogates are prohibited, and beyond U+10FFFF libidn's tables end

    std::vector<uint32_t> original( source.begin(), source.end() );
    const std::vector<bool> wasNul = replaceNuls( original );
    const auto flags = allowUnassigned ? Stringprep_profile_flags{} : STRINGPREP_NO_UNASSIGNED;
    // Mapping and normalisation lengthen a text; how much is known only afterwards.
    for ( size_t room = original.size() + 16;; room *= 2 ) {
        std::vector<uint32_t> text = original;
        text.resize( room );
        size_t length = original.size();
        const int result = stringprep_4i( text.data(), &length, room, flags, stringprep_nameprep );
        if ( result == STRINGPREP_TOO_SMALL_BUFFER )
            continue;
        if ( result != STRINGPREP_OK )
            return nullptr;
        text.resize( length );
        restoreNuls( text, wasNul );
        return makeString( text.data(), length ).release();
    }
}
