// Ear: one socket that is listened to, a channel or a multicast receiver.
#ifndef INCTL_EAR_HPP
#define INCTL_EAR_HPP

#include "inctl/waiter.hpp"

#include "in/udp/in_udp_channel.h"
#include "in/udp/in_udp_multicast_receiver.h"
#include "in/udp/in_udp_packet.h"

#include <memory>

namespace inctl {

class Ear {
public:
    virtual ~Ear() = default;
    // Null when nothing waits.
    virtual pb::Ref<struct inUdpPacket> receive() = 0;
    virtual bool failed() const = 0;
    virtual pb::Ref<struct inUdpAddress> local() const = 0;
    // Back to where the packet came from; nothing for a group, which has no one way back.
    virtual void send( const struct inUdpPacket *packet ) = 0;
};

// Datagrams and failures of the socket wake the waiter, which outlives the ear.
std::unique_ptr<Ear> makeEar( pb::Ref<struct inUdpChannel> channel, const Waiter &waiter );
std::unique_ptr<Ear> makeEar( pb::Ref<struct inUdpMulticastReceiver> receiver, const Waiter &waiter );

} // namespace inctl

#endif
