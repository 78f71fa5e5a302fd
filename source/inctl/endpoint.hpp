// Addresses and endpoints as people write them on a command line.
#ifndef INCTL_ENDPOINT_HPP
#define INCTL_ENDPOINT_HPP

#include "in/base/in_address.h"
#include "in/udp/in_udp_address.h"
#include "pb/pb_object.hpp"

#include <string>

namespace inctl {

// An IP address; option names where it was written. Throws Failure (usage).
pb::Ref<struct inAddress> parseAddress( const std::string &option, const std::string &text );

// "HOST:PORT" or "[IPv6]:PORT"; a host that is no address is looked up by the system. Throws Failure.
pb::Ref<struct inUdpAddress> parseEndpoint( const std::string &text );

// "FIRST-LAST", ports 1..65535 in ascending order. Throws Failure (usage).
struct PortSpan {
    pbInt first = 0;
    pbInt count = 0;
};
PortSpan parsePorts( const std::string &option, const std::string &text );

std::string text( const pb::Ref<struct inUdpAddress> &address );
std::string text( const pb::Ref<struct inAddress> &address );

} // namespace inctl

#endif
