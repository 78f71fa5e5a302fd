// The free lists themselves under the sanitizers, which everything else sees without them: blocks are made on one thread
// and freed on another, threads end with full lists, and no block has two owners. Every byte is written by each owner, so
// that ThreadSanitizer sees a block that is handed on without order.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

// pb_memory.cpp under names of its own, with its lists in use (CMakeLists.txt).
extern "C" {
void *memoryAllocate( size_t size );
void memoryFree( void *memory, size_t size ) noexcept;
}

namespace {

struct Held {
    unsigned char *bytes;
    size_t size;
    unsigned char mark;
};

Held make( std::mt19937 &random )
{
    const size_t size = 1 + random() % 600; // all classes, and sizes beyond the largest
    const auto mark = static_cast<unsigned char>( random() );
    auto *bytes = static_cast<unsigned char *>( memoryAllocate( size ) );
    std::memset( bytes, mark, size );
    return { bytes, size, mark };
}

bool intact( const Held &held )
{
    for ( size_t i = 0; i < held.size; ++i )
        if ( held.bytes[i] != held.mark )
            return false;
    return true;
}

// Where threads leave blocks for each other.
struct Exchange {
    std::mutex mutex;
    std::vector<Held> left;
};

void work( unsigned seed, int steps, std::array<Exchange, 4> &exchanges, std::atomic<int> &broken )
{
    std::mt19937 random( seed );
    std::vector<Held> own;
    const auto drop = [&]( const Held &held ) {
        broken += !intact( held );
        memoryFree( held.bytes, held.size );
    };
    for ( int step = 0; step < steps; ++step ) {
        while ( own.size() < 150 )
            own.push_back( make( random ) );
        Exchange &exchange = exchanges[random() % exchanges.size()];
        const std::lock_guard lock( exchange.mutex );
        own.swap( exchange.left ); // whose blocks another thread made
        for ( size_t kept = random() % 150; own.size() > kept; own.pop_back() )
            drop( own.back() );
    }
    for ( const Held &held : own )
        drop( held );
}

TEST( MemoryStress, NoBlockHasTwoOwnersAcrossThreadsThatComeAndGo )
{
    std::array<Exchange, 4> exchanges;
    std::atomic<int> broken{ 0 };
    for ( unsigned generation = 0; generation < 8; ++generation ) {
        std::vector<std::thread> threads;
        for ( unsigned i = 0; i < 6; ++i )
            threads.emplace_back( work, generation * 16 + i, 200, std::ref( exchanges ), std::ref( broken ) );
        for ( std::thread &thread : threads )
            thread.join();
    }
    for ( Exchange &exchange : exchanges )
        for ( const Held &held : exchange.left ) {
            broken += !intact( held );
            memoryFree( held.bytes, held.size );
        }
    EXPECT_EQ( broken, 0 );
}

} // namespace
