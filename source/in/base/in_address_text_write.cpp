// The writers of address text.
#include "in/base/in_address_text.hpp"

#include <array>
#include <cstring>

namespace in::text {
namespace {

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
