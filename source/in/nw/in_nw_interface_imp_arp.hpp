// Announcing an IPv4 address to the link of an interface: gratuitous ARP (RFC 5227, section 3). In-tree only.
#ifndef IN_NW_INTERFACE_IMP_ARP_HPP
#define IN_NW_INTERFACE_IMP_ARP_HPP

#include "in/nw/in_nw_interface_imp_linux.hpp"

#include <array>

struct inAddress;
struct inNwMacAddress;

namespace in {

// An Ethernet frame (RFC 826) that asks who has the address and says that the MAC address has it.
std::array<uint8_t, 42> gratuitousArpFrame( const struct inNwMacAddress *mac, const struct inAddress *address );

} // namespace in

// Sends the frame three times, some milliseconds apart. What keeps it from doing so is traced and nothing else: the
// address is there also when nobody was told.
void in___NwInterfaceImpTrySendGratuitousArp( struct in___NwInterfaceImp *imp, const struct inAddress *inAddress )
    PB_REQUIRES( imp->monitor );

#endif
