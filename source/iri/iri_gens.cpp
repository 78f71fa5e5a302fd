// Grammar check of the host part of a URI or IRI: RFC 3986 section 3.2.2, with the code points that RFC 3987
// section 2.2 adds to reg-name.
#include "iri/iri_gens.h"

#include "pb/pb_string.hpp"

namespace {

using Text = std::u32string_view;

bool isDigit( char32_t c ) { return c >= U'0' && c <= U'9'; }
bool isHexDigit( char32_t c ) { return isDigit( c ) || ( c >= U'a' && c <= U'f' ) || ( c >= U'A' && c <= U'F' ); }
bool isLetter( char32_t c ) { return ( c >= U'a' && c <= U'z' ) || ( c >= U'A' && c <= U'Z' ); }
bool isUnreserved( char32_t c ) { return isLetter( c ) || isDigit( c ) || Text( U"-._~" ).find( c ) != Text::npos; }
bool isSubDelim( char32_t c ) { return Text( U"!$&'()*+,;=" ).find( c ) != Text::npos; }

bool isUcschar( char32_t c )
{
    if ( c < 0x10000 )
        return ( c >= 0xA0 && c <= 0xD7FF ) || ( c >= 0xF900 && c <= 0xFDCF ) || ( c >= 0xFDF0 && c <= 0xFFEF );
    // Planes 1 to 14 without their last two code points; plane 14 begins at U+E1000.
    return c <= 0xEFFFD && ( c & 0xFFFF ) <= 0xFFFD && !( c >= 0xE0000 && c < 0xE1000 );
}

// ireg-name = *( iunreserved / pct-encoded / sub-delims ); IPv4address is a special case of it.
bool isRegName( Text text )
{
    for ( size_t i = 0; i < text.size(); ++i ) {
        if ( text[i] == U'%' ) {
            if ( text.size() - i < 3 || !isHexDigit( text[i + 1] ) || !isHexDigit( text[i + 2] ) )
                return false;
            i += 2;
        } else if ( !isUnreserved( text[i] ) && !isSubDelim( text[i] ) && !isUcschar( text[i] ) )
            return false;
    }
    return true;
}

// dec-octet: 0..255 without leading zeros
bool isDecOctet( Text text )
{
    if ( text.empty() || text.size() > 3 || ( text.size() > 1 && text[0] == U'0' ) )
        return false;
    unsigned value = 0;
    for ( const char32_t c : text ) {
        if ( !isDigit( c ) )
            return false;
        value = value * 10 + ( c - U'0' );
    }
    return value <= 255;
}

// Takes the text up to the separator, or the rest.
Text takePiece( Text &text, char32_t separator )
{
    const size_t end = text.find( separator );
    const Text piece = text.substr( 0, end );
    text = end == Text::npos ? Text() : text.substr( end + 1 );
    return piece;
}

bool isIpv4Address( Text text )
{
    for ( int dots = 0; dots < 3; ++dots ) {
        if ( text.find( U'.' ) == Text::npos || !isDecOctet( takePiece( text, U'.' ) ) )
            return false;
    }
    return isDecOctet( text );
}

bool isH16( Text text )
{
    if ( text.empty() || text.size() > 4 )
        return false;
    for ( const char32_t c : text )
        if ( !isHexDigit( c ) )
            return false;
    return true;
}

// Groups of a run that is separated by single colons; -1 when malformed. An IPv4 address at the end counts as two.
int countGroups( Text text, bool ipv4MayEnd )
{
    if ( text.empty() )
        return 0;
    for ( int groups = 0;; ) {
        const bool last = text.find( U':' ) == Text::npos;
        const Text piece = takePiece( text, U':' );
        if ( isH16( piece ) )
            groups += 1;
        else if ( last && ipv4MayEnd && isIpv4Address( piece ) )
            groups += 2;
        else
            return -1;
        if ( last )
            return groups;
    }
}

// Eight groups, or "::" in place of at least one.
bool isIpv6Address( Text text )
{
    const size_t gap = text.find( U"::" );
    if ( gap == Text::npos )
        return countGroups( text, true ) == 8;
    const int before = countGroups( text.substr( 0, gap ), false );
    const int behind = countGroups( text.substr( gap + 2 ), true );
    return before >= 0 && behind >= 0 && before + behind <= 7;
}

// IPvFuture = "v" 1*HEXDIG "." 1*( unreserved / sub-delims / ":" )
bool isIpvFuture( Text text )
{
    if ( text.empty() || ( text[0] != U'v' && text[0] != U'V' ) )
        return false;
    const size_t dot = text.find( U'.' );
    if ( dot == Text::npos || dot < 2 || dot + 1 == text.size() )
        return false;
    for ( const char32_t c : text.substr( 1, dot - 1 ) )
        if ( !isHexDigit( c ) )
            return false;
    for ( const char32_t c : text.substr( dot + 1 ) )
        if ( !isUnreserved( c ) && !isSubDelim( c ) && c != U':' )
            return false;
    return true;
}

bool isHost( Text text )
{
    if ( !text.starts_with( U'[' ) )
        return isRegName( text );
    if ( !text.ends_with( U']' ) || text.size() < 2 )
        return false;
    const Text literal = text.substr( 1, text.size() - 2 );
    return isIpv6Address( literal ) || isIpvFuture( literal );
}

} // namespace

extern "C" pbBool iriGensValidatePart( const struct pbString *string, pbInt part )
{
    PB_ASSERT( string );
    PB_ASSERT( part == IRI_GENS_PART_HOST );
    return isHost( pb::view( string ) );
}
