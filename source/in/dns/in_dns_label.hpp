// A label in wire format: its text, and whether it may stand in a domain name. In-tree only.
#ifndef IN_DNS_LABEL_HPP
#define IN_DNS_LABEL_HPP

#include "pb/pb_string.hpp"

#include <bit>
#include <optional>

namespace in::dns {

inline constexpr size_t longestWireLabel = 63;

namespace detail {

inline constexpr uint64_t eachByte = 0x0101010101010101u;

// Whether one of eight bytes is a full stop or not ASCII.
inline bool hasSpecial( uint64_t word )
{
    const uint64_t zeroAtStop = word ^ '.' * eachByte;
    return ( ( ( zeroAtStop - eachByte ) & ~zeroAtStop ) | word ) & 0x80 * eachByte;
}

// The first 1..8 of the bytes, the others as 'x'.
inline uint64_t loadFirst( const uint8_t *bytes, size_t length, const uint8_t *end )
{
    uint64_t word = 'x' * eachByte;
    if ( std::endian::native != std::endian::little || end - bytes < 8 ) {
        std::memcpy( &word, bytes, length );
        return word;
    }
    uint64_t read;
    std::memcpy( &read, bytes, sizeof read );
    const uint64_t mask = ~uint64_t( 0 ) >> ( 64 - 8 * length );
    return ( read & mask ) | ( word & ~mask );
}

inline bool hasAcePrefix( const uint8_t *bytes, size_t length )
{
    return length >= 4 && ( bytes[0] | 0x20 ) == 'x' && ( bytes[1] | 0x20 ) == 'n' && bytes[2] == '-' &&
           bytes[3] == '-';
}

} // namespace detail

// ASCII, without a full stop, and not the ASCII form of something else: such a label of 1..63 bytes is its own text and
// valid at any place of a name. The end is that of the message; no byte of it or behind it is read.
inline bool isPlainLabel( const uint8_t *bytes, size_t length, const uint8_t *end )
{
    if ( detail::hasAcePrefix( bytes, length ) )
        return false;
    for ( ; length > 8; bytes += 8, length -= 8 ) {
        uint64_t word;
        std::memcpy( &word, bytes, sizeof word );
        if ( detail::hasSpecial( word ) )
            return false;
    }
    return !detail::hasSpecial( detail::loadFirst( bytes, length, end ) );
}

struct Label {
    pb::String text;         // in Unicode
    bool mayBeLast = false;  // in a name
    bool mayPrecede = false; // another label
};

// Any label of 1..63 bytes; nothing when they are not UTF-8 or no label of IDNA. A label may hold separators of labels;
// then it depends on its place whether the name around it is valid.
std::optional<Label> readLabel( const uint8_t *bytes, size_t length );

} // namespace in::dns

#endif
