// The hot small things of the runtime: references, copy on write, memory, text, bytes, the vector as a queue, stores;
// beside what the standard library offers for the same.
#include "pb/pb_buffer.h"
#include "pb/pb_format.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <deque>
#include <memory>
#include <string>

PB_SORT_DECLARE( pb___sort_BENCH_VALUE )
struct benchValue final : pb::Object<struct benchValue, pb___sort_BENCH_VALUE> {
    pbInt first = 1, second = 2;
};
PB_OBJECT_DEFINE( benchValue, pb___sort_BENCH_VALUE )

namespace {

void RetainRelease( benchmark::State &state )
{
    const auto value = pb::make<benchValue>();
    for ( auto _ : state ) {
        auto copy = value;
        benchmark::DoNotOptimize( copy );
    }
}
BENCHMARK( RetainRelease );

void RetainReleaseSharedPtr( benchmark::State &state )
{
    const auto value = std::make_shared<pbInt>( 1 );
    for ( auto _ : state ) {
        auto copy = value;
        benchmark::DoNotOptimize( copy );
    }
}
BENCHMARK( RetainReleaseSharedPtr );

void MakeDrop( benchmark::State &state )
{
    for ( auto _ : state )
        benchmark::DoNotOptimize( pb::make<benchValue>() );
}
BENCHMARK( MakeDrop );

void MakeDropNew( benchmark::State &state )
{
    struct Value {
        pbInt fields[4];
    };
    for ( auto _ : state )
        benchmark::DoNotOptimize( std::make_unique<Value>() );
}
BENCHMARK( MakeDropNew );

void CopyOnWriteAlone( benchmark::State &state )
{
    auto value = pb::make<benchValue>();
    for ( auto _ : state ) {
        pb::edit( value.address() ).first++;
        benchmark::DoNotOptimize( value );
    }
}
BENCHMARK( CopyOnWriteAlone );

void CopyOnWriteShared( benchmark::State &state )
{
    auto value = pb::make<benchValue>();
    for ( auto _ : state ) {
        const auto other = value;
        pb::edit( value.address() ).first++;
        benchmark::DoNotOptimize( value );
    }
}
BENCHMARK( CopyOnWriteShared );

void StringFromAscii( benchmark::State &state )
{
    const std::string text( static_cast<size_t>( state.range( 0 ) ), 'x' );
    for ( auto _ : state )
        benchmark::DoNotOptimize(
            pb::adopt( pb___StringCreateFromAscii( text.data(), static_cast<pbInt>( text.size() ) ) ) );
}
BENCHMARK( StringFromAscii )->Arg( 7 )->Arg( 15 )->Arg( 39 );

void StringFromCstr( benchmark::State &state )
{
    for ( auto _ : state )
        benchmark::DoNotOptimize( pb::string( "192.168.100.200" ) );
}
BENCHMARK( StringFromCstr );

void Format( benchmark::State &state )
{
    const auto name = pb::string( "eth0" );
    pbInt port = 5060;
    for ( auto _ : state )
        benchmark::DoNotOptimize( pb::format( "[%s] bound to port %i, flags 0x%02!16i", name, port++, 46 ) );
}
BENCHMARK( Format );

void FormatSnprintf( benchmark::State &state )
{
    const std::string name( "eth0" );
    long port = 5060;
    for ( auto _ : state ) {
        char text[128];
        const int length =
            std::snprintf( text, sizeof text, "[%s] bound to port %ld, flags 0x%02X", name.c_str(), port++, 46u );
        benchmark::DoNotOptimize( std::make_unique<std::string>( text, static_cast<size_t>( length ) ) );
    }
}
BENCHMARK( FormatSnprintf );

void BufferFromBytes( benchmark::State &state )
{
    const std::string bytes( static_cast<size_t>( state.range( 0 ) ), 'x' );
    for ( auto _ : state )
        benchmark::DoNotOptimize(
            pb::adopt( pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) ) ) );
}
BENCHMARK( BufferFromBytes )->Arg( 172 )->Arg( 1400 );

void VectorQueue( benchmark::State &state )
{
    const auto value = pb::make<benchValue>();
    auto queue = pb::adopt( pbVectorCreate() );
    for ( pbInt i = 0; i < 256; ++i )
        pbVectorAppend( queue.address(), value.get() );
    for ( auto _ : state ) {
        pbVectorAppend( queue.address(), value.get() );
        pbVectorDelAt( queue.address(), 0 );
    }
}
BENCHMARK( VectorQueue );

void VectorQueueDeque( benchmark::State &state )
{
    const auto value = std::make_shared<pbInt>( 1 );
    std::deque<std::shared_ptr<pbInt>> queue( 256, value );
    for ( auto _ : state ) {
        queue.push_back( value );
        queue.pop_front();
    }
}
BENCHMARK( VectorQueueDeque );

void StoreFill( benchmark::State &state )
{
    const auto value = pb::string( "value" );
    for ( auto _ : state ) {
        auto store = pb::adopt( pbStoreCreate() );
        for ( pbInt i = 0; i < state.range( 0 ); ++i )
            pbStoreSetValue( store.address(), pb::format( "object-%i", i ).get(), value.get() );
        benchmark::DoNotOptimize( store );
    }
    state.SetItemsProcessed( state.iterations() * state.range( 0 ) );
}
BENCHMARK( StoreFill )->Arg( 10 )->Arg( 1000 )->Arg( 10000 );

} // namespace
