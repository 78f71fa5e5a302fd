// The options that say how a command's datagrams are marked, and the QoS stack that they choose.
#ifndef INCTL_QOS_CHOICE_HPP
#define INCTL_QOS_CHOICE_HPP

#include "in/qos/in_qos_stack.h"
#include "pb/pb_object.hpp"

#include <string>

namespace CLI {
class App;
}

namespace inctl {

struct QosChoice {
    std::string profile; // "", "none", "ipc", "voice" or "signaling"
    int tos = -1;        // 0..255 over the profile's

    // Null when nothing was chosen. Needs a running Host.
    pb::Ref<struct inQosStack> stack() const;
};

void addQosOptions( CLI::App &command, QosChoice &choice );

// "0xB8 (DSCP 46)": the byte as it stands in the header and the class in its upper six bits (RFC 2474).
std::string tosText( pbInt tos );

} // namespace inctl

#endif
