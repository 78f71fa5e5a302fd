// The scheduler: how long from a schedule to the run with the threads asleep, beside libuv's way of waking a loop's
// thread; and what a run and a collapsed schedule cost.
#include "bench_ratio.hpp"
#include "pb/pb_object.hpp"
#include "pr/pr_process.h"
#include "pr/pr_test.hpp"

#include <atomic>
#include <chrono>
#include <thread>
#include <uv.h>

namespace {

using Clock = std::chrono::steady_clock;
using Process = pb::Ref<struct prProcess>;

// Written by the thread that was woken; the waker spins, so that only the wake under test is in the figure.
std::atomic<Clock::rep> arrived{ 0 };

Process process( void ( *function )( struct pbObj * ) )
{
    return pb::adopt( prProcessCreateWithPriorityCstr( 1, function, nullptr, "bench", -1 ) );
}

template <class Wake> void measure( benchmark::State &state, const Wake &wake )
{
    std::vector<double> latencies; // their median holds still where another program takes a core for a while
    for ( auto _ : state ) {
        // Long enough for the woken thread to have gone back to sleep.
        for ( const auto until = Clock::now() + std::chrono::microseconds( 100 ); Clock::now() < until; )
            ;
        arrived.store( 0, std::memory_order_relaxed );
        const Clock::time_point begin = Clock::now();
        wake();
        Clock::rep end;
        while ( ( end = arrived.load( std::memory_order_acquire ) ) == 0 )
            ;
        const std::chrono::duration<double> latency = Clock::duration( end ) - begin.time_since_epoch();
        state.SetIterationTime( latency.count() );
        latencies.push_back( latency.count() * 1e6 );
    }
    std::nth_element( latencies.begin(), latencies.begin() + latencies.size() / 2, latencies.end() );
    state.counters["p50_us"] = latencies[latencies.size() / 2];
}

void arrive() { arrived.store( Clock::now().time_since_epoch().count(), std::memory_order_release ); }

void ScheduleToRun( benchmark::State &state )
{
    const Process woken = process( []( struct pbObj * ) { arrive(); } );
    measure( state, [&] { prProcessSchedule( woken.get() ); } );
    prProcessHalt( woken.get() );
    prProcessEndWait( woken.get() );
}
BENCHMARK( ScheduleToRun )->UseManualTime()->Iterations( 5000 );

void UvAsyncToCallback( benchmark::State &state )
{
    uv_loop_t loop;
    uv_async_t async, stop;
    uv_loop_init( &loop );
    uv_async_init( &loop, &async, []( uv_async_t * ) { arrive(); } );
    uv_async_init( &loop, &stop, []( uv_async_t *handle ) { uv_stop( handle->loop ); } );
    std::thread thread( [&] { uv_run( &loop, UV_RUN_DEFAULT ); } );
    measure( state, [&] { uv_async_send( &async ); } );
    uv_async_send( &stop );
    thread.join();
    uv_close( reinterpret_cast<uv_handle_t *>( &async ), nullptr );
    uv_close( reinterpret_cast<uv_handle_t *>( &stop ), nullptr );
    uv_run( &loop, UV_RUN_DEFAULT );
    uv_loop_close( &loop );
}
BENCHMARK( UvAsyncToCallback )->UseManualTime()->Iterations( 5000 );

// A process that asks for its own next run: no thread sleeps or wakes.
struct Countdown {
    std::atomic<int64_t> left;
    Process process;
} countdown;

void RunAfterRun( benchmark::State &state )
{
    countdown.process = process( []( struct pbObj * ) {
        if ( --countdown.left > 0 )
            prProcessSchedule( countdown.process.get() );
    } );
    for ( auto _ : state ) {
        countdown.left = 1000;
        prProcessSchedule( countdown.process.get() );
        pr___Quiesce();
    }
    state.SetItemsProcessed( state.iterations() * 1000 );
    countdown.process.reset();
}
BENCHMARK( RunAfterRun )->UseRealTime();

void ScheduleOfAPendingProcess( benchmark::State &state )
{
    static std::atomic<bool> go;
    go = false;
    static std::atomic<bool> entered;
    entered = false;
    const Process held = process( []( struct pbObj * ) {
        entered = true;
        while ( !go )
            std::this_thread::yield();
    } );
    prProcessSchedule( held.get() );
    while ( !entered )
        std::this_thread::yield();
    for ( auto _ : state )
        prProcessSchedule( held.get() );
    go = true;
    pr___Quiesce();
}
BENCHMARK( ScheduleOfAPendingProcess );

} // namespace

int main( int argumentCount, char **arguments )
{
    return bench::run( argumentCount, arguments,
                       { { .subject = "ScheduleToRun", .peer = "UvAsyncToCallback", .goal = 1.0, .counter = "p50_us" } } );
}
