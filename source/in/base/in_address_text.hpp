// Reading and writing addresses as text. There are two readers: the quick one takes the usual forms in one pass and
// says nothing about others, the patient one follows the definition word by word. Where the quick one accepts, both
// agree. In-tree only.
#ifndef IN_ADDRESS_TEXT_HPP
#define IN_ADDRESS_TEXT_HPP

#include "pb/pb_string.hpp"

#include <string_view>

namespace in::text {

// The number of bytes read, 4 or 16 in network order; 0 when the text is none of the usual forms, an address or not.
int quick( std::u32string_view text, uint8_t *bytes );
// False leaves the bytes unspecified.
bool patientV4( const struct pbString *text, uint8_t *bytes );
bool patientV6( const struct pbString *text, uint8_t *bytes );

// Longest results: "255.255.255.255", eight groups of four digits, and brackets around those.
inline constexpr size_t capacity = 48;
inline constexpr pbInt groupCount = 8; // of 16 bits, in an IPv6 address

// Write ASCII to a buffer of that capacity and return the end of what they wrote.
char *writeV4( char *out, const uint8_t *bytes );
char *writeV6( char *out, const uint8_t *bytes );         // the longest run of zero groups as "::"
char *writeV6Expanded( char *out, const uint8_t *bytes ); // eight groups of four digits

} // namespace in::text

#endif
