// The readers and writers of address text.
#include "in/base/in_address_text.hpp"

#include "pb/pb_vector.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace in::text {
namespace {

constexpr pbInt maximumPieces = 8;
constexpr char hexDigits[] = "0123456789abcdef";

// What a character is to the quick reader: a digit's value, or one of these.
constexpr uint8_t colon = 0x10, dot = 0x20, ended = 0x40, unusual = 0x80;
constexpr auto kinds = [] {
    std::array<uint8_t, 128> table{};
    table.fill( unusual );
    for ( uint8_t digit = 0; digit < 16; ++digit ) {
        table[static_cast<uint8_t>( "0123456789abcdef"[digit] )] = digit;
        table[static_cast<uint8_t>( "0123456789ABCDEF"[digit] )] = digit;
    }
    table[':'] = colon;
    table['.'] = dot;
    return table;
}();

constexpr size_t longestUsual = 45; // eight groups of which the last two are IPv4

// A run of digits, read without a branch on how many there are: that is what random addresses make costly.
struct Digits {
    uint32_t value = 0;
    uint32_t count = 0;

    // At most `most` digits of the base; there are always kinds to look at, since `ended` follows the text.
    template <uint32_t base, int most> static Digits read( const uint8_t *at )
    {
        Digits digits;
        uint32_t going = 1;
        for ( int i = 0; i < most; ++i ) {
            going &= at[i] < base;
            digits.value += ( digits.value * ( base - 1 ) + at[i] ) & -going;
            digits.count += going;
        }
        return digits;
    }
};

// Four numbers up to the end of the text.
bool readQuads( const uint8_t *at, uint8_t *bytes )
{
    bool good = true;
    for ( int i = 0; i < 4; ++i ) {
        const auto digits = Digits::read<10, 3>( at );
        bytes[i] = static_cast<uint8_t>( digits.value );
        at += digits.count;
        good &= digits.count > 0 && digits.value <= 255 && *at == ( i < 3 ? dot : ended );
        at += *at == dot; // never beyond the end
    }
    return good;
}

// IPv4 alone, straight from the code points: copying them costs more than so short a text is worth. Every character
// that is looked at lies in the text, since each number leaves room for those behind it.
bool readShortV4( std::u32string_view text, uint8_t *bytes )
{
    const char32_t *at = text.data();
    const char32_t *const end = at + text.size();
    if ( text.size() < 7 || text.size() > 15 )
        return false;
    const auto digit = []( char32_t c ) { return static_cast<uint32_t>( c ) - '0'; };
    uint32_t good = 1;
    for ( int i = 0; i < 3; ++i ) {
        const uint32_t first = digit( at[0] ), second = digit( at[1] ), third = digit( at[2] );
        const uint32_t two = second < 10, three = two & ( third < 10 );
        uint32_t value = first;
        value += ( value * 9 + second ) & -two;
        value += ( value * 9 + third ) & -three;
        at += 1 + two + three;
        if ( end - at < 6 - 2 * i ) // a dot and the shortest numbers that follow
            return false;
        good &= first < 10 && value <= 255 && *at == '.';
        bytes[i] = static_cast<uint8_t>( value );
        ++at;
    }
    const auto count = end - at;
    if ( count > 3 )
        return false;
    const uint32_t two = count > 1, three = count > 2;
    const uint32_t units = digit( end[-1] ), tens = digit( end[-2] ) & -two, hundreds = digit( end[-3] ) & -three;
    const uint32_t value = hundreds * 100 + tens * 10 + units;
    bytes[3] = static_cast<uint8_t>( value );
    return good & ( units < 10 ) & ( tens < 10 ) & ( hundreds < 10 ) & ( value <= 255 );
}

// Moves the groups behind the gap to the end and puts zeros in their place.
void openGap( uint8_t *bytes, pbInt gap, pbInt groups )
{
    const size_t tail = static_cast<size_t>( groups - gap ) * 2;
    memmove( bytes + 16 - tail, bytes + gap * 2, tail );
    memset( bytes + gap * 2, 0, 16 - tail - static_cast<size_t>( gap ) * 2 );
}

bool readGroups( const uint8_t *at, uint8_t *bytes )
{
    pbInt groups = 0, colons = 0, gap = -1;
    if ( at[0] == colon && at[1] == colon ) {
        gap = 0;
        colons = 2;
        at += 2;
    }
    while ( *at != ended || gap != groups ) {
        const auto digits = Digits::read<16, 4>( at );
        const uint8_t next = at[digits.count];
        if ( next == dot ) {
            // the IPv4 text is one piece for the count of pieces and two groups of the address
            if ( groups > 6 || colons > 6 || !readQuads( at, bytes + groups * 2 ) )
                return false;
            groups += 2;
            break;
        }
        if ( !digits.count || groups == 8 )
            return false;
        bytes[groups * 2] = static_cast<uint8_t>( digits.value >> 8 );
        bytes[groups * 2 + 1] = static_cast<uint8_t>( digits.value );
        ++groups;
        if ( next == ended )
            break;
        if ( next != colon )
            return false;
        at += digits.count + 1;
        ++colons;
        if ( *at == colon ) {
            if ( gap >= 0 )
                return false;
            gap = groups;
            ++colons;
            ++at;
        }
    }
    if ( colons >= maximumPieces || ( gap < 0 && groups != 8 ) )
        return false;
    if ( gap >= 0 )
        openGap( bytes, gap, groups );
    return true;
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

int quick( std::u32string_view text, uint8_t *bytes )
{
    if ( readShortV4( text, bytes ) )
        return 4;
    if ( text.size() > longestUsual )
        return 0;
    uint8_t read[longestUsual + 4]; // no run of digits is looked at beyond its end
    memset( read, ended, sizeof read );
    for ( size_t i = 0; i < text.size(); ++i )
        read[i] = kinds[std::min<uint32_t>( text[i], 127 )];
    return readGroups( read, bytes ) ? 16 : 0;
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
