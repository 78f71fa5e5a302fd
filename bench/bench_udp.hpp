// What the UDP benchmarks share: plain sockets on loopback, the sending process, processor pinning, the modules.
#ifndef BENCH_UDP_HPP
#define BENCH_UDP_HPP

#include "cs/cs_module.h"
#include "in/in.h"
#include "iri/iri_module.h"
#include "pb/pb_barrier.h"
#include "pb/pb_module.h"
#include "pb/pb_object.hpp"
#include "pr/pr_module.h"
#include "rfc/rfc_module.h"
#include "tr/tr_module.h"
#include "unix/unix_module.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <vector>

namespace bench {

constexpr int datagramSize = 172; // 20 ms of G.711 in RTP
constexpr int stopSize = 1;       // a datagram of this size ends a receiver

[[noreturn]] inline void fail( const char *what )
{
    std::perror( what );
    std::exit( 1 );
}

inline double seconds( clockid_t clock )
{
    timespec time;
    clock_gettime( clock, &time );
    return static_cast<double>( time.tv_sec ) + static_cast<double>( time.tv_nsec ) / 1e9;
}

// All threads of the process.
inline void pinProcess( int cpu )
{
    cpu_set_t set;
    CPU_ZERO( &set );
    if ( cpu < 0 )
        for ( int i = 0; i < CPU_SETSIZE; ++i )
            CPU_SET( i, &set );
    else
        CPU_SET( cpu, &set );
    DIR *tasks = opendir( "/proc/self/task" );
    while ( const dirent *task = readdir( tasks ) )
        if ( task->d_name[0] != '.' )
            sched_setaffinity( std::atoi( task->d_name ), sizeof set, &set );
    closedir( tasks );
}

inline int openSocket( sockaddr_in *bound )
{
    const int fd = socket( AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0 );
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl( INADDR_LOOPBACK );
    if ( fd < 0 || bind( fd, reinterpret_cast<sockaddr *>( &address ), sizeof address ) != 0 )
        fail( "socket" );
    socklen_t length = sizeof *bound;
    getsockname( fd, reinterpret_cast<sockaddr *>( bound ), &length );
    return fd;
}

// How a sending process behaves: `burst` datagrams at once, then a pause; 0 us means none.
struct Traffic {
    long count;
    long burst;
    long pauseMicroseconds;
};

// A child process that sends to the addresses in turn and then stops every receiver.
class Sender {
public:
    Sender( const std::vector<sockaddr_in> &to, const Traffic &traffic )
    {
        if ( pipe2( gate_, O_CLOEXEC ) != 0 )
            fail( "pipe" );
        child_ = fork();
        if ( child_ == 0 ) {
            char go;
            close( gate_[1] );
            if ( read( gate_[0], &go, 1 ) == 1 )
                send( to, traffic );
            _exit( 0 );
        }
        close( gate_[0] );
    }
    ~Sender()
    {
        close( gate_[1] );
        int status;
        waitpid( child_, &status, 0 );
    }
    void go() const
    {
        if ( write( gate_[1], "g", 1 ) != 1 )
            fail( "write" );
    }

private:
    static void send( const std::vector<sockaddr_in> &to, const Traffic &traffic )
    {
        cpu_set_t set;
        CPU_ZERO( &set );
        CPU_SET( 1, &set );
        sched_setaffinity( 0, sizeof set, &set );
        const int fd = socket( AF_INET, SOCK_DGRAM, 0 );
        char bytes[datagramSize] = {};
        iovec vector{ bytes, sizeof bytes };
        std::vector<mmsghdr> messages( static_cast<size_t>( traffic.burst ) );
        double next = seconds( CLOCK_MONOTONIC );
        size_t target = 0;
        for ( long sent = 0; sent < traffic.count; ) {
            for ( mmsghdr &message : messages ) {
                message.msg_hdr = {};
                message.msg_hdr.msg_name = const_cast<sockaddr_in *>( &to[target] );
                message.msg_hdr.msg_namelen = sizeof( sockaddr_in );
                message.msg_hdr.msg_iov = &vector;
                message.msg_hdr.msg_iovlen = 1;
                target = ( target + 1 ) % to.size();
            }
            const int done = sendmmsg( fd, messages.data(), static_cast<unsigned>( messages.size() ), 0 );
            sent += done > 0 ? done : 0;
            if ( traffic.pauseMicroseconds == 0 )
                continue;
            // Short pauses are spun, so that the pace is even; long ones leave the processor to the receiver.
            next += static_cast<double>( traffic.pauseMicroseconds ) / 1e6;
            if ( traffic.pauseMicroseconds >= 200 ) {
                const double pause = next - seconds( CLOCK_MONOTONIC );
                if ( pause > 0 )
                    usleep( static_cast<useconds_t>( pause * 1e6 ) );
            } else
                while ( seconds( CLOCK_MONOTONIC ) < next ) {
                }
        }
        for ( int i = 0; i < 20; ++i ) {
            usleep( 2000 );
            for ( const sockaddr_in &address : to )
                sendto( fd, bytes, stopSize, 0, reinterpret_cast<const sockaddr *>( &address ), sizeof address );
        }
    }

    int gate_[2];
    pid_t child_;
};

// The modules of the process, started for its whole life.
class Modules {
public:
    Modules()
    {
        const struct pbModule *modules[] = { pbModuleDescriptor(), trModule(), prModule(),  unixModule(),
                                             rfcModule(),          iriModule(), csModule(), inModule() };
        host_ = pb::adopt( pbHostTryStart( modules, PB_SIZEOF_ARRAY( modules ), nullptr ) );
        if ( !host_ )
            fail( "modules" );
    }
    ~Modules() { pbHostShutdown( host_.get() ); }

private:
    pb::Ref<struct pbHost> host_;
};

inline pb::Ref<struct inStack> loopbackStack()
{
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddressVersion( options.address(), IN_ADDRESS_VERSION_4 );
    return pb::adopt( inStackCreate( options.get(), nullptr ) );
}

inline pb::Ref<struct inUdpChannel> openChannel( struct inStack *stack )
{
    auto channel = pb::adopt( inUdpChannelTryCreate( stack, nullptr, nullptr, nullptr, IN_UDP_PORT_INVALID, 0, nullptr ) );
    if ( !channel )
        fail( "channel" );
    return channel;
}

inline sockaddr_in channelAddress( struct inUdpChannel *channel )
{
    auto local = pb::adopt( inUdpChannelLocalAddress( channel ) );
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons( static_cast<uint16_t>( inUdpAddressPort( local.get() ) ) );
    address.sin_addr.s_addr = htonl( INADDR_LOOPBACK );
    return address;
}

} // namespace bench

#endif
