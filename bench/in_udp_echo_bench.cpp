// Round trips of a 172-byte datagram to an echoing server: bare sockets, libuv, libuv handing over to another thread, and a
// channel served by a waiting thread; both sides on one processor, and on two. The time of a case is the median round
// trip; "p99" is in nanoseconds.
#include "bench_ratio.hpp"
#include "bench_udp.hpp"

#include "pb/pb_alertable.h"

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

constexpr int roundTrips = 20'000;

struct Times {
    double p50, p99;
};

// The client: a child process that sends, waits for the echo, and reports its quantiles.
class Client {
public:
    Client( const sockaddr_in &server, int cpu )
    {
        if ( pipe2( gate_, O_CLOEXEC ) != 0 || pipe2( report_, O_CLOEXEC ) != 0 )
            bench::fail( "pipe" );
        child_ = fork();
        if ( child_ == 0 ) {
            cpu_set_t set;
            CPU_ZERO( &set );
            CPU_SET( cpu, &set );
            sched_setaffinity( 0, sizeof set, &set );
            char go;
            if ( read( gate_[0], &go, 1 ) == 1 )
                exchange( server );
            _exit( 0 );
        }
        close( gate_[0] );
        close( report_[1] );
        if ( write( gate_[1], "g", 1 ) != 1 )
            bench::fail( "write" );
    }
    Times times()
    {
        Times times{};
        if ( read( report_[0], &times, sizeof times ) != sizeof times )
            bench::fail( "client" );
        int status;
        waitpid( child_, &status, 0 );
        close( gate_[1] );
        close( report_[0] );
        return times;
    }

private:
    void exchange( const sockaddr_in &server ) const
    {
        sockaddr_in own;
        const int fd = bench::openSocket( &own );
        const timeval limit{ 1, 0 };
        setsockopt( fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit );
        char bytes[datagramSize] = {};
        std::vector<double> taken;
        for ( int i = 0; i < roundTrips; ++i ) {
            const double start = bench::seconds( CLOCK_MONOTONIC );
            sendto( fd, bytes, sizeof bytes, 0, reinterpret_cast<const sockaddr *>( &server ), sizeof server );
            if ( recv( fd, bytes, sizeof bytes, 0 ) == datagramSize )
                taken.push_back( bench::seconds( CLOCK_MONOTONIC ) - start );
        }
        for ( int i = 0; i < 3; ++i )
            sendto( fd, bytes, stopSize, 0, reinterpret_cast<const sockaddr *>( &server ), sizeof server );
        std::sort( taken.begin(), taken.end() );
        Times times{ 1, 1 };
        if ( taken.size() > roundTrips / 2 )
            times = { taken[taken.size() / 2], taken[taken.size() * 99 / 100] };
        if ( write( report_[1], &times, sizeof times ) != sizeof times )
            _exit( 1 );
    }

    int gate_[2], report_[2];
    pid_t child_;
};

void measure( benchmark::State &state, const sockaddr_in &server, int clientCpu, const std::function<void()> &serve )
{
    for ( auto _ : state ) {
        bench::pinProcess( 0 );
        Client client( server, clientCpu );
        serve();
        const Times times = client.times();
        bench::pinProcess( -1 );
        state.SetIterationTime( times.p50 );
        state.counters["p99"] = times.p99 * 1e9;
    }
}

void bare( benchmark::State &state, int clientCpu )
{
    sockaddr_in address;
    const int fd = bench::openSocket( &address );
    measure( state, address, clientCpu, [fd] {
        std::vector<char> buffer( 65536 );
        for ( ;; ) {
            sockaddr_in from;
            socklen_t length = sizeof from;
            const ssize_t count = recvfrom( fd, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>( &from ), &length );
            if ( count == stopSize )
                return;
            sendto( fd, buffer.data(), static_cast<size_t>( count ), 0, reinterpret_cast<const sockaddr *>( &from ), length );
        }
    } );
    close( fd );
}

