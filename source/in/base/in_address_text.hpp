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

// The texts that the readers take, as regular expressions (ECMA-262) for editors: an address, and one with "/" and a
// prefix length behind it, or without. Numbers may have any number of leading zeros, which "-0" shows to be numbers.
#define IN___TEXT_OCTET "(?:-0+|0*(?:25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9]))"
#define IN___TEXT_V4 IN___TEXT_OCTET "(?:[.]" IN___TEXT_OCTET "){3}"
#define IN___TEXT_GROUP "(?:-0+|0*[0-9A-Fa-f]{1,4})"
#define IN___TEXT_GROUPS "(?:" IN___TEXT_GROUP "(?::" IN___TEXT_GROUP ")*)?"
#define IN___TEXT_V6                                                                                                   \
    "(?:" IN___TEXT_GROUP "(?::" IN___TEXT_GROUP "){7}|(?:" IN___TEXT_GROUP ":){6}" IN___TEXT_V4                       \
    "|(?!(?:[^:]*:){8})" IN___TEXT_GROUPS "::" IN___TEXT_GROUPS "|(?!(?:[^:]*:){7})" IN___TEXT_GROUPS                  \
    "::(?:" IN___TEXT_GROUP ":)*" IN___TEXT_V4 ")"
inline constexpr const char *addressPattern = "^\\s*(?:" IN___TEXT_V4 "|" IN___TEXT_V6 ")\\s*$";
inline constexpr const char *networkPattern =
    "^\\s*(?:" IN___TEXT_V4 "\\s*(?:/(?:-0*[01]|0*(?:3[0-2]|[12]?[0-9])))?|" IN___TEXT_V6
    "\\s*(?:/(?:-0*[01]|0*(?:12[0-8]|1[01][0-9]|[1-9]?[0-9])))?)$";

inline constexpr char hexDigits[] = "0123456789abcdef";

// Longest results: "255.255.255.255", eight groups of four digits, and brackets around those.
inline constexpr size_t capacity = 48;
inline constexpr pbInt groupCount = 8; // of 16 bits, in an IPv6 address

// Write ASCII to a buffer of that capacity and return the end of what they wrote.
char *writeV4( char *out, const uint8_t *bytes );
char *writeV6( char *out, const uint8_t *bytes );         // the longest run of zero groups as "::"
char *writeV6Expanded( char *out, const uint8_t *bytes ); // eight groups of four digits

} // namespace in::text

#endif
