// Races between what wakes and what goes away. The counts are small enough for a few seconds under ThreadSanitizer, which
// together with the end of each test (no wake was lost) does most of the judging: what must not run at the same time
// touches plain memory.
#include "pb/pb_alert.h"
#include "pb/pb_barrier.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_region.h"
#include "pb/pb_signal.h"
#include "pb/pb_timer.h"
#include "pb/pb_wake.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <thread>

PB_SORT_DECLARE( test___sort_TARGET )

namespace {

struct Target final : pb::Object<Target, test___sort_TARGET> {
    int wakes = 0; // plain: by one notification at a time, and by none after Del

    static void wake( pbObj *target ) { ++static_cast<Target *>( target )->wakes; }
};

} // namespace

constinit const struct pbSort test___sort_TARGET = pb::detail::makeSort<Target>( "TARGET" );

namespace {

auto barrier( pbInt count ) { return pb::adopt( pbBarrierCreate( count ) ); }

// Runs the functions beside each other to their ends.
template <class... Functions> void together( Functions... functions )
{
    std::thread threads[] = { std::thread( functions )... };
    for ( std::thread &thread : threads )
        thread.join();
}

TEST( WakeStress, BarrierIsReleasedByItsPasserAtOnce )
{
    for ( const bool held : { false, true } ) {
        std::atomic<pbBarrier *> slot{ nullptr };
        constexpr int rounds = 20'000;
        together(
            [&] {
                for ( int i = 0; i < rounds; ++i ) {
                    const auto subject = barrier( 1 ); // the other thread has no reference of its own
                    slot.store( subject.get(), std::memory_order_release );
                    if ( i % 2 )
                        std::this_thread::yield();
                    pbBarrierPass( subject.get() );
                }
            },
            [&] {
                if ( held )
                    pb___WakesHoldBegin();
                for ( int i = 0; i < rounds; ++i ) {
                    pbBarrier *subject;
                    while ( !( subject = slot.exchange( nullptr, std::memory_order_acquire ) ) )
                        pb___WakesFlush(), std::this_thread::yield();
                    pbBarrierUnblock( subject );
                }
                if ( held )
                    pb___WakesHoldEnd();
            } );
    }
}

// Each side closes its own barrier before it opens the other's; a lost wake ends in a standstill.
TEST( WakeStress, BarriersHandOver )
{
    const auto ping = barrier( 0 ), pong = barrier( 1 );
    int turns = 0;
    const auto play = [&]( pbBarrier *own, pbBarrier *other ) {
        for ( int i = 0; i < 20'000; ++i ) {
            pbBarrierPass( own );
            ++turns;
            pbBarrierBlock( own );
            pbBarrierUnblock( other );
        }
    };
    together( [&] { play( ping.get(), pong.get() ); }, [&] { play( pong.get(), ping.get() ); } );
    EXPECT_EQ( turns, 40'000 );
}

// The signal of the moment, which is replaced when it is asserted.
class CurrentSignal {
public:
    pb::Ref<pbSignal> get()
    {
        const pb::Guard guard( monitor_ );
        return signal_;
    }
    void assertAndReplace()
    {
        const pb::Guard guard( monitor_ );
        pbSignalAssert( signal_.get() );
        signal_ = pb::adopt( pbSignalCreate() );
    }

private:
    pb::Monitor monitor_;
    pb::Ref<pbSignal> signal_ PB_GUARDED_BY( monitor_ ) = pb::adopt( pbSignalCreate() );
};

TEST( WakeStress, NothingIsNotifiedAfterDel )
{
    CurrentSignal current;
    const auto alert = pb::adopt( pbAlertCreate() );
    std::atomic<int> observing{ 2 };
    const auto observe = [&] {
        for ( int i = 0; i < 20'000; ++i ) {
            const auto target = pb::make<Target>();
            const auto signalable = pb::adopt( pb___SignalableCreate( Target::wake, target.get() ) );
            const auto signal = current.get();
            pbSignalAddSignalable( signal.get(), signalable.get() );
            if ( i % 16 == 0 )
                std::this_thread::yield();
            pbSignalDelSignalable( signal.get(), signalable.get() );
            EXPECT_LE( target->wakes, 1 );
            target->wakes = 0;
            const auto alertable = pb::adopt( pb___AlertableCreate( Target::wake, target.get() ) );
            pbAlertAddAlertable( alert.get(), alertable.get() );
            pbAlertDelAlertable( alert.get(), alertable.get() );
            target->wakes = 0;
        }
        --observing;
    };
    together( observe, observe, [&] {
        while ( observing ) {
            current.assertAndReplace();
            pbAlertSet( alert.get() );
            pbAlertUnset( alert.get() );
        }
    } );
}

// A queue with its alert, taken from by a thread that waits for the alert or for the end.
TEST( WakeStress, NoItemAndNoEndIsMissed )
{
    for ( int round = 0; round < 20; ++round ) {
        pb::Monitor monitor;
        int queued = 0, taken = 0;
        const auto alert = pb::adopt( pbAlertCreate() );
        const auto end = pb::adopt( pbSignalCreate() );
        constexpr int items = 2'000;
        together(
            [&] {
                for ( int i = 0; i < items; ++i ) {
                    const pb::WakeHold hold;
                    const pb::Guard guard( monitor );
                    ++queued;
                    pbAlertSet( alert.get() );
                }
                pbSignalAssert( end.get() );
            },
            [&] {
                for ( bool ended = false; !ended || pbAlertIsSet( alert.get() ); ) {
                    const auto wait = barrier( 1 );
                    const auto alertable = pb::adopt( pbAlertableCreateBarrier( wait.get() ) );
                    pbSignalAddBarrier( end.get(), wait.get() );
                    pbAlertAddAlertable( alert.get(), alertable.get() );
                    pbBarrierPass( wait.get() );
                    pbAlertDelAlertable( alert.get(), alertable.get() );
                    pbSignalDelBarrier( end.get(), wait.get() );
                    ended = pbSignalAsserted( end.get() );
                    const pb::Guard guard( monitor );
                    taken += std::exchange( queued, 0 );
                    pbAlertUnset( alert.get() );
                }
            } );
        EXPECT_EQ( taken, items );
    }
}

TEST( WakeStress, TimersComeAndGo )
{
    std::atomic<int> expired{ 0 };
    const auto churn = [&]( unsigned seed ) {
        std::mt19937 random( seed );
        for ( int i = 0; i < 1'000; ++i ) {
            const auto reached = barrier( 1 );
            const auto signalable = pb::adopt( pbSignalableCreateBarrier( reached.get() ) );
            auto timer = pb::adopt( pbTimerCreate( signalable.get() ) );
            auto other = pb::adopt( pbTimerCreate( signalable.get() ) );
            for ( int changes = 0; changes < 5; ++changes ) {
                pbTimerSchedule( timer.get(), random() % 2 );
                pbTimerSchedule( other.get(), random() % 1000 );
                if ( random() % 2 )
                    pbTimerUnschedule( timer.get() );
            }
            if ( random() % 4 == 0 )
                timer.reset();
            else {
                pbTimerSchedule( timer.get(), 0 );
                pbBarrierPass( reached.get() );
                ++expired;
            }
            if ( i % 100 == 0 )
                pb___TimerShutdown();
        }
    };
    together( [&] { churn( 1 ); }, [&] { churn( 2 ); } );
    EXPECT_GT( expired, 0 );
    pb___TimerShutdown();
}

TEST( WakeStress, RegionKeepsWritersApart )
{
    const auto region = pb::adopt( pbRegionCreate() );
    constexpr int rounds = 5'000;
    int sum = 0;
    const auto write = [&] {
        for ( int i = 0; i < rounds; ++i ) {
            pbRegionEnterExclusive( region.get() );
            ++sum;
            pbRegionLeave( region.get() );
        }
    };
    const auto read = [&] {
        for ( int i = 0, seen = 0; i < rounds; ++i ) {
            pbRegionEnterShared( region.get() );
            EXPECT_LE( std::exchange( seen, sum ), sum );
            pbRegionLeave( region.get() );
        }
    };
    together( read, write, read, write );
    EXPECT_EQ( sum, 2 * rounds );
}

} // namespace