class UvEcho {
public:
    explicit UvEcho( bool handOver ) : handOver_( handOver )
    {
        uv_loop_init( &loop_ );
        uv_udp_init( &loop_, &handle_ );
        handle_.data = this;
        sockaddr_in any;
        uv_ip4_addr( "127.0.0.1", 0, &any );
        uv_udp_bind( &handle_, reinterpret_cast<const sockaddr *>( &any ), 0 );
        int length = sizeof address;
        uv_udp_getsockname( &handle_, reinterpret_cast<sockaddr *>( &address ), &length );
        uv_udp_recv_start( &handle_, allocate, received );
        uv_fileno( reinterpret_cast<uv_handle_t *>( &handle_ ), &fd_ );
    }
    ~UvEcho()
    {
        uv_close( reinterpret_cast<uv_handle_t *>( &handle_ ), nullptr );
        uv_run( &loop_, UV_RUN_DEFAULT );
        uv_loop_close( &loop_ );
    }
    void run()
    {
        std::thread consumer;
        if ( handOver_ )
            consumer = std::thread( [this] { consume(); } );
        uv_run( &loop_, UV_RUN_DEFAULT );
        if ( !consumer.joinable() )
            return;
        {
            const std::lock_guard<std::mutex> lock( mutex_ );
            stopped_ = true;
        }
        ready_.notify_one();
        consumer.join();
    }

    sockaddr_in address;

private:
    struct Datagram {
        sockaddr_in from;
        std::vector<char> bytes;
    };

    void consume()
    {
        std::unique_lock<std::mutex> lock( mutex_ );
        for ( ;; ) {
            ready_.wait( lock, [this] { return !queue_.empty() || stopped_; } );
            if ( queue_.empty() )
                return;
            const Datagram datagram = std::move( queue_.front() );
            queue_.pop_front();
            lock.unlock();
            // the consumer answers itself: the loop's own sending is not for other threads
            sendto( fd_, datagram.bytes.data(), datagram.bytes.size(), 0, reinterpret_cast<const sockaddr *>( &datagram.from ), sizeof datagram.from );
            lock.lock();
        }
    }
    static void allocate( uv_handle_t *handle, size_t, uv_buf_t *buffer )
    {
        UvEcho &self = *static_cast<UvEcho *>( handle->data );
        *buffer = uv_buf_init( self.buffer_, sizeof self.buffer_ );
    }
    static void received( uv_udp_t *handle, ssize_t count, const uv_buf_t *buffer, const sockaddr *from, unsigned )
    {
        UvEcho &self = *static_cast<UvEcho *>( handle->data );
        if ( !from || count < 0 )
            return;
        if ( count == stopSize ) {
            uv_stop( &self.loop_ );
            return;
        }
        if ( !self.handOver_ ) {
            const uv_buf_t answer = uv_buf_init( buffer->base, static_cast<unsigned>( count ) );
            uv_udp_try_send( handle, &answer, 1, from );
            return;
        }
        {
            const std::lock_guard<std::mutex> lock( self.mutex_ );
            self.queue_.push_back( { *reinterpret_cast<const sockaddr_in *>( from ), { buffer->base, buffer->base + count } } );
        }
        self.ready_.notify_one();
    }

    uv_loop_t loop_;
    uv_udp_t handle_;
    uv_os_fd_t fd_;
    char buffer_[65536];
    bool handOver_;
    std::mutex mutex_;
    std::condition_variable ready_;
    std::deque<Datagram> queue_;
    bool stopped_ = false;
};

void libuv( benchmark::State &state, int clientCpu, bool handOver )
{
    const auto uv = std::make_unique<UvEcho>( handOver );
    measure( state, uv->address, clientCpu, [&uv] { uv->run(); } );
}

