// pbBarrier: one word that counts and knows of sleepers, over the futex system call; and the wakes that a thread holds
// back for a batch.
#include "pb/pb_barrier.h"
#include "pb/pb_clock.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_patience.hpp"
#include "pb/pb_wake.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

PB_SORT_DECLARE( pb___sort_PB_BARRIER )

namespace {

constexpr uint32_t sleepers = 1u << 31;      // threads may sleep on the word; cleared by whoever is going to wake them
constexpr uint32_t countMask = sleepers - 1; // the rest of the word counts
static_assert( sizeof( std::atomic<uint32_t> ) == 4, "a futex is a word of 32 bits" );

} // namespace

struct pbBarrier final : pb::Object<struct pbBarrier, pb___sort_PB_BARRIER> {
    std::atomic<uint32_t> word;
    pb::Patience patience;

    explicit pbBarrier( uint32_t count ) : word( count ) {}
};

PB_OBJECT_DEFINE( pbBarrier, pb___sort_PB_BARRIER )

namespace {

struct HeldBack {
    pb::Ref<pbObj> target;
    void ( *wake )( struct pbObj *target ) = nullptr;
};

// What the calling thread still has to wake, such as the sleepers of opened barriers. The counts stand apart from the
// references: these have a destructor and with it a test at each access, and they are gone when other destructors of
// the ending thread still wake.
struct Hold {
    int depth;
    size_t count;
};
constinit thread_local Hold hold{};
thread_local std::array<HeldBack, 64> heldBack;

// The address only names the futex and is not read: the barrier may be gone.
void wakeSleepers( std::atomic<uint32_t> *word )
{
    syscall( SYS_futex, word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0 );
}

void wakeSleepersOf( struct pbObj *barrier ) { wakeSleepers( &static_cast<struct pbBarrier *>( barrier )->word ); }

void holdBack( void ( *wake )( struct pbObj *target ), pb::Ref<pbObj> target )
{
    if ( hold.count == heldBack.size() )
        pb___WakesFlush();
    heldBack[hold.count++] = { std::move( target ), wake };
}

// Sleeps while the word has the value, until the deadline of the monotonic clock. False when the time ran out.
bool sleepOn( std::atomic<uint32_t> &word, uint32_t value, const timespec *optionalDeadline )
{
    return syscall( SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, value, optionalDeadline, nullptr,
                    FUTEX_BITSET_MATCH_ANY ) == 0
        || errno != ETIMEDOUT;
}

bool isOpen( const pbBarrier &barrier )
{
    return ( barrier.word.load( std::memory_order_acquire ) & countMask ) == 0;
}

// False when it is still closed after a look, or none was worthwhile.
bool opensSoon( pbBarrier &barrier )
{
    if ( !barrier.patience.worthwhile() )
        return false;
    pb___WakesFlush();
    return barrier.patience.look( [&barrier] { return isOpen( barrier ); } );
}

bool pass( pbBarrier &barrier, const timespec *optionalDeadline )
{
    if ( isOpen( barrier ) || opensSoon( barrier ) )
        return true;
    for ( ;; ) {
        uint32_t word = barrier.word.load( std::memory_order_acquire );
        if ( ( word & countMask ) == 0 )
            return true;
        if ( !( word & sleepers )
             && !barrier.word.compare_exchange_strong( word, word | sleepers, std::memory_order_relaxed ) )
            continue;
        pb___WakesFlush();
        if ( !sleepOn( barrier.word, word | sleepers, optionalDeadline ) )
            return isOpen( barrier );
    }
}

} // namespace

extern "C" {

struct pbBarrier *pbBarrierCreate( pbInt count )
{
    PB_ASSERT( count >= 0 );
    PB_ASSERT( count < countMask );
    return new pbBarrier( static_cast<uint32_t>( count ) );
}

void pbBarrierBlock( struct pbBarrier *barrier )
{
    PB_ASSERT( barrier );
    // Acquire: a thread that blocks and then looks at what it waits for sees what an earlier Unblock announced.
    const uint32_t word = barrier->word.fetch_add( 1, std::memory_order_acq_rel );
    PB_ASSERT( ( word & countMask ) < countMask - 1 );
}

void pbBarrierUnblock( struct pbBarrier *barrier )
{
    PB_ASSERT( barrier );
    std::atomic<uint32_t> *const address = &barrier->word;
    // A batch keeps what it is going to wake; taken before the barrier opens, since it may be gone afterwards.
    pb::Ref<pbBarrier> kept;
    uint32_t word = address->load( std::memory_order_relaxed ), next;
    do {
        const uint32_t count = word & countMask;
        // At zero the same value is written again, so that a later Block still sees what was written before this call.
        next = count == 0 ? word : count == 1 ? 0 : word - 1;
        if ( hold.depth && count == 1 && ( word & sleepers ) && !kept )
            kept = pb::share( barrier );
    } while ( !address->compare_exchange_weak( word, next, std::memory_order_acq_rel, std::memory_order_relaxed ) );

    // The barrier is not touched from here on.
    if ( word != ( sleepers | 1 ) )
        return;
    if ( !kept )
        wakeSleepers( address );
    else
        holdBack( wakeSleepersOf, pb::Ref<pbObj>::adopting( kept.release() ) );
}

void pbBarrierPass( struct pbBarrier *barrier )
{
    PB_ASSERT( barrier );
    pass( *barrier, nullptr );
}

pbBool pbBarrierPassTimed( struct pbBarrier *barrier, pbInt milliseconds )
{
    PB_ASSERT( barrier );
    PB_ASSERT( milliseconds >= 0 );
    if ( milliseconds == 0 )
        return isOpen( *barrier );
    const timespec deadline = pb::monotonicDeadline( milliseconds );
    return pass( *barrier, &deadline );
}

void pb___WakesHoldBegin( void ) { ++hold.depth; }

void pb___WakesHoldEnd( void )
{
    PB_ASSERT( hold.depth > 0 );
    if ( --hold.depth == 0 )
        pb___WakesFlush();
}

pbBool pb___WakesTryHold( void ( *wake )( struct pbObj *target ), struct pbObj *target )
{
    if ( !hold.depth )
        return 0;
    holdBack( wake, pb::share( target ) );
    return 1;
}

void pb___WakesFlush( void )
{
    while ( hold.count ) {
        const HeldBack held = std::move( heldBack[--hold.count] );
        held.wake( held.target.get() );
    }
}

} // extern "C"
