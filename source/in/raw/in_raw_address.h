// inRawAddress: a raw IP endpoint, an address with an IP protocol number, a value. Orders by address, then by protocol.
// Its text is "10.0.0.1:89" or "[::1]:89".
#ifndef IN_RAW_ADDRESS_H
#define IN_RAW_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inRawAddress;
struct pbString;

#define IN_RAW_PROTOCOL_OK( protocol ) ( (uint64_t)( protocol ) <= 255 )

IN_API const struct pbSort *inRawAddressSort( void );
IN_API struct inRawAddress *inRawAddressRetain( const struct inRawAddress *obj );
IN_API void inRawAddressRelease( const struct inRawAddress *obj );
IN_API struct pbObj *inRawAddressObj( const struct inRawAddress *obj );
IN_API struct inRawAddress *inRawAddressFrom( struct pbObj *obj );
IN_API struct pbString *inRawAddressToString( const struct inRawAddress *obj );
IN_API pbInt inRawAddressCompare( const struct inRawAddress *a, const struct inRawAddress *b );
IN_API pbBool inRawAddressEquals( const struct inRawAddress *a, const struct inRawAddress *b );

// protocol 0..255.
IN_API struct inRawAddress *inRawAddressCreate( const struct inAddress *address, pbInt protocol );
IN_API struct inRawAddress *inRawAddressCreateFrom( const struct inRawAddress *source );

IN_API struct inAddress *inRawAddressAddress( const struct inRawAddress *rawAddress );
IN_API pbInt inRawAddressProtocol( const struct inRawAddress *rawAddress );

PB_DECLS_END

#endif
