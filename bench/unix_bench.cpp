// The descriptor observer: one round of wait and unblock beside bare epoll, with one descriptor ready and with many.
#include "bench_ratio.hpp"
#include "pb/pb_fd.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "unix/unix_fd_observer.h"

#include <array>
#include <sys/epoll.h>
#include <sys/eventfd.h>

namespace {

// Descriptors that are readable for as long as they live.
std::vector<pb::Fd> readyDescriptors( int64_t count )
{
    std::vector<pb::Fd> descriptors;
    for ( int64_t i = 0; i < count; ++i )
        descriptors.emplace_back( eventfd( 1, EFD_CLOEXEC ) );
    return descriptors;
}

void ObserverRound( benchmark::State &state )
{
    const std::vector<pb::Fd> descriptors = readyDescriptors( state.range( 0 ) );
    const auto observer = pb::adopt( unixFdObserverTryCreate() );
    const auto abort = pb::adopt( pbSignalCreate() );
    for ( const pb::Fd &descriptor : descriptors )
        unixFdObserverTrySetConditions( observer.get(), descriptor.get(), UNIX_FD_CONDITION_READABLE );
    pbInt fd, conditions;
    for ( auto _ : state ) {
        benchmark::DoNotOptimize( unixFdObserverWait( observer.get(), abort.get(), &fd, &conditions ) );
        unixFdObserverUnblock( observer.get() );
    }
}
BENCHMARK( ObserverRound )->Arg( 1 )->Arg( 256 );

// One event a call, and a batch whose events count one by one.
void EpollRound( benchmark::State &state )
{
    const std::vector<pb::Fd> descriptors = readyDescriptors( state.range( 0 ) );
    const pb::Fd epoll( epoll_create1( EPOLL_CLOEXEC ) );
    for ( const pb::Fd &descriptor : descriptors ) {
        epoll_event event{ .events = EPOLLIN, .data = { .fd = descriptor.get() } };
        epoll_ctl( epoll.get(), EPOLL_CTL_ADD, descriptor.get(), &event );
    }
    std::array<epoll_event, 64> batch;
    int next = 0, count = 0;
    for ( auto _ : state ) {
        if ( next == count ) {
            count = epoll_wait( epoll.get(), batch.data(), static_cast<int>( batch.size() ), -1 );
            next = 0;
        }
        benchmark::DoNotOptimize( batch[next++] );
    }
}
BENCHMARK( EpollRound )->Arg( 1 )->Arg( 256 );

void ObserverSetConditions( benchmark::State &state )
{
    const pb::Fd descriptor( eventfd( 1, EFD_CLOEXEC ) );
    const auto observer = pb::adopt( unixFdObserverTryCreate() );
    pbInt conditions = UNIX_FD_CONDITION_READABLE;
    for ( auto _ : state )
        unixFdObserverTrySetConditions( observer.get(), descriptor.get(), conditions ^= UNIX_FD_CONDITION_ERROR );
}
BENCHMARK( ObserverSetConditions );

void EpollModify( benchmark::State &state )
{
    const pb::Fd descriptor( eventfd( 1, EFD_CLOEXEC ) ), epoll( epoll_create1( EPOLL_CLOEXEC ) );
    epoll_event event{ .events = EPOLLIN, .data = { .fd = descriptor.get() } };
    epoll_ctl( epoll.get(), EPOLL_CTL_ADD, descriptor.get(), &event );
    for ( auto _ : state ) {
        event.events ^= EPOLLERR;
        epoll_ctl( epoll.get(), EPOLL_CTL_MOD, descriptor.get(), &event );
    }
}
BENCHMARK( EpollModify );

} // namespace

int main( int argumentCount, char **arguments )
{
    return bench::run( argumentCount, arguments,
                       {
                           { .subject = "ObserverRound/1", .peer = "EpollRound/1", .goal = 0, .counter = "" },
                           { .subject = "ObserverRound/256", .peer = "EpollRound/256", .goal = 0, .counter = "" },
                           { .subject = "ObserverSetConditions", .peer = "EpollModify", .goal = 0, .counter = "" },
                       } );
}
