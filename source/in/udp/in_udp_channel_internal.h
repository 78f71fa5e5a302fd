// Channels on sockets that exist already.
#ifndef IN_UDP_CHANNEL_INTERNAL_H
#define IN_UDP_CHANNEL_INTERNAL_H

#include "in/udp/in_udp_channel.h"

PB_DECLS_BEGIN

// The channel takes over the identifier of the socket layer and destroys it in the end. Its QoS stack and its flags are
// those that the socket has.
struct inUdpChannel *in___UdpChannelCreate( struct inStack *stack, struct inFilter *optionalFilter,
                                            pbInt intImpUdpChannel, struct trAnchor *optionalAnchor );

PB_DECLS_END

#endif
