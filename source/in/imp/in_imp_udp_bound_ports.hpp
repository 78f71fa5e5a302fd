// The UDP ports that this process holds on one local address. In-tree only.
//
// A set of bits per address: with thousands of channels on an address, the cost of a search in a set of endpoints would
// grow with them, in memory that no cache holds. A process has few local addresses.
#ifndef IN_IMP_UDP_BOUND_PORTS_HPP
#define IN_IMP_UDP_BOUND_PORTS_HPP

#include "pb/pb_base.h"

struct inAddress;
struct pbDict;

// On a dictionary whose keys are the addresses.
bool in___ImpUdpBoundPortsHas( const struct pbDict *addresses, const struct inAddress *address, pbInt port );
void in___ImpUdpBoundPortsAdd( struct pbDict **addresses, const struct inAddress *address, pbInt port );
void in___ImpUdpBoundPortsRemove( struct pbDict **addresses, const struct inAddress *address, pbInt port );

#endif
