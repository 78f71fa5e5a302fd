// Changing an inTcpAddress on the receive path.
#ifndef IN_TCP_ADDRESS_INTERNAL_H
#define IN_TCP_ADDRESS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inAddress;
struct inTcpAddress;

// Gives *tcpAddress this address and port: nothing happens when it has them, in place when it is held once, else as a
// copy.
void in___TcpAddressUpdate( struct inTcpAddress **tcpAddress, const struct inAddress *address, pbInt port );
// Borrowed; valid while the TCP address is neither changed nor released.
const struct inAddress *in___TcpAddressAddressBorrowed( const struct inTcpAddress *tcpAddress );

PB_DECLS_END

#endif
