// The quick reader of address text: the usual forms in one pass over the code points.
#include "in/base/in_address_text.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace in::text {
namespace {

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
    if ( colons >= groupCount || ( gap < 0 && groups != 8 ) )
        return false;
    if ( gap >= 0 )
        openGap( bytes, gap, groups );
    return true;
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

} // namespace in::text
