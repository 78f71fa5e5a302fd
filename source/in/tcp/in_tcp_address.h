// inTcpAddress: a TCP endpoint, an address with a port, a value. Orders by address, then by port.
// Its text is "10.0.0.1:5060" or "[::1]:5060".
#ifndef IN_TCP_ADDRESS_H
#define IN_TCP_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inTcpAddress;
struct pbStore;
struct pbString;

#define IN_TCP_PORT_INVALID PB_INT_FROM( -1 ) // no port, where a port is optional
#define IN_TCP_PORT_ANY PB_INT_FROM( 0 )      // any port, where a function says so
#define IN_TCP_PORT_OK( port ) ( (uint64_t)( port ) - 1 < 65535 )

IN_API const struct pbSort *inTcpAddressSort( void );
IN_API struct inTcpAddress *inTcpAddressRetain( const struct inTcpAddress *obj );
IN_API void inTcpAddressRelease( const struct inTcpAddress *obj );
IN_API struct pbObj *inTcpAddressObj( const struct inTcpAddress *obj );
IN_API struct inTcpAddress *inTcpAddressFrom( struct pbObj *obj );
IN_API struct pbString *inTcpAddressToString( const struct inTcpAddress *obj );
IN_API pbInt inTcpAddressCompare( const struct inTcpAddress *a, const struct inTcpAddress *b );
IN_API pbBool inTcpAddressEquals( const struct inTcpAddress *a, const struct inTcpAddress *b );

// port 1..65535.
IN_API struct inTcpAddress *inTcpAddressCreate( const struct inAddress *address, pbInt port );
IN_API struct inTcpAddress *inTcpAddressCreateFrom( const struct inTcpAddress *source );

IN_API struct inAddress *inTcpAddressAddress( const struct inTcpAddress *tcpAddress );
IN_API void inTcpAddressSetAddress( struct inTcpAddress **tcpAddress, const struct inAddress *address );
IN_API pbInt inTcpAddressPort( const struct inTcpAddress *tcpAddress );
IN_API void inTcpAddressSetPort( struct inTcpAddress **tcpAddress, pbInt port );

// Keys "address" and "port".
IN_API struct pbStore *inTcpAddressStore( const struct inTcpAddress *tcpAddress );
// Null unless both keys are present and valid.
IN_API struct inTcpAddress *inTcpAddressTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
