// Receiving 172-byte datagrams through a channel, hand-off to another thread included, against bare sockets and libuv.
// The time of a case is the receiving process's processor time per datagram; "rate" is datagrams received per second.
#include "bench_ratio.hpp"
#include "bench_udp.hpp"

#include "pb/pb_alertable.h"
#include "pr/pr_process.h"

#include <sys/epoll.h>
#include <uv.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using bench::datagramSize;
using bench::stopSize;

constexpr bench::Traffic bursts{ 100'000, 128, 1000 };
constexpr bench::Traffic spread{ 100'000, 1, 10 };  // 100,000 a second over many sockets
constexpr bench::Traffic overload{ 1'000'000, 64, 0 };
constexpr int manySockets = 256;

struct Result {
    long received = 0;
};

// Runs a receiver against the traffic: prepare makes the sockets, receive runs until every socket was stopped.
void measure( benchmark::State &state, const std::vector<sockaddr_in> &to, const bench::Traffic &traffic,
              const std::function<long()> &receive )
{
    for ( auto _ : state ) {
        const bench::Sender sender( to, traffic );
        const double cpu = bench::seconds( CLOCK_PROCESS_CPUTIME_ID ), wall = bench::seconds( CLOCK_MONOTONIC );
        sender.go();
        const long received = receive();
        const double cpuUsed = bench::seconds( CLOCK_PROCESS_CPUTIME_ID ) - cpu;
        const double wallUsed = bench::seconds( CLOCK_MONOTONIC ) - wall;
        state.SetIterationTime( cpuUsed / static_cast<double>( received ) );
        state.counters["rate"] = static_cast<double>( received ) / wallUsed;
        state.counters["lost"] = static_cast<double>( traffic.count - received );
    }
}

// One blocking socket, one datagram or a batch of 64 a call.
void recvfromLoop( benchmark::State &state, const bench::Traffic &traffic )
{
    sockaddr_in address;
    const int fd = bench::openSocket( &address );
    measure( state, { address }, traffic, [fd] {
        std::vector<char> buffer( 65536 );
        for ( long received = 0;; ++received ) {
            sockaddr_storage from;
            socklen_t length = sizeof from;
            if ( recvfrom( fd, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>( &from ), &length ) == stopSize )
                return received;
        }
    } );
    close( fd );
}

void recvmmsgLoop( benchmark::State &state, const bench::Traffic &traffic )
{
    sockaddr_in address;
    const int fd = bench::openSocket( &address );
    measure( state, { address }, traffic, [fd] {
        constexpr int width = 64;
        std::vector<char> buffer( width * 65536 );
        sockaddr_storage from[width];
        iovec vectors[width];
        mmsghdr messages[width] = {};
        for ( int i = 0; i < width; ++i ) {
            vectors[i] = { buffer.data() + i * 65536, 65536 };
            messages[i].msg_hdr.msg_iov = &vectors[i];
            messages[i].msg_hdr.msg_iovlen = 1;
            messages[i].msg_hdr.msg_name = &from[i];
        }
        for ( long received = 0;; ) {
            for ( mmsghdr &message : messages )
                message.msg_hdr.msg_namelen = sizeof from[0];
            const int count = recvmmsg( fd, messages, width, MSG_WAITFORONE, nullptr );
            for ( int i = 0; i < count; ++i ) {
                if ( messages[i].msg_len == stopSize )
                    return received;
                ++received;
            }
        }
    } );
    close( fd );
}

void bareEpoll( benchmark::State &state, const bench::Traffic &traffic, int sockets )
{
    std::vector<sockaddr_in> to( static_cast<size_t>( sockets ) );
    std::vector<int> fds;
    const int poller = epoll_create1( EPOLL_CLOEXEC );
    for ( int i = 0; i < sockets; ++i ) {
        fds.push_back( bench::openSocket( &to[static_cast<size_t>( i )] ) );
        fcntl( fds.back(), F_SETFL, O_NONBLOCK );
        epoll_event event{ .events = EPOLLIN, .data = { .fd = fds.back() } };
        epoll_ctl( poller, EPOLL_CTL_ADD, fds.back(), &event );
    }
    measure( state, to, traffic, [&] {
        std::vector<char> buffer( 65536 );
        for ( long received = 0;; ) {
            epoll_event events[64];
            const int count = epoll_wait( poller, events, 64, -1 );
            for ( int i = 0; i < count; ++i ) {
                sockaddr_storage from;
                socklen_t length = sizeof from;
                const ssize_t got = recvfrom( events[i].data.fd, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>( &from ), &length );
                if ( got == stopSize )
                    return received;
                received += got > 0;
            }
        }
    } );
    for ( const int fd : fds )
        close( fd );
    close( poller );
}

// libuv on its own thread, or handing each datagram to another thread through a locked queue.
class Uv {
public:
    Uv( int sockets, unsigned flags, bool handOver ) : flags_( flags ), handOver_( handOver ), to( static_cast<size_t>( sockets ) )
    {
        uv_loop_init( &loop_ );
        handles_ = std::vector<uv_udp_t>( static_cast<size_t>( sockets ) );
        for ( int i = 0; i < sockets; ++i ) {
            uv_udp_t &handle = handles_[static_cast<size_t>( i )];
            uv_udp_init_ex( &loop_, &handle, flags );
            handle.data = this;
            sockaddr_in any;
            uv_ip4_addr( "127.0.0.1", 0, &any );
            uv_udp_bind( &handle, reinterpret_cast<const sockaddr *>( &any ), 0 );
            int length = sizeof any;
            uv_udp_getsockname( &handle, reinterpret_cast<sockaddr *>( &to[static_cast<size_t>( i )] ), &length );
            uv_udp_recv_start( &handle, allocate, received );
        }
    }
    ~Uv()
    {
        for ( uv_udp_t &handle : handles_ )
            uv_close( reinterpret_cast<uv_handle_t *>( &handle ), nullptr );
        uv_run( &loop_, UV_RUN_DEFAULT );
        uv_loop_close( &loop_ );
    }

    long run()
    {
        received_ = 0;
        stopped_ = false;
        queue_.clear();
        std::thread consumer;
        long taken = 0;
        if ( handOver_ )
            consumer = std::thread( [this, &taken] {
                std::unique_lock<std::mutex> lock( mutex_ );
                for ( ;; ) {
                    ready_.wait( lock, [this] { return !queue_.empty() || stopped_; } );
                    if ( queue_.empty() )
                        return;
                    const std::unique_ptr<char[]> datagram = std::move( queue_.front() );
                    queue_.pop_front();
                    lock.unlock();
                    benchmark::DoNotOptimize( datagram.get() );
                    ++taken;
                    lock.lock();
                }
            } );
        uv_run( &loop_, UV_RUN_DEFAULT );
        if ( consumer.joinable() ) {
            {
                const std::lock_guard<std::mutex> lock( mutex_ );
                stopped_ = true;
            }
            ready_.notify_one();
            consumer.join();
            return taken;
        }
        return received_;
    }

private:
    static void allocate( uv_handle_t *handle, size_t, uv_buf_t *buffer )
    {
        Uv &self = *static_cast<Uv *>( handle->data );
        const size_t slots = self.flags_ & UV_UDP_RECVMMSG ? 20 : 1;
        self.buffer_.resize( slots * 65536 );
        *buffer = uv_buf_init( self.buffer_.data(), static_cast<unsigned>( self.buffer_.size() ) );
    }
    static void received( uv_udp_t *handle, ssize_t count, const uv_buf_t *buffer, const sockaddr *from, unsigned )
    {
        Uv &self = *static_cast<Uv *>( handle->data );
        if ( !from || count < 0 )
            return;
        if ( count == stopSize ) {
            uv_stop( &self.loop_ );
            return;
        }
        ++self.received_;
        if ( !self.handOver_ )
            return;
        std::unique_ptr<char[]> copy( new char[static_cast<size_t>( count )] );
        std::copy_n( buffer->base, count, copy.get() );
        {
            const std::lock_guard<std::mutex> lock( self.mutex_ );
            self.queue_.push_back( std::move( copy ) );
        }
        self.ready_.notify_one();
    }

    uv_loop_t loop_;
    std::vector<uv_udp_t> handles_;
    std::vector<char> buffer_;
    unsigned flags_;
    bool handOver_;
    long received_ = 0;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<std::unique_ptr<char[]>> queue_;
    bool stopped_ = false;

public:
    std::vector<sockaddr_in> to;
};

void libuv( benchmark::State &state, const bench::Traffic &traffic, int sockets, unsigned flags, bool handOver )
{
    Uv uv( sockets, AF_INET | flags, handOver );
    measure( state, uv.to, traffic, [&uv] { return uv.run(); } );
}

// A channel drained by a thread that waits on a barrier.
void channel( benchmark::State &state, const bench::Traffic &traffic )
{
    const auto stack = bench::loopbackStack();
    const auto channel = bench::openChannel( stack.get() );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    inUdpChannelReceiveAddAlertable( channel.get(), alertable.get() );
    measure( state, { bench::channelAddress( channel.get() ) }, traffic, [&] {
        for ( long received = 0;; ) {
            pbBarrierPass( barrier.get() );
            pbBarrierBlock( barrier.get() );
            while ( const auto packet = pb::adopt( inUdpChannelReceive( channel.get() ) ) ) {
                if ( inUdpPacketPayloadLength( packet.get() ) == stopSize )
                    return received;
                ++received;
            }
        }
    } );
    inUdpChannelReceiveDelAlertable( channel.get(), alertable.get() );
}

// Many channels, each with a process of its own that drains it, as a server's modules have.
std::atomic<long> drained;
pb::Ref<struct pbBarrier> drainedAll;

void drain( struct pbObj *argument )
{
    struct inUdpChannel *const channel = inUdpChannelFrom( argument );
    long count = 0;
    while ( const auto packet = pb::adopt( inUdpChannelReceive( channel ) ) )
        if ( inUdpPacketPayloadLength( packet.get() ) == stopSize )
            pbBarrierUnblock( drainedAll.get() );
        else
            ++count;
    drained.fetch_add( count, std::memory_order_relaxed );
}

void channels( benchmark::State &state, const bench::Traffic &traffic, int sockets )
{
    const auto stack = bench::loopbackStack();
    std::vector<sockaddr_in> to;
    std::vector<pb::Ref<struct inUdpChannel>> list;
    std::vector<pb::Ref<struct prProcess>> processes;
    std::vector<pb::Ref<struct pbAlertable>> alertables;
    for ( int i = 0; i < sockets; ++i ) {
        list.push_back( bench::openChannel( stack.get() ) );
        to.push_back( bench::channelAddress( list.back().get() ) );
        processes.push_back( pb::adopt( prProcessCreateWithPriorityCstr( 1, drain, inUdpChannelObj( list.back().get() ), "drain", -1 ) ) );
        alertables.push_back( pb::adopt( prProcessCreateAlertable( processes.back().get() ) ) );
        inUdpChannelReceiveAddAlertable( list.back().get(), alertables.back().get() );
    }
    measure( state, to, traffic, [] {
        drained = 0;
        drainedAll = pb::adopt( pbBarrierCreate( 1 ) );
        pbBarrierPass( drainedAll.get() );
        return drained.load();
    } );
    for ( size_t i = 0; i < list.size(); ++i ) {
        inUdpChannelReceiveDelAlertable( list[i].get(), alertables[i].get() );
        prProcessHalt( processes[i].get() );
        prProcessEndWait( processes[i].get() );
    }
}

void add( const char *name, const std::function<void( benchmark::State & )> &body )
{
    benchmark::RegisterBenchmark( name, body )->UseManualTime()->Iterations( 1 )->Unit( benchmark::kNanosecond );
}

} // namespace

int main( int argumentCount, char **arguments )
{
    const bench::Modules modules;

    for ( const auto &[prefix, traffic] : { std::pair{ "burst", bursts }, std::pair{ "overload", overload } } ) {
        const bench::Traffic with = traffic;
        const std::string name = prefix;
        add( ( name + "/recvmmsg64" ).c_str(), [with]( benchmark::State &state ) { recvmmsgLoop( state, with ); } );
        add( ( name + "/recvfrom" ).c_str(), [with]( benchmark::State &state ) { recvfromLoop( state, with ); } );
        add( ( name + "/libuv" ).c_str(), [with]( benchmark::State &state ) { libuv( state, with, 1, 0, false ); } );
        add( ( name + "/libuv_recvmmsg" ).c_str(), [with]( benchmark::State &state ) { libuv( state, with, 1, UV_UDP_RECVMMSG, false ); } );
        add( ( name + "/libuv_handed_over" ).c_str(), [with]( benchmark::State &state ) { libuv( state, with, 1, 0, true ); } );
        add( ( name + "/in" ).c_str(), [with]( benchmark::State &state ) { channel( state, with ); } );
    }
    add( "many/epoll", []( benchmark::State &state ) { bareEpoll( state, spread, manySockets ); } );
    add( "many/libuv", []( benchmark::State &state ) { libuv( state, spread, manySockets, 0, false ); } );
    add( "many/libuv_handed_over", []( benchmark::State &state ) { libuv( state, spread, manySockets, 0, true ); } );
    add( "many/in", []( benchmark::State &state ) { channels( state, spread, manySockets ); } );

    return bench::run( argumentCount, arguments,
                       { { "burst/in", "burst/recvmmsg64", 1.25, "" },
                         { "burst/in", "burst/libuv", 0.8, "" },
                         { "burst/in", "burst/recvfrom", 0, "" },
                         { "burst/in", "burst/libuv_recvmmsg", 0, "" },
                         { "burst/in", "burst/libuv_handed_over", 0, "" },
                         { "overload/in", "overload/recvmmsg64", 0.85, "rate", true },
                         { "overload/in", "overload/libuv", 0, "rate", true },
                         { "many/in", "many/epoll", 1.5, "" },
                         { "many/in", "many/libuv", 0, "" },
                         { "many/in", "many/libuv_handed_over", 0, "" } } );
}
