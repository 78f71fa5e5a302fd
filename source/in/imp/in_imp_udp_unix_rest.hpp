// Whether the UDP I/O thread rests for a moment before it waits for events again. In-tree only.
//
// Under load each datagram wakes the thread, and the thread wakes a reader: two context switches for 172 bytes. A network
// adapter with adaptive interrupt moderation knows the answer: while datagrams are plenty, let some gather. The thread
// rests only where that has just paid. Where a datagram is sent because the last one was answered, nothing gathers, and
// such traffic meets a rest once in a thousand datagrams or less.
#ifndef IN_IMP_UDP_UNIX_REST_HPP
#define IN_IMP_UDP_UNIX_REST_HPP

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <sys/prctl.h>

class in___ImpUdpUnixRest {
public:
    // By the I/O thread. Sleeps are usually prolonged by the thread's timer slack, which is as long as a rest.
    in___ImpUdpUnixRest() { prctl( PR_SET_TIMERSLACK, 1UL ); }

    // A round is what the thread does between two waits; received: datagrams in it. True when a rest is worth trying.
    bool roundEnds( uint64_t received )
    {
        if ( rested_ )
            judge( received );
        rested_ = credit_ > 0 || probeIsDue();
        return rested_;
    }
    void take() const
    {
        const timespec rest{ 0, nanoseconds };
        clock_nanosleep( CLOCK_MONOTONIC, 0, &rest, nullptr );
    }

private:
    static constexpr long nanoseconds = 50'000;  // far below the 20 ms between the packets of a call
    static constexpr uint64_t worthwhile = 3;    // datagrams that gather
    static constexpr unsigned fullCredit = 8;    // rounds that may disappoint, such as the last one of each burst
    static constexpr unsigned roundsToProbe = 64, roundsToProbeAtMost = 4096;
    static constexpr int64_t busyRound = 50'000; // ns; a thread with longer ones has nothing to gain

    void judge( uint64_t received )
    {
        if ( received >= worthwhile ) {
            credit_ = std::min( credit_ + 1, fullCredit );
            probeEvery_ = roundsToProbe;
        } else if ( credit_ > 0 ) {
            --credit_;
        } else {
            probeEvery_ = std::min( 4 * probeEvery_, roundsToProbeAtMost );
        }
    }
    bool probeIsDue()
    {
        if ( ++rounds_ < probeEvery_ )
            return false;
        rounds_ = 0;
        const int64_t now = monotonic(), elapsed = now - lastProbe_;
        lastProbe_ = now;
        return elapsed < probeEvery_ * busyRound;
    }
    static int64_t monotonic()
    {
        timespec time;
        clock_gettime( CLOCK_MONOTONIC, &time );
        return time.tv_sec * 1'000'000'000 + time.tv_nsec;
    }

    bool rested_ = false; // before the round under way
    unsigned credit_ = 0;
    unsigned probeEvery_ = roundsToProbe;
    unsigned rounds_ = 0; // since the last probe
    int64_t lastProbe_ = 0;
};

#endif
