// Requests of rtnetlink(7) that add an address to an interface or delete one, and the kernel's answer. In-tree only.
#ifndef IN_NW_INTERFACE_IMP_RTNETLINK_HPP
#define IN_NW_INTERFACE_IMP_RTNETLINK_HPP

#include "in/nw/in_nw_interface_imp_linux.hpp"

#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <optional>
#include <sys/socket.h>

struct inAddress;

namespace in {

// As linux/netlink.h and linux/if_addr.h lay it out, with room for attributes.
struct RtnetlinkAddressMessage {
    nlmsghdr header; // nlmsg_len says how much of it is there
    ifaddrmsg address;
    uint8_t attributes[256];
};
static_assert( sizeof( RtnetlinkAddressMessage ) == 280 );

// The system calls of a request, so that tests can answer in the kernel's place.
struct RtnetlinkCalls {
    int ( *socket )( int domain, int type, int protocol ) = ::socket;
    int ( *bind )( int fd, const sockaddr *address, socklen_t length ) = ::bind;
    ssize_t ( *sendmsg )( int fd, const msghdr *message, int flags ) = ::sendmsg;
    ssize_t ( *recvmsg )( int fd, msghdr *message, int flags ) = ::recvmsg;
    // The kernel answers within the call that sends; an answer that was lost must not keep the interface's monitor.
    pbInt answerMilliseconds = 3000;
};

// Of the messages in a datagram: the error number in the first NLMSG_ERROR, 0 for success; nothing when there is none.
std::optional<int> rtnetlinkAnswer( const uint8_t *bytes, size_t length );

} // namespace in

// The message without attributes. messageType RTM_NEWADDR or RTM_DELADDR.
in::RtnetlinkAddressMessage in___NwInterfaceImpRtnetlinkMessage( const struct inAddress *address, pbInt prefixLength,
                                                                 unsigned interfaceIndex, int messageType,
                                                                 int extraFlags );
// False, and the message as it was, when the attribute has no room.
bool in___NwInterfaceImpRtnetlinkTryAddAttribute( in::RtnetlinkAddressMessage &message, int type, const void *bytes,
                                                  size_t length );
// Sends the message, which asks for an acknowledgement, to the kernel and waits for its answer. Nothing on success;
// otherwise the error number that says why, be it from a call or in the answer.
std::optional<int> in___NwInterfaceImpRtnetlinkTalk( struct trStream *trace, const in::RtnetlinkAddressMessage &message,
                                                     const in::RtnetlinkCalls &calls = {} );
// All of it for one address of the interface. Result as above.
std::optional<int> in___NwInterfaceImpRtnetlinkTryModifyAddress( struct in___NwInterfaceImp *imp,
                                                                 const struct inAddress *addr, pbInt prefixLength,
                                                                 int messageType, int extraFlags )
    PB_REQUIRES( imp->monitor );

#endif
