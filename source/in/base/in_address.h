// inAddress: an IPv4 or IPv6 address, a value. Orders by version, then by bytes.
// Not every text that ToString writes can be read back: a single zero group at either end becomes "::" beside seven
// groups ("::1:2:3:4:5:6:7"), which the parser refuses.
#ifndef IN_ADDRESS_H
#define IN_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct pbBuffer;
struct pbString;

IN_API const struct pbSort *inAddressSort( void );
IN_API struct inAddress *inAddressRetain( const struct inAddress *obj );
IN_API void inAddressRelease( const struct inAddress *obj );
IN_API struct pbObj *inAddressObj( const struct inAddress *obj );
IN_API struct inAddress *inAddressFrom( struct pbObj *obj );
IN_API struct pbString *inAddressToString( const struct inAddress *obj );
IN_API pbInt inAddressCompare( const struct inAddress *a, const struct inAddress *b );
IN_API pbBool inAddressEquals( const struct inAddress *a, const struct inAddress *b );

// All zero.
IN_API struct inAddress *inAddressCreate( pbInt ver );
IN_API struct inAddress *inAddressCreateFrom( const struct inAddress *ina );
// 4 and 16 bytes in network order.
IN_API struct inAddress *inAddressCreateV4( const void *addr );
IN_API struct inAddress *inAddressCreateV6( const void *addr );
// The IPv4-compatible form "::a.b.c.d", not the mapped one.
IN_API struct inAddress *inAddressCreateV6FromV4( const struct inAddress *ina );

// White space around the text is ignored. IPv4: four decimal numbers 0..255, where leading zeros mean nothing.
// IPv6: at most eight pieces between colons, one "::", the last piece may be IPv4.
IN_API struct inAddress *inAddressTryCreateFromString( const struct pbString *source );
IN_API struct inAddress *inAddressTryCreateV4FromString( const struct pbString *source );
IN_API struct inAddress *inAddressTryCreateV6FromString( const struct pbString *source );
IN_API struct inAddress *inAddressTryCreateFromChars( const pbChar *chars, pbInt count );
// Count -1: NUL-terminated.
IN_API struct inAddress *inAddressTryCreateFromCstr( const char *bytes, pbInt byteCount );
IN_API struct inAddress *inAddressTryCreateFromWcstr( const wchar_t *chars, pbInt count );
// The host part of a URI: IPv4, or IPv6 in brackets.
IN_API struct inAddress *inAddressTryCreateFromHost( const struct pbString *source );
// 4 or 16 bytes; any other length gives null.
IN_API struct inAddress *inAddressTryCreateFromBuffer( const struct pbBuffer *buffer );

IN_API pbInt inAddressVersion( const struct inAddress *ina );
IN_API pbBool inAddressIsV4( const struct inAddress *ina );
IN_API pbBool inAddressIsV6( const struct inAddress *ina );
// 4 or 16.
IN_API pbInt inAddressLength( const struct inAddress *ina );
// Length bytes in network order, valid until the address is changed or released.
IN_API const uint8_t *inAddressBacking( const struct inAddress *ina );
IN_API pbInt inAddressByteAt( const struct inAddress *ina, pbInt byteIdx );
// Stores the low eight bits of value.
IN_API void inAddressSetByteAt( struct inAddress **ina, pbInt byteIdx, pbInt value );
IN_API struct pbBuffer *inAddressToBuffer( const struct inAddress *ina );

// Lower-case hexadecimal; the longest run of zero groups, even one alone, becomes "::". What ToString gives.
IN_API struct pbString *inAddressToStringShrink( const struct inAddress *ina );
// IPv6 in eight groups of four digits.
IN_API struct pbString *inAddressToStringExpand( const struct inAddress *ina );
// For "host:port" and URIs: IPv6 in brackets.
IN_API struct pbString *inAddressToHost( const struct inAddress *ina );

IN_API pbBool inAddressIsAllZero( const struct inAddress *ina );
IN_API pbBool inAddressIsAllOne( const struct inAddress *ina );
// 127.0.0.0/8, ::1
IN_API pbBool inAddressIsLoopback( const struct inAddress *ina );
// 10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16 (RFC 1918), fc00::/7 (RFC 4193)
IN_API pbBool inAddressIsPrivate( const struct inAddress *ina );
// 224.0.0.0/4, ff00::/8
IN_API pbBool inAddressIsMulticast( const struct inAddress *ina );
// 169.254.0.0/16 (RFC 3927), fe80::/10
IN_API pbBool inAddressIsLinkLocalUnicast( const struct inAddress *ina );
// 192.0.2.0/24, 198.51.100.0/24, 203.0.113.0/24 (RFC 5737), 2001:db8::/32 (RFC 3849)
IN_API pbBool inAddressIsDocumentation( const struct inAddress *ina );
// Neither all-zero, multicast, link-local nor loopback; so private addresses and 255.255.255.255 are global unicast.
IN_API pbBool inAddressIsGlobalUnicast( const struct inAddress *ina );
// Global unicast, link-local unicast or loopback.
IN_API pbBool inAddressIsUnicast( const struct inAddress *ina );

// Number of leading bits that agree; 0 for different versions.
IN_API pbInt inAddressMatchingBits( const struct inAddress *inaA, const struct inAddress *inaB );

PB_DECLS_END

#endif
