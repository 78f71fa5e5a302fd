// inNwMacAddress: a 6-byte hardware address, a value. Its text is "0a:1b:2c:3d:4e:5f"; it orders by bytes.
#ifndef IN_NW_MAC_ADDRESS_H
#define IN_NW_MAC_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inNwMacAddress;
struct pbBuffer;
struct pbString;

IN_API const struct pbSort *inNwMacAddressSort( void );
IN_API struct inNwMacAddress *inNwMacAddressRetain( const struct inNwMacAddress *obj );
IN_API void inNwMacAddressRelease( const struct inNwMacAddress *obj );
IN_API struct pbObj *inNwMacAddressObj( const struct inNwMacAddress *obj );
IN_API struct inNwMacAddress *inNwMacAddressFrom( struct pbObj *obj );
IN_API struct pbString *inNwMacAddressToString( const struct inNwMacAddress *obj );
IN_API pbInt inNwMacAddressCompare( const struct inNwMacAddress *a, const struct inNwMacAddress *b );
IN_API pbBool inNwMacAddressEquals( const struct inNwMacAddress *a, const struct inNwMacAddress *b );

// All zero.
IN_API struct inNwMacAddress *inNwMacAddressCreate( void );
IN_API struct inNwMacAddress *inNwMacAddressCreateFrom( const struct inNwMacAddress *source );
// 6 bytes.
IN_API struct inNwMacAddress *inNwMacAddressCreateFromBytes( const void *bytes );
// Six hexadecimal numbers 0..ff, all separated by ":" or all by "-".
IN_API struct inNwMacAddress *inNwMacAddressTryCreateFromString( const struct pbString *source );
// Exactly 6 bytes.
IN_API struct inNwMacAddress *inNwMacAddressTryCreateFromBuffer( const struct pbBuffer *buffer );

// Valid until the address is changed or released.
IN_API const uint8_t *inNwMacAddressBacking( const struct inNwMacAddress *mac );
IN_API pbInt inNwMacAddressLength( const struct inNwMacAddress *mac ); // 6
// byteIdx 0..5.
IN_API pbInt inNwMacAddressByteAt( const struct inNwMacAddress *mac, pbInt byteIdx );
// Stores the low eight bits of value.
IN_API void inNwMacAddressSetByteAt( struct inNwMacAddress **mac, pbInt byteIdx, pbInt value );
IN_API struct pbBuffer *inNwMacAddressToBuffer( const struct inNwMacAddress *mac );

PB_DECLS_END

#endif
