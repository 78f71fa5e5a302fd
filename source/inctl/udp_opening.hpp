// Opens UDP sockets of the library, and says in a sentence why one does not open.
#ifndef INCTL_UDP_OPENING_HPP
#define INCTL_UDP_OPENING_HPP

#include "in/base/in_stack.h"
#include "in/qos/in_qos_stack.h"
#include "in/udp/in_udp_channel.h"
#include "in/udp/in_udp_multicast_receiver.h"
#include "pb/pb_object.hpp"

#include <string>
#include <utility>

struct inAddress;

namespace inctl {

// All throw Failure. port is IN_UDP_PORT_INVALID where the stack's range or the system shall choose.
pb::Ref<struct inUdpChannel> openChannel( struct inStack *stack, struct inQosStack *optionalQos, pbInt port,
                                          uint64_t flags );
// RTP first.
std::pair<pb::Ref<struct inUdpChannel>, pb::Ref<struct inUdpChannel>> openRtpPair( struct inStack *stack,
                                                                                   struct inQosStack *optionalQos );
pb::Ref<struct inUdpMulticastReceiver> openGroup( const struct inAddress *group, const std::string &interface,
                                                  pbInt port );

} // namespace inctl

#endif
