// Memory of small objects: per size class, a free list of the thread, and behind it a depot from which the threads
// exchange whole magazines, since an object is often freed on another thread than the one that made it.
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"

#include <array>
#include <new>

#ifndef __has_feature
#define __has_feature( x ) 0
#endif
#ifdef PB_MEMORY_PLAIN // the lists' own test judges them under the sanitizers
#elif defined( __SANITIZE_ADDRESS__ ) || defined( __SANITIZE_THREAD__ ) || __has_feature( address_sanitizer ) ||         \
    __has_feature( thread_sanitizer ) || __has_feature( memory_sanitizer )
#define PB_MEMORY_PLAIN 1 // a free list would hide from the sanitizer whose block was used when
#else
#define PB_MEMORY_PLAIN 0
#endif

namespace {

constexpr size_t granularity = 32;
constexpr size_t largest = 512;
constexpr size_t classes = largest / granularity;
constexpr int64_t magazineBlocks = 64;
constexpr int64_t depotMagazines = 256; // per class; what exceeds it goes back to the global allocator

// A block while it is free. The last two members are used in the first block of a magazine in the depot.
struct Block {
    Block *next;
    Block *nextMagazine;
    int64_t count;
};
static_assert( sizeof( Block ) <= granularity );

// One per class. Room is what a list may still take: 0 before a thread's first free and after its end, so that the
// usual path tests nothing else.
struct Cache {
    Block *head;
    int64_t room;
};

struct ThreadState {
    std::array<Block *, classes> spare; // a second magazine, full, that keeps a thread between two from the depot
    enum { untouched, alive, ended } phase;
};

// Initial-exec reaches it without a call, but takes of the little room that the loader keeps for libraries that are
// loaded later: only what the usual path touches.
__attribute__( ( tls_model( "initial-exec" ) ) ) constinit thread_local std::array<Cache, classes> caches{};
constinit thread_local ThreadState state{};

struct Depot {
    std::mutex mutex;
    Block *magazines = nullptr;
    int64_t count = 0;
};
constinit std::array<Depot, classes> depots{};

constexpr size_t classOf( size_t size ) { return ( size - 1 ) / granularity; }
constexpr size_t sizeOf( size_t sizeClass ) { return ( sizeClass + 1 ) * granularity; }

Block *link( void *memory, Block *next ) noexcept
{
    Block *block = new ( memory ) Block; // begins its life without being written
    block->next = next;
    return block;
}

void deleteBlocks( Block *block, size_t sizeClass ) noexcept
{
    while ( block )
        ::operator delete( std::exchange( block, block->next ), sizeOf( sizeClass ) );
}

void putMagazine( Block *magazine, int64_t count, size_t sizeClass ) noexcept
{
    Depot &depot = depots[sizeClass];
    {
        const std::lock_guard lock( depot.mutex );
        if ( depot.count < depotMagazines ) {
            magazine->count = count;
            magazine->nextMagazine = std::exchange( depot.magazines, magazine );
            ++depot.count;
            return;
        }
    }
    deleteBlocks( magazine, sizeClass );
}

Block *takeMagazine( size_t sizeClass ) noexcept
{
    Depot &depot = depots[sizeClass];
    const std::lock_guard lock( depot.mutex );
    Block *magazine = depot.magazines;
    if ( magazine ) {
        depot.magazines = magazine->nextMagazine;
        --depot.count;
    }
    return magazine;
}

// Gives the thread's blocks to the others when it ends. What is freed later on the thread, by thread-local or static
// objects that live longer, finds no room and goes to the global allocator.
struct Flusher {
    bool armed = false;
    ~Flusher()
    {
        state.phase = ThreadState::ended;
        for ( size_t i = 0; i < classes; ++i ) {
            if ( Block *head = std::exchange( caches[i].head, nullptr ) )
                putMagazine( head, magazineBlocks - caches[i].room, i );
            if ( Block *spare = std::exchange( state.spare[i], nullptr ) )
                putMagazine( spare, magazineBlocks, i );
            caches[i].room = 0;
        }
    }
};

bool alive() noexcept
{
    if ( state.phase == ThreadState::untouched ) {
        static thread_local Flusher flusher;
        flusher.armed = true;
        state.phase = ThreadState::alive;
        for ( Cache &cache : caches )
            cache.room = magazineBlocks;
    }
    return state.phase == ThreadState::alive;
}

[[gnu::noinline]] void *allocateSlow( size_t sizeClass )
{
    if ( alive() ) {
        Block *magazine = std::exchange( state.spare[sizeClass], nullptr );
        int64_t count = magazineBlocks;
        if ( !magazine && ( magazine = takeMagazine( sizeClass ) ) )
            count = magazine->count;
        if ( magazine ) {
            caches[sizeClass] = { magazine->next, magazineBlocks - count + 1 };
            return magazine;
        }
    }
    return ::operator new( sizeOf( sizeClass ) );
}

[[gnu::noinline]] void freeSlow( void *memory, size_t sizeClass ) noexcept
{
    if ( !alive() ) {
        ::operator delete( memory, sizeOf( sizeClass ) );
        return;
    }
    Cache &cache = caches[sizeClass];
    if ( cache.room == 0 ) {
        if ( Block *full = std::exchange( state.spare[sizeClass], cache.head ) )
            putMagazine( full, magazineBlocks, sizeClass );
        cache = { nullptr, magazineBlocks };
    }
    cache.head = link( memory, cache.head );
    --cache.room;
}

} // namespace

extern "C" {

void *pb___MemoryAllocate( size_t size )
{
    if ( PB_MEMORY_PLAIN || size > largest || size == 0 )
        return ::operator new( size );
    const size_t sizeClass = classOf( size );
    Cache &cache = caches[sizeClass];
    Block *block = cache.head;
    if ( !block )
        return allocateSlow( sizeClass );
    cache.head = block->next;
    ++cache.room;
    return block;
}

void pb___MemoryFree( void *memory, size_t size ) noexcept
{
    if ( PB_MEMORY_PLAIN || size > largest || size == 0 ) {
        ::operator delete( memory, size );
        return;
    }
    const size_t sizeClass = classOf( size );
    Cache &cache = caches[sizeClass];
    if ( cache.room == 0 ) {
        freeSlow( memory, sizeClass );
        return;
    }
    cache.head = link( memory, cache.head );
    --cache.room;
}

} // extern "C"
