// Reads back how the datagrams of a channel are marked, from outside the library: from the socket itself and from a
// datagram that arrives.
#ifndef INCTL_MARKING_HPP
#define INCTL_MARKING_HPP

#include "in/udp/in_udp_channel.h"

#include <optional>

namespace inctl {

struct Marking {
    std::optional<int> socketTos;      // IP_TOS or IPV6_TCLASS of the channel's socket
    std::optional<int> socketPriority; // SO_PRIORITY
    std::optional<int> receivedTos;    // in the header of a datagram that the channel sent to this host
};

// Fields stay absent where the system does not tell.
Marking readMarking( struct inUdpChannel *channel );

} // namespace inctl

#endif
