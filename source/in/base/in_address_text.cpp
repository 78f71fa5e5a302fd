// The readers and writers of address text.
#include "in/base/in_address_text.hpp"

#include "pb/pb_vector.h"

#include <array>
#include <cstring>

namespace in::text {
namespace {

constexpr pbInt maximumPieces = 8;
constexpr char hexDigits[] = "0123456789abcdef";

// 0..15, or 16 and more for what is no hexadecimal digit.
constexpr uint32_t hexValue( char32_t c )
{
    const uint32_t digit = static_cast<uint32_t>( c ) - '0';
    const uint32_t letter = ( static_cast<uint32_t>( c ) | 0x20 ) - 'a';
    return digit < 10 ? digit : letter < 6 ? letter + 10 : 16;
}

// Reads one to three decimal digits, 0..255. Null when there are none, more, or the value is greater.
const char32_t *quickByte( const char32_t *at, const char32_t *end, uint8_t &byte )
{
    uint32_t value = 0;
    const char32_t *const first = at;
    while ( at != end && static_cast<uint32_t>( *at ) - '0' < 10 && at - first < 4 )
        value = value * 10 + ( static_cast<uint32_t>( *at++ ) - '0' );
    byte = static_cast<uint8_t>( value );
    return at == first || at - first > 3 || value > 255 ? nullptr : at;
}

// Moves the groups behind the gap to the end and puts zeros in their place.
void openGap( uint8_t *bytes, pbInt gap, pbInt groups )
{
    const size_t tail = static_cast<size_t>( groups - gap ) * 2;
    memmove( bytes + 16 - tail, bytes + gap * 2, tail );
    memset( bytes + gap * 2, 0, 16 - tail - static_cast<size_t>( gap ) * 2 );
}

pb::String pieceAt( const struct pbVector *pieces, pbInt index )
{
    return pb::adopt( pbStringFrom( pbVectorObjAt( pieces, index ) ) );
}

bool isEmptyAt( const struct pbVector *pieces, pbInt index )
{
    return pbStringLength( pieceAt( pieces, index ).get() ) == 0;
}

// An integer that is the whole piece and lies in 0..maximum; a negative one is too large as unsigned.
bool scanWhole( const struct pbString *piece, pbInt base, uint64_t maximum, uint64_t &value )
{
    pbInt scanned = 0;
    pbInt length = 0;
    if ( !pbStringScanInt( piece, 0, base, &scanned, &length ) || length != pbStringLength( piece ) )
        return false;
    value = static_cast<uint64_t>( scanned );
    return value <= maximum;
}

// The IPv4 form without white space around it, as it also ends an IPv6 text.
bool patientV4Tail( const struct pbString *text, uint8_t *bytes )
{
    const auto pieces = pb::adopt( pbStringSplitChar( text, '.', 4 ) );
    if ( pbVectorLength( pieces.get() ) != 4 )
        return false;
    for ( pbInt i = 0; i < 4; ++i ) {
        uint64_t value = 0;
        if ( !scanWhole( pieceAt( pieces.get(), i ).get(), 10, 255, value ) )
            return false;
        bytes[i] = static_cast<uint8_t>( value );
    }
    return true;
}

pb::String trimmed( const struct pbString *text )
{
    pb::String copy = pb::share( text );
    pbStringTrim( copy.address() );
    return copy;
}

// An IPv4 text at the end becomes the two groups that it stands for.
void splitV4Tail( pb::Ref<struct pbVector> &pieces )
{
    const pbInt last = pbVectorLength( pieces.get() ) - 1;
    uint8_t bytes[4];
    if ( !patientV4Tail( pieceAt( pieces.get(), last ).get(), bytes ) )
        return;
    pbVectorDelAt( pieces.address(), last );
    for ( int i = 0; i < 4; i += 2 ) {
        const char group[] = { hexDigits[bytes[i] >> 4], hexDigits[bytes[i] & 15], hexDigits[bytes[i + 1] >> 4],
                               hexDigits[bytes[i + 1] & 15] };
        const auto piece = pb::adopt( pbStringCreateFromCstr( group, sizeof group ) );
        pbVectorAppend( pieces.address(), pbStringObj( piece.get() ) );
    }
}

// Takes out the empty pieces of the first "::" and returns where its zero groups belong, -1 without one.
pbInt removeGap( pb::Ref<struct pbVector> &pieces )
{
    const pbInt count = pbVectorLength( pieces.get() );
    if ( isEmptyAt( pieces.get(), 0 ) && isEmptyAt( pieces.get(), 1 ) ) {
        pbVectorDelAt( pieces.address(), 0 );
        pbVectorDelAt( pieces.address(), 0 );
        return 0;
    }
    if ( isEmptyAt( pieces.get(), count - 1 ) && isEmptyAt( pieces.get(), count - 2 ) ) {
        pbVectorDelAt( pieces.address(), count - 1 );
        pbVectorDelAt( pieces.address(), count - 2 );
        return count - 2;
    }
    for ( pbInt i = 1; i <= count - 2; ++i )
        if ( isEmptyAt( pieces.get(), i ) ) {
            pbVectorDelAt( pieces.address(), i );
            return i;
        }
    return -1;
}

// Decimal texts of 0..255 and their lengths.
struct DecimalByte {
    char digits[3];
    uint8_t length;
};
constexpr auto decimalBytes = [] {
    std::array<DecimalByte, 256> table{};
    for ( uint32_t value = 0; value < 256; ++value ) {
        DecimalByte &entry = table[value];
        if ( value >= 100 )
            entry.digits[entry.length++] = static_cast<char>( '0' + value / 100 );
        if ( value >= 10 )
            entry.digits[entry.length++] = static_cast<char>( '0' + value / 10 % 10 );
        entry.digits[entry.length++] = static_cast<char>( '0' + value % 10 );
    }
    return table;
}();

char *writeGroup( char *out, uint32_t group )
{
    // Without a branch: all four digits into place, then those in front of the first that counts are stepped over.
    const int length = group ? ( 35 - __builtin_clz( group ) ) / 4 : 1;
    const uint32_t shifted = group << ( 4 - length ) * 4;
    for ( int i = 0; i < 4; ++i )
        out[i] = hexDigits[shifted >> ( 12 - 4 * i ) & 15];
    return out + length;
}

} // namespace

bool quickV4( std::u32string_view text, uint8_t *bytes )
{
    const char32_t *at = text.data();
    const char32_t *const end = at + text.size();
    for ( int i = 0; i < 4; ++i ) {
        if ( i && ( at == end || *at++ != '.' ) )
            return false;
        at = quickByte( at, end, bytes[i] );
        if ( !at )
            return false;
    }
    return at == end;
}

bool quickV6( std::u32string_view text, uint8_t *bytes )
{
    const char32_t *at = text.data();
    const char32_t *const end = at + text.size();
    pbInt groups = 0;
    pbInt colons = 0;
    pbInt gap = -1;

    if ( text.size() >= 2 && at[0] == ':' && at[1] == ':' ) {
        gap = 0;
        colons = 2;
        at += 2;
    }
    while ( at != end ) {
        const char32_t *const piece = at;
        uint32_t value = 0;
        uint32_t digit;
        while ( at != end && at - piece < 5 && ( digit = hexValue( *at ) ) < 16 ) {
            value = value << 4 | digit;
            ++at;
        }
        if ( at != end && *at == '.' ) {
            // the IPv4 text is one piece for the count of pieces and two groups of the address
            if ( groups > 6 || colons > 6 || !quickV4( { piece, end }, bytes + groups * 2 ) )
                return false;
            groups += 2;
            break;
        }
        if ( at == piece || at - piece > 4 || groups == 8 )
            return false;
        bytes[groups * 2] = static_cast<uint8_t>( value >> 8 );
        bytes[groups * 2 + 1] = static_cast<uint8_t>( value );
        ++groups;
        if ( at == end )
            break;
        if ( *at++ != ':' || at == end )
            return false;
        ++colons;
        if ( *at == ':' ) {
            if ( gap >= 0 )
                return false;
            gap = groups;
            ++colons;
            ++at;
        }
    }
    if ( colons >= maximumPieces )
        return false;
    if ( gap < 0 )
        return groups == 8;
    openGap( bytes, gap, groups );
    return true;
}

bool patientV4( const struct pbString *text, uint8_t *bytes )
{
    return patientV4Tail( trimmed( text ).get(), bytes );
}

bool patientV6( const struct pbString *text, uint8_t *bytes )
{
    auto pieces = pb::adopt( pbStringSplitChar( trimmed( text ).get(), ':', maximumPieces ) );
    const pbInt count = pbVectorLength( pieces.get() );
    if ( count < 3 )
        return false;
    if ( count == 3 && isEmptyAt( pieces.get(), 0 ) && isEmptyAt( pieces.get(), 1 ) && isEmptyAt( pieces.get(), 2 ) ) {
        memset( bytes, 0, 16 );
        return true;
    }
    splitV4Tail( pieces );
    if ( pbVectorLength( pieces.get() ) > maximumPieces )
        return false;
    const pbInt gap = removeGap( pieces );
    if ( gap >= 0 ) {
        const auto zero = pb::string( "0" );
        while ( pbVectorLength( pieces.get() ) < maximumPieces )
            pbVectorInsert( pieces.address(), gap, pbStringObj( zero.get() ) );
    }
    if ( pbVectorLength( pieces.get() ) != maximumPieces )
        return false;
    for ( pbInt i = 0; i < maximumPieces; ++i ) {
        uint64_t value = 0;
        if ( !scanWhole( pieceAt( pieces.get(), i ).get(), 16, 65535, value ) )
            return false;
        bytes[i * 2] = static_cast<uint8_t>( value >> 8 );
        bytes[i * 2 + 1] = static_cast<uint8_t>( value );
    }
    return true;
}

char *writeV4( char *out, const uint8_t *bytes )
{
    for ( int i = 0; i < 4; ++i ) {
        const DecimalByte &text = decimalBytes[bytes[i]];
        memcpy( out, &text, sizeof text ); // what lies behind the digits is overwritten or not counted
        out += text.length;
        if ( i < 3 )
            *out++ = '.';
    }
    return out;
}

char *writeV6( char *out, const uint8_t *bytes )
{
    uint32_t group[8];
    int runStart = 0, runLength = 0; // the longest run of zero groups, the first of equal ones
    int current = 0;                 // zero groups up to here
    for ( int i = 0; i < 8; ++i ) {
        group[i] = static_cast<uint32_t>( bytes[i * 2] ) << 8 | bytes[i * 2 + 1];
        current = group[i] ? 0 : current + 1;
        if ( current > runLength ) {
            runLength = current;
            runStart = i + 1 - current;
        }
    }
    if ( !runLength )
        runStart = 8;
    for ( int i = 0; i < runStart; ++i ) {
        if ( i )
            *out++ = ':';
        out = writeGroup( out, group[i] );
    }
    if ( !runLength )
        return out;
    *out++ = ':';
    *out++ = ':';
    for ( int i = runStart + runLength; i < 8; ++i ) {
        if ( i > runStart + runLength )
            *out++ = ':';
        out = writeGroup( out, group[i] );
    }
    return out;
}

char *writeV6Expanded( char *out, const uint8_t *bytes )
{
    for ( int i = 0; i < 16; ++i ) {
        *out++ = hexDigits[bytes[i] >> 4];
        *out++ = hexDigits[bytes[i] & 15];
        if ( i % 2 && i < 15 )
            *out++ = ':';
    }
    return out;
}

} // namespace in::text
