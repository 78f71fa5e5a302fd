// Creating and destroying a channel while 10, 1,000 and 16,000 others are held, and the memory of an idle channel.
#include "bench_ratio.hpp"
#include "bench_udp.hpp"

#include <sys/epoll.h>
#include <sys/resource.h>

#include <cstring>

namespace {

long residentKilobytes()
{
    std::FILE *status = std::fopen( "/proc/self/status", "re" );
    char line[256];
    long kilobytes = 0;
    while ( status && std::fgets( line, sizeof line, status ) )
        if ( std::sscanf( line, "VmRSS: %ld", &kilobytes ) == 1 )
            break;
    if ( status )
        std::fclose( status );
    return kilobytes;
}

// The process's own memory, not the kernel's for the socket. Before anything else: later ones use what earlier ones freed.
void printIdleMemory()
{
    constexpr long count = 16000;
    const auto stack = bench::loopbackStack();
    std::vector<pb::Ref<struct inUdpChannel>> held;
    held.reserve( count );
    const long before = residentKilobytes();
    for ( long i = 0; i < count; ++i )
        held.push_back( bench::openChannel( stack.get() ) );
    std::printf( "memory of an idle channel: %ld bytes\n", ( residentKilobytes() - before ) * 1024 / count );
}

void createDestroy( benchmark::State &state )
{
    const auto stack = bench::loopbackStack();
    std::vector<pb::Ref<struct inUdpChannel>> held;
    for ( long i = 0; i < state.range( 0 ); ++i )
        held.push_back( bench::openChannel( stack.get() ) );
    for ( auto _ : state )
        benchmark::DoNotOptimize( bench::openChannel( stack.get() ).get() );
}
BENCHMARK( createDestroy )->Arg( 10 )->Arg( 1000 )->Arg( 16000 )->Unit( benchmark::kMicrosecond );

// What the system itself takes for a bound socket while others hold as many ports.
void bareSocket( benchmark::State &state )
{
    sockaddr_in address;
    std::vector<int> held;
    for ( long i = 0; i < state.range( 0 ); ++i )
        held.push_back( bench::openSocket( &address ) );
    for ( auto _ : state )
        close( bench::openSocket( &address ) );
    for ( const int fd : held )
        close( fd );
}
BENCHMARK( bareSocket )->Arg( 10 )->Arg( 1000 )->Arg( 16000 )->Unit( benchmark::kMicrosecond );

// The same with each socket watched by one epoll instance, as those of channels are.
void watchedSocket( benchmark::State &state )
{
    sockaddr_in address;
    std::vector<int> held;
    const int poller = epoll_create1( EPOLL_CLOEXEC );
    const auto open = [&] {
        const int fd = bench::openSocket( &address );
        epoll_event event{ .events = EPOLLIN, .data = { .fd = fd } };
        epoll_ctl( poller, EPOLL_CTL_ADD, fd, &event );
        return fd;
    };
    for ( long i = 0; i < state.range( 0 ); ++i )
        held.push_back( open() );
    for ( auto _ : state ) {
        const int fd = open();
        epoll_ctl( poller, EPOLL_CTL_DEL, fd, nullptr );
        close( fd );
    }
    for ( const int fd : held )
        close( fd );
    close( poller );
}
BENCHMARK( watchedSocket )->Arg( 10 )->Arg( 16000 )->Unit( benchmark::kMicrosecond );

} // namespace

int main( int argumentCount, char **arguments )
{
    rlimit limit{};
    getrlimit( RLIMIT_NOFILE, &limit );
    limit.rlim_cur = limit.rlim_max;
    setrlimit( RLIMIT_NOFILE, &limit );
    const bench::Modules modules;
    printIdleMemory();
    return bench::run( argumentCount, arguments,
                       { { "createDestroy/1000", "createDestroy/10", 1.25, "" },
                         { "createDestroy/16000", "createDestroy/10", 1.25, "" },
                         { "bareSocket/16000", "bareSocket/10", 0, "" },
                         { "watchedSocket/16000", "watchedSocket/10", 0, "" },
                         { "createDestroy/10", "watchedSocket/10", 0, "" },
                         { "createDestroy/16000", "watchedSocket/16000", 0, "" } } );
}