// The least that handing over can cost: one slot, one word that the reader sleeps on, no lock, no allocation.
class HandOver {
public:
    HandOver()
    {
        fd_ = bench::openSocket( &address );
        fcntl( fd_, F_SETFL, O_NONBLOCK );
        poller_ = epoll_create1( EPOLL_CLOEXEC );
        epoll_event event{ .events = EPOLLIN, .data = {} };
        epoll_ctl( poller_, EPOLL_CTL_ADD, fd_, &event );
    }
    ~HandOver()
    {
        close( poller_ );
        close( fd_ );
    }
    void run()
    {
        full_ = 0;
        std::thread reader( [this] {
            for ( ;; ) {
                full_.wait( 0, std::memory_order_acquire );
                if ( count_ == stopSize )
                    return;
                const ssize_t count = count_;
                full_.store( 0, std::memory_order_release ); // one datagram at a time is under way
                sendto( fd_, buffer_, static_cast<size_t>( count ), 0, reinterpret_cast<const sockaddr *>( &from_ ), sizeof from_ );
            }
        } );
        for ( bool stopped = false; !stopped; ) {
            epoll_event event;
            epoll_wait( poller_, &event, 1, -1 );
            socklen_t length = sizeof from_;
            const ssize_t count = recvfrom( fd_, buffer_, sizeof buffer_, 0, reinterpret_cast<sockaddr *>( &from_ ), &length );
            if ( count < 0 )
                continue;
            while ( full_.load( std::memory_order_acquire ) )
                sched_yield();
            count_ = count;
            stopped = count == stopSize;
            full_.store( 1, std::memory_order_release );
            full_.notify_one();
        }
        reader.join();
    }

    sockaddr_in address;

private:
    int fd_, poller_;
    char buffer_[65536];
    sockaddr_in from_;
    ssize_t count_ = 0;
    std::atomic<int> full_{ 0 };
};

void handOver( benchmark::State &state, int clientCpu )
{
    const auto server = std::make_unique<HandOver>();
    measure( state, server->address, clientCpu, [&server] { server->run(); } );
}

void channel( benchmark::State &state, int clientCpu )
{
    const auto stack = bench::loopbackStack();
    const auto channel = bench::openChannel( stack.get() );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    inUdpChannelReceiveAddAlertable( channel.get(), alertable.get() );
    measure( state, bench::channelAddress( channel.get() ), clientCpu, [&] {
        for ( ;; ) {
            pbBarrierPass( barrier.get() );
            pbBarrierBlock( barrier.get() );
            while ( const auto packet = pb::adopt( inUdpChannelReceive( channel.get() ) ) ) {
                if ( inUdpPacketPayloadLength( packet.get() ) == stopSize )
                    return;
                inUdpChannelSend( channel.get(), packet.get() );
            }
        }
    } );
    inUdpChannelReceiveDelAlertable( channel.get(), alertable.get() );
}

void add( const std::string &name, const std::function<void( benchmark::State & )> &body )
{
    benchmark::RegisterBenchmark( name.c_str(), body )->UseManualTime()->Iterations( 1 )->Unit( benchmark::kMicrosecond );
}

} // namespace

int main( int argumentCount, char **arguments )
{
    const bench::Modules modules;
    for ( const int cpu : { 0, 1 } ) {
        const std::string prefix = cpu == 0 ? "one/" : "two/";
        add( prefix + "bare", [cpu]( benchmark::State &state ) { bare( state, cpu ); } );
        add( prefix + "libuv", [cpu]( benchmark::State &state ) { libuv( state, cpu, false ); } );
        add( prefix + "libuv_handed_over", [cpu]( benchmark::State &state ) { libuv( state, cpu, true ); } );
        add( prefix + "handing_over_at_least", [cpu]( benchmark::State &state ) { handOver( state, cpu ); } );
        add( prefix + "in", [cpu]( benchmark::State &state ) { channel( state, cpu ); } );
    }
    return bench::run( argumentCount, arguments,
                       { { "one/in", "one/libuv_handed_over", 0.8, "" },
                         { "one/in", "one/libuv_handed_over", 1.0, "p99" },
                         { "one/in", "one/bare", 0, "" },
                         { "one/in", "one/handing_over_at_least", 0, "" },
                         { "one/handing_over_at_least", "one/libuv_handed_over", 0, "" },
                         { "two/handing_over_at_least", "two/bare", 0, "" },
                         { "two/in", "two/bare", 1.12, "" },
                         { "two/in", "two/libuv_handed_over", 0, "" },
                         { "two/in", "two/libuv_handed_over", 1.0, "p99" } } );
}
