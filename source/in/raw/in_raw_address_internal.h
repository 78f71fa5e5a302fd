// Changing an inRawAddress on the receive path.
#ifndef IN_RAW_ADDRESS_INTERNAL_H
#define IN_RAW_ADDRESS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

struct inAddress;
struct inRawAddress;

// Gives *rawAddress this address and protocol: nothing happens when it has them, in place when it is held once, else as
// a copy.
void in___RawAddressUpdate( struct inRawAddress **rawAddress, const struct inAddress *address, pbInt protocol );
// Borrowed; valid while the raw address is neither changed nor released.
const struct inAddress *in___RawAddressAddressBorrowed( const struct inRawAddress *rawAddress );

PB_DECLS_END

#endif
