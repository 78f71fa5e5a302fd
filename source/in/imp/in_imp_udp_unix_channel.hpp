// The record of a UDP channel: its socket, its receive queue, and what callers and the I/O thread share. In-tree only.
#ifndef IN_IMP_UDP_UNIX_CHANNEL_HPP
#define IN_IMP_UDP_UNIX_CHANNEL_HPP

#include "in/imp/in_imp_udp_unix_arena.hpp"
#include "in/imp/in_imp_udp_unix_queue.hpp"
#include "in/imp/in_imp_udp_unix_socket.hpp"
#include "pb/pb_monitor.hpp"

struct pbAlert;
struct pbBarrier;
struct pbSignal;
struct unixFdObserver;

// Tells from the last events whether the next one is worth a batch. Datagrams that trickle in are taken one by one,
// with a batch now and then to notice when they stop trickling.
class in___ImpUdpUnixPace {
public:
    bool oneByOne() const { return quietEvents_ >= trusted; }
    void learn( size_t received )
    {
        quietEvents_ = received > 1 ? 0 : quietEvents_ < trusted + probeInterval - 1 ? quietEvents_ + 1 : trusted - 1;
    }

private:
    static constexpr uint8_t trusted = 4;
    static constexpr uint8_t probeInterval = 8;

    uint8_t quietEvents_ = 0; // in a row, of one datagram each
};

struct in___ImpUdpUnixChannel {
    in___ImpUdpUnixChannel( in___ImpUdpUnixSocket socket, uint64_t flags, bool multicast,
                            struct inQosStack *optionalQosStack, const struct pbString *optionalInterface );

    // Fixed after construction; the descriptor is closed by release.
    const pb::Ref<struct inUdpAddress> localAddress;
    const uint64_t flags;
    const pb::Ref<struct inQosStack> qosStack;
    const pb::Ref<struct pbString> interface;
    const bool multicast;
    const pb::Ref<struct pbBarrier> barrier; // blocked by the I/O thread while it is inside the channel
    const pb::Ref<struct pbSignal> errorSignal;
    const pb::Ref<struct pbAlert> receiveAlert; // set and unset with the monitor held
    pb::Fd descriptor;

    pb::Monitor monitor{ 80 };
    // Guarded by the monitor.
    pbInt observedConditions PB_GUARDED_BY( monitor ) = 0;
    in___ImpUdpUnixQueue queue PB_GUARDED_BY( monitor );
    bool queueFull PB_GUARDED_BY( monitor ) = false; // the descriptor is not watched for readability
    bool alerted PB_GUARDED_BY( monitor ) = false;   // the state of the alert
    in___ImpUdpUnixPace pace PB_GUARDED_BY( monitor );
    pb::Ref<struct inUdpAddress> remote PB_GUARDED_BY( monitor ); // the last source, shared with the packets from it
};

// Brings what is watched in line with the state: nothing after an error, readability unless the queue is full or the
// channel only sends. A channel whose descriptor the observer refuses has failed. Waits while a report is outstanding.
void in___ImpUdpUnixChannelUpdateObserver( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver )
    PB_REQUIRES( channel.monitor );
void in___ImpUdpUnixChannelUpdateAlert( in___ImpUdpUnixChannel &channel ) PB_REQUIRES( channel.monitor );
// Marks the channel as failed.
void in___ImpUdpUnixChannelSetError( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver )
    PB_REQUIRES( channel.monitor );

// What the I/O thread does for an event. The number of datagrams it received.
size_t in___ImpUdpUnixChannelServe( in___ImpUdpUnixChannel &channel, struct unixFdObserver *channelObserver,
                                    pbInt conditions, in___ImpUdpUnixArena &arena ) PB_EXCLUDES( channel.monitor );
// The oldest packet; none after an error.
pb::Ref<struct inUdpPacket> in___ImpUdpUnixChannelTake( in___ImpUdpUnixChannel &channel,
                                                        struct unixFdObserver *channelObserver )
    PB_EXCLUDES( channel.monitor );

#endif
