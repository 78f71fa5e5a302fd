// UDP channels as small integers, with port selection: the platform-neutral layer that creates and destroys them.
// What is done with a channel in between is in in_imp_udp_unix_internal.h.
// Threads: any. Creation and destruction are serialised, so that the search for a port or a pair is atomic.
#ifndef IN_IMP_UDP_INTERNAL_H
#define IN_IMP_UDP_INTERNAL_H

#include "in/imp/in_imp_udp_unix_internal.h"

PB_DECLS_BEGIN

struct inUdpPortRange;

void in___ImpUdpStartup( void );
void in___ImpUdpShutdown( void );

// A given port is taken as it is; without one (IN_UDP_PORT_INVALID) a free port of the range, starting at random, or
// without a range one that the system chooses. IN___IMP_UDP_CHANNEL_INVALID when there is none or the system refuses.
pbInt in___ImpUdpChannelTryCreate( const struct inAddress *localAddress, pbInt optionalLocalPort,
                                   const struct inUdpPortRange *optionalPortRange, uint64_t flags,
                                   struct inQosStack *optionalQosStack, const struct pbString *optionalInterface );
// Two channels on neighbouring ports, RTP on the even one. Both IN___IMP_UDP_CHANNEL_INVALID when none was found.
void in___ImpUdpChannelTryCreateRtp( pbInt *rtpChannel, pbInt *rtcpChannel, const struct inAddress *localAddress,
                                     const struct inUdpPortRange *optionalPortRange, uint64_t flags,
                                     struct inQosStack *optionalQosStack );
// Waits until the I/O thread is not inside the channel. The identifier may be given out again at once.
void in___ImpUdpChannelDestroy( pbInt chan );

PB_DECLS_END

#endif
