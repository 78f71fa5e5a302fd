// Changing an inUdpAddress on the receive path.
#ifndef IN_UDP_ADDRESS_INTERNAL_H
#define IN_UDP_ADDRESS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inAddress;
struct inUdpAddress;

// Gives *udpAddress this address and port: nothing happens when it has them, in place when it is held once, else as a
// copy.
void in___UdpAddressUpdate( struct inUdpAddress **udpAddress, const struct inAddress *address, pbInt port );
// Borrowed; valid while the UDP address is neither changed nor released.
const struct inAddress *in___UdpAddressAddressBorrowed( const struct inUdpAddress *udpAddress );

PB_DECLS_END

#endif
