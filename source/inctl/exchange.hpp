// Sends datagrams from one channel to another and back, one at a time, and measures what happens to them.
#ifndef INCTL_EXCHANGE_HPP
#define INCTL_EXCHANGE_HPP

#include "inctl/waiter.hpp"

#include "in/udp/in_udp_channel.h"

namespace inctl {

struct Exchange {
    pbInt sent = 0;
    pbInt returned = 0;
    double seconds = 0;
    double median = 0, percentile99 = 0, maximum = 0; // microseconds there and back

    pbInt lost() const { return sent - returned; }
    // Datagrams of both directions.
    double perSecond() const { return seconds > 0 ? 2 * static_cast<double>( returned ) / seconds : 0; }
};

// byteCount >= 8. A thread of its own answers behind far. Ends early when nothing comes back any more or a person stops
// it.
Exchange exchange( struct inUdpChannel *near, struct inUdpChannel *far, pbInt count, pbInt byteCount, Waiter &waiter );

} // namespace inctl

#endif
