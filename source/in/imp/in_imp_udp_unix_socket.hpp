// Opening of UDP sockets: marked, bound, joined to their group. In-tree only.
#ifndef IN_IMP_UDP_UNIX_SOCKET_HPP
#define IN_IMP_UDP_UNIX_SOCKET_HPP

#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"

#include <optional>

struct inAddress;
struct inQosStack;
struct inUdpAddress;
struct pbString;

struct in___ImpUdpUnixSocket {
    pb::Fd descriptor;                      // non-blocking, close-on-exec
    pb::Ref<struct inUdpAddress> localAddress; // as bound
};

// Nothing is left behind on failure. A multicast address needs a port; an interface that does not exist counts as none.
std::optional<in___ImpUdpUnixSocket> in___ImpUdpUnixSocketTryOpen( const struct inAddress *localAddress,
                                                                   pbInt optionalLocalPort, uint64_t flags,
                                                                   const struct inQosStack *optionalQosStack,
                                                                   const struct pbString *optionalInterface );

#endif
