// Whether a thread that has to wait first gives its processor to others and looks again. In-tree only.
//
// Who sleeps has to be woken: a system call for the waking thread, which then often loses its processor to the woken one
// in the middle of its work. Threads on one processor that answer each other spare both by yielding: what the waiter
// waits for happens while it is runnable. A look is taken only where it has just paid, elsewhere once in 64 waits at
// first and in 4,096 where it keeps failing. It lasts a few yields and not longer: who spins while his processor has
// nothing else to do is answered sooner, but then counts as a thread that computes, and waits for the others of that
// kind. Who yields to one of these gets his processor back late: after one such look there is none for 1,024 waits.
#ifndef PB_PATIENCE_HPP
#define PB_PATIENCE_HPP

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <ctime>
#include <sched.h>

namespace pb {

class Patience {
public:
    // Whether a look should be taken before the wait that begins.
    bool worthwhile()
    {
        State state = state_.load( std::memory_order_relaxed );
        const bool due = state.credit || ++state.waits == 1u << state.probeShift;
        if ( due )
            state.waits = 0;
        state_.store( state, std::memory_order_relaxed );
        return due;
    }
    // Yields until open() is true, a few times at most; whether it is true.
    template <class Open> bool look( const Open &open )
    {
        const int64_t began = monotonic();
        bool opened = false;
        for ( int yields = 0; !opened && yields < mostYields; ++yields ) {
            sched_yield();
            opened = open();
        }
        judge( monotonic() - began >= robbery ? robbed : opened ? paid : failed );
        return opened;
    }
    enum Outcome { paid, failed, robbed }; // robbed: a thread that computes has kept the processor
    void judge( Outcome outcome )
    {
        State state = state_.load( std::memory_order_relaxed );
        if ( outcome == robbed )
            state = { .probeShift = robbedProbeShift };
        else if ( outcome == paid )
            state = { .credit = std::min<uint8_t>( state.credit + 1, fullCredit ) };
        else if ( state.credit )
            --state.credit;
        else
            state.probeShift = std::min<uint8_t>( state.probeShift + 2, lastProbeShift );
        state_.store( state, std::memory_order_relaxed );
    }

private:
    static constexpr int mostYields = 4;
    static constexpr int64_t robbery = 200'000; // ns; far beyond what answering takes
    static constexpr uint8_t fullCredit = 8;        // looks that may fail
    static constexpr uint8_t firstProbeShift = 6, robbedProbeShift = 10, lastProbeShift = 12;

    // Threads that wait at once may lose each other's changes: all of it is a guess, and orders nothing; open() has to
    // acquire. It changes as a whole, so that waits never passes the number that makes a look due.
    struct State {
        uint8_t credit = 0;
        uint8_t probeShift = firstProbeShift; // without credit a look is taken every 2^probeShift waits
        uint16_t waits = 0;                   // since the last look
    };

    static int64_t monotonic()
    {
        timespec time;
        clock_gettime( CLOCK_MONOTONIC, &time );
        return time.tv_sec * 1'000'000'000 + time.tv_nsec;
    }

    std::atomic<State> state_{};
    static_assert( std::atomic<State>::is_always_lock_free );
};

} // namespace pb

#endif
