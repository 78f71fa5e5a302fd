// Sends datagrams from one channel to another and back, one at a time, and measures what happens to them.
#include "inctl/exchange.hpp"

#include "inctl/signals_blocked.hpp"

#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_packet.h"
#include "pb/pb_barrier.h"
#include "pb/pb_buffer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace inctl {
namespace {

constexpr pbInt patience = 250;      // milliseconds until a datagram counts as lost
constexpr int lostInSuccession = 20; // after which the rest is not tried

// Waits for a channel's packets. One thread passes; anyone opens.
class Gate {
public:
    explicit Gate( struct inUdpChannel *channel )
        : channel_( channel ), barrier_( pb::adopt( pbBarrierCreate( 1 ) ) ),
          alertable_( pb::adopt( pbAlertableCreateBarrier( barrier_.get() ) ) )
    {
        inUdpChannelReceiveAddAlertable( channel, alertable_.get() );
    }
    ~Gate() { inUdpChannelReceiveDelAlertable( channel_, alertable_.get() ); }
    Gate( const Gate & ) = delete;
    Gate &operator=( const Gate & ) = delete;

    // Closes behind the passer, who looks for packets afterwards: what came in between is then found without a wait.
    bool pass( pbInt milliseconds )
    {
        if ( !pbBarrierPassTimed( barrier_.get(), milliseconds ) )
            return false;
        pbBarrierBlock( barrier_.get() );
        return true;
    }
    void open() { pbBarrierUnblock( barrier_.get() ); }

private:
    struct inUdpChannel *const channel_;
    const pb::Ref<struct pbBarrier> barrier_;
    const pb::Ref<struct pbAlertable> alertable_;
};

// Sends everything back that reaches the channel.
class Echo {
public:
    explicit Echo( struct inUdpChannel *channel ) : channel_( channel ), gate_( channel ), thread_( start() ) {}
    ~Echo()
    {
        stop_ = true;
        gate_.open();
        thread_.join();
    }

private:
    std::thread start()
    {
        const SignalsBlocked blocked;
        return std::thread( [this] { run(); } );
    }
    void run()
    {
        while ( !stop_ ) {
            while ( const auto packet = pb::adopt( inUdpChannelReceive( channel_ ) ) )
                inUdpChannelSend( channel_, packet.get() );
            gate_.pass( patience );
        }
    }

    struct inUdpChannel *const channel_;
    Gate gate_;
    std::atomic<bool> stop_ = false;
    std::thread thread_; // last: it uses the others
};

// True when the answer of that number came in time.
bool awaitNumber( struct inUdpChannel *channel, Gate &gate, uint64_t number )
{
    const auto deadline = Waiter::Clock::now() + std::chrono::milliseconds( patience );
    for ( ;; ) {
        while ( const auto packet = pb::adopt( inUdpChannelReceive( channel ) ) ) {
            const auto payload = pb::adopt( inUdpPacketPayload( packet.get() ) );
            uint64_t answered = 0;
            if ( pbBufferLength( payload.get() ) >= PB_INT_FROM( sizeof answered ) )
                std::memcpy( &answered, pbBufferBacking( payload.get() ), sizeof answered );
            if ( answered == number )
                return true; // others were given up before
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>( deadline - Waiter::Clock::now() ).count();
        if ( left <= 0 || inUdpChannelError( channel ) )
            return false;
        gate.pass( left );
    }
}

double atShare( const std::vector<double> &sorted, double share )
{
    return sorted.empty() ? 0 : sorted[static_cast<size_t>( share * static_cast<double>( sorted.size() - 1 ) )];
}

} // namespace

Exchange exchange( struct inUdpChannel *near, struct inUdpChannel *far, pbInt count, pbInt byteCount, Waiter &waiter )
{
    const auto farAddress = pb::adopt( inUdpChannelLocalAddress( far ) );
    std::vector<uint8_t> bytes( static_cast<size_t>( byteCount ), 0x55 );
    std::vector<double> trips;
    trips.reserve( static_cast<size_t>( count ) );
    Exchange result;
    const Echo echo( far );
    Gate gate( near );
    const auto start = Waiter::Clock::now();
    for ( int missing = 0; result.sent < count && missing < lostInSuccession; ) {
        if ( result.sent % 256 == 0 && waiter.look( {} ) == Waiter::Woken::Stop )
            break;
        const uint64_t number = static_cast<uint64_t>( ++result.sent );
        std::memcpy( bytes.data(), &number, sizeof number );
        const auto sentAt = Waiter::Clock::now();
        inUdpChannelSendBytes( near, farAddress.get(), bytes.data(), byteCount );
        if ( awaitNumber( near, gate, number ) ) {
            trips.push_back( std::chrono::duration<double, std::micro>( Waiter::Clock::now() - sentAt ).count() );
            missing = 0;
        }
        else
            ++missing;
    }
    result.seconds = std::chrono::duration<double>( Waiter::Clock::now() - start ).count();
    result.returned = static_cast<pbInt>( trips.size() );
    std::sort( trips.begin(), trips.end() );
    result.median = atShare( trips, 0.5 );
    result.percentile99 = atShare( trips, 0.99 );
    result.maximum = atShare( trips, 1 );
    return result;
}

} // namespace inctl
