// inUdpAddress: a UDP endpoint, an address with a port, a value. Orders by address, then by port.
// Its text is "10.0.0.1:5060" or "[::1]:5060".
#ifndef IN_UDP_ADDRESS_H
#define IN_UDP_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inUdpAddress;
struct pbStore;
struct pbString;

#define IN_UDP_PORT_INVALID PB_INT_FROM( -1 ) // no port, where a port is optional
#define IN_UDP_PORT_OK( port ) ( (uint64_t)( port ) - 1 < 65535 )

IN_API const struct pbSort *inUdpAddressSort( void );
IN_API struct inUdpAddress *inUdpAddressRetain( const struct inUdpAddress *obj );
IN_API void inUdpAddressRelease( const struct inUdpAddress *obj );
IN_API struct pbObj *inUdpAddressObj( const struct inUdpAddress *obj );
IN_API struct inUdpAddress *inUdpAddressFrom( struct pbObj *obj );
IN_API struct pbString *inUdpAddressToString( const struct inUdpAddress *obj );
IN_API pbInt inUdpAddressCompare( const struct inUdpAddress *a, const struct inUdpAddress *b );
IN_API pbBool inUdpAddressEquals( const struct inUdpAddress *a, const struct inUdpAddress *b );

// port 1..65535.
IN_API struct inUdpAddress *inUdpAddressCreate( const struct inAddress *address, pbInt port );
IN_API struct inUdpAddress *inUdpAddressCreateFrom( const struct inUdpAddress *source );

IN_API struct inAddress *inUdpAddressAddress( const struct inUdpAddress *udpAddress );
IN_API void inUdpAddressSetAddress( struct inUdpAddress **udpAddress, const struct inAddress *address );
IN_API pbInt inUdpAddressPort( const struct inUdpAddress *udpAddress );
IN_API void inUdpAddressSetPort( struct inUdpAddress **udpAddress, pbInt port );

// Keys "address" and "port".
IN_API struct pbStore *inUdpAddressStore( const struct inUdpAddress *udpAddress );
// Null unless both keys are present and valid.
IN_API struct inUdpAddress *inUdpAddressTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
