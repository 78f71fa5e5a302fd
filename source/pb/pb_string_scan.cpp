// pbString: looking into text; pieces, numbers, searches and comparisons with bytes.
#include "pb/pb_string.h"

#include "pb/pb_string.hpp"
#include "pb/pb_text.hpp"
#include "pb/pb_vector.h"

#include <algorithm>

namespace {

void appendPiece( pb::Ref<struct pbVector> &pieces, std::u32string_view text )
{
    const auto *chars = reinterpret_cast<const pbChar *>( text.data() );
    const auto piece = pb::adopt( pbStringCreateFromChars( chars, static_cast<pbInt>( text.size() ) ) );
    pbVectorAppend( pieces.address(), pbStringObj( piece.get() ) );
}

pbInt indexOf( size_t position )
{
    return position == std::u32string_view::npos ? -1 : static_cast<pbInt>( position );
}

std::string_view bytesOf( const char *bytes, pbInt byteCount )
{
    return { bytes, byteCount < 0 ? std::strlen( bytes ) : static_cast<size_t>( byteCount ) };
}

// How many code points of the text the bytes match, all of them; -1 when they differ or go beyond the text.
template <class Same> pbInt matchBytes( std::u32string_view text, std::string_view bytes, Same same )
{
    pb::text::Utf8Reader reader( bytes );
    size_t index = 0;
    for ( ; !reader.atEnd(); ++index )
        if ( index == text.size() || !same( text[index], reader.next() ) )
            return -1;
    return static_cast<pbInt>( index );
}

bool equalIgnoringCase( char32_t a, char32_t b ) { return pb::text::asciiLower( a ) == pb::text::asciiLower( b ); }

} // namespace

extern "C" {

struct pbVector *pbStringSplitChar( const struct pbString *string, pbChar separator, pbInt maxPieces )
{
    PB_ASSERT( string );
    PB_ASSERT( maxPieces == -1 || maxPieces >= 1 );
    auto pieces = pb::adopt( pbVectorCreate() );
    std::u32string_view rest = pb::view( string );
    for ( pbInt count = 1; maxPieces == -1 || count < maxPieces; ++count ) {
        const size_t end = rest.find( static_cast<char32_t>( separator ) );
        if ( end == rest.npos )
            break;
        appendPiece( pieces, rest.substr( 0, end ) );
        rest.remove_prefix( end + 1 );
    }
    appendPiece( pieces, rest );
    return pieces.release();
}

struct pbVector *pbStringSplitWhitespace( const struct pbString *string )
{
    PB_ASSERT( string );
    auto pieces = pb::adopt( pbVectorCreate() );
    const std::u32string_view text = pb::view( string );
    for ( auto end = text.begin();; ) {
        const auto begin = std::find_if_not( end, text.end(), pb::text::isSpace );
        if ( begin == text.end() )
            return pieces.release();
        end = std::find_if( begin, text.end(), pb::text::isSpace );
        appendPiece( pieces, { begin, end } );
    }
}

struct pbVector *pbStringSplitLines( const struct pbString *string )
{
    PB_ASSERT( string );
    auto lines = pb::adopt( pbVectorCreate() );
    for ( std::u32string_view rest = pb::view( string ); !rest.empty(); ) {
        const size_t end = std::min( rest.find( U'\n' ), rest.size() );
        appendPiece( lines, rest.substr( 0, end ) );
        rest.remove_prefix( std::min( end + 1, rest.size() ) );
    }
    return lines.release();
}

pbBool pbStringScanInt( const struct pbString *string, pbInt offset, pbInt base, pbInt *value, pbInt *scannedLength )
{
    PB_ASSERT( string );
    PB_ASSERT( offset >= 0 && offset <= pbStringLength( string ) );
    PB_ASSERT( base >= 2 && base <= 36 );
    PB_ASSERT( value );
    PB_ASSERT( scannedLength );
    std::u32string_view text = pb::view( string ).substr( static_cast<size_t>( offset ) );
    const bool negative = text.starts_with( U'-' );
    text.remove_prefix( negative );
    const auto digits = pb::text::scanDigits( text, base, negative );
    if ( !digits )
        return false;
    *value = digits->value;
    *scannedLength = static_cast<pbInt>( digits->count ) + negative;
    return true;
}

pbBool pbStringBeginsWithCstr( const struct pbString *string, const char *bytes, pbInt byteCount )
{
    PB_ASSERT( string );
    PB_ASSERT( bytes );
    PB_ASSERT( byteCount >= -1 );
    return matchBytes( pb::view( string ), bytesOf( bytes, byteCount ), std::equal_to<>{} ) >= 0;
}

pbBool pbStringBeginsWithChar( const struct pbString *string, pbChar c )
{
    PB_ASSERT( string );
    return pb::view( string ).starts_with( static_cast<char32_t>( c ) );
}

pbBool pbStringEndsWithChar( const struct pbString *string, pbChar c )
{
    PB_ASSERT( string );
    return pb::view( string ).ends_with( static_cast<char32_t>( c ) );
}

pbInt pbStringFind( const struct pbString *string, pbInt offset, const struct pbString *text )
{
    PB_ASSERT( string );
    PB_ASSERT( offset >= 0 && offset <= pbStringLength( string ) );
    PB_ASSERT( text );
    return indexOf( pb::view( string ).find( pb::view( text ), static_cast<size_t>( offset ) ) );
}

pbInt pbStringFindChar( const struct pbString *string, pbInt offset, pbChar c )
{
    PB_ASSERT( string );
    PB_ASSERT( offset >= 0 && offset <= pbStringLength( string ) );
    return indexOf( pb::view( string ).find( static_cast<char32_t>( c ), static_cast<size_t>( offset ) ) );
}

pbInt pbStringFindLastChar( const struct pbString *string, pbChar c )
{
    PB_ASSERT( string );
    return indexOf( pb::view( string ).rfind( static_cast<char32_t>( c ) ) );
}

pbBool pbStringEqualsCstr( const struct pbString *string, const char *bytes, pbInt byteCount )
{
    PB_ASSERT( string );
    PB_ASSERT( bytes );
    PB_ASSERT( byteCount >= -1 );
    return matchBytes( pb::view( string ), bytesOf( bytes, byteCount ), std::equal_to<>{} ) == pbStringLength( string );
}

pbBool pbStringEqualsCstrIgnoreCase( const struct pbString *string, const char *bytes, pbInt byteCount )
{
    PB_ASSERT( string );
    PB_ASSERT( bytes );
    PB_ASSERT( byteCount >= -1 );
    return matchBytes( pb::view( string ), bytesOf( bytes, byteCount ), equalIgnoringCase ) == pbStringLength( string );
}

} // extern "C"
