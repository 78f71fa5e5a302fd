// Whether a thread that has to wait first gives its processor to others for a moment and looks again. In-tree only.
//
// Who sleeps has to be woken: a system call for the waking thread, which then often loses its processor to the woken one
// in the middle of its work, and on another processor the time that it takes to wake that. Threads that answer each
// other within microseconds spare both. A look is taken only where it has just paid, elsewhere once in 64 waits at first
// and in 4,096 where it keeps failing: it costs the processor's time, and who gives his processor to a thread that
// computes gets it back late.
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
    // Stays until open() is true or the moment is over; whether it is true.
    template <class Open> bool look( const Open &open )
    {
        const int64_t end = monotonic() + moment;
        bool opened, inTime;
        do {
            sched_yield();
            opened = open();
            inTime = monotonic() < end;
        } while ( !opened && inTime );
        judge( opened && inTime );
        return opened;
    }
    void judge( bool paid )
    {
        State state = state_.load( std::memory_order_relaxed );
        if ( paid ) {
            state.credit = std::min<uint8_t>( state.credit + 1, fullCredit );
            state.probeShift = firstProbeShift;
        } else if ( state.credit )
            --state.credit;
        else
            state.probeShift = std::min<uint8_t>( state.probeShift + 2, lastProbeShift );
        state_.store( state, std::memory_order_relaxed );
    }

private:
    static constexpr int64_t moment = 50'000; // ns; waits that are longer do not gain by it
    static constexpr uint8_t fullCredit = 8;  // looks that may fail
    static constexpr uint8_t firstProbeShift = 6, lastProbeShift = 12;

    // Threads that wait at once may lose each other's changes: all of it is a guess.
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
