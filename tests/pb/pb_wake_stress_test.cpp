// Races between what wakes and what goes away. The counts are small enough for a few seconds under ThreadSanitizer,
// which together with the end of each test (no wake was lost) does most of the judging: what must not run at the same
// time touches plain memory.
#include "pb/pb_alert.h"
#include "pb/pb_barrier.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_region.h"
#include "pb/pb_signal.h"
#include "pb/pb_timer.h"
#include "support/target.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <thread>

namespace {

using support::Target, support::signalableOf, support::alertableOf;

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
                std::optional<pb::WakeHold> hold;
                if ( held )
                    hold.emplace();
                for ( int i = 0; i < rounds; ++i ) {
                    pbBarrier *subject;
                    while ( !( subject = slot.exchange( nullptr, std::memory_order_acquire ) ) )
                        pb___WakesFlush(), std::this_thread::yield();
                    pbBarrierUnblock( subject );
                }
            } );
    }
}

// So many waits on the same barriers that the threads no longer sleep for each.
TEST( WakeStress, ThreadsAnswerEachOther )
{
    constexpr int rounds = 20'000;
    const auto asked = barrier( 1 ), answered = barrier( 1 );
    int said = 0;
    const auto wait = []( const auto &subject ) {
        pbBarrierPass( subject.get() );
        pbBarrierBlock( subject.get() );
    };
    together(
        [&] {
            for ( int i = 0; i < rounds; ++i ) {
                ++said;
                pbBarrierUnblock( asked.get() );
                wait( answered );
            }
        },
        [&] {
            for ( int i = 0; i < rounds; ++i ) {
                wait( asked );
                ++said;
                pbBarrierUnblock( answered.get() );
            }
        } );
    EXPECT_EQ( said, 2 * rounds );
}

// A signal that is replaced when it is asserted, and an alert that comes and goes.
TEST( WakeStress, NothingIsNotifiedAfterDel )
{
    pb::Monitor monitor;
    auto current = pb::adopt( pbSignalCreate() );
    const auto alert = pb::adopt( pbAlertCreate() );
    std::atomic<int> observing{ 2 };
    const auto observe = [&] {
        for ( int i = 0; i < 20'000; ++i ) {
            const auto target = pb::make<Target>();
            const auto signalable = signalableOf( target );
            const auto signal = [&] { const pb::Guard guard( monitor ); return current; }();
            pbSignalAddSignalable( signal.get(), signalable.get() );
            if ( i % 16 == 0 )
                std::this_thread::yield();
            const bool asserted = pbSignalAsserted( signal.get() );
            pbSignalDelSignalable( signal.get(), signalable.get() );
            EXPECT_GE( target->wakes, asserted );
            EXPECT_LE( std::exchange( target->wakes, 0 ), 1 );
            const auto alertable = alertableOf( target );
            pbAlertAddAlertable( alert.get(), alertable.get() );
            pbAlertDelAlertable( alert.get(), alertable.get() );
            target->wakes = 0;
        }
        --observing;
    };
    together( observe, observe, [&] {
        while ( observing ) {
            const pb::Guard guard( monitor );
            pbSignalAssert( current.get() );
            current = pb::adopt( pbSignalCreate() );
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
        const auto put = [&] {
            for ( int i = 0; i < items; ++i ) {
                const pb::WakeHold hold;
                const pb::Guard guard( monitor );
                ++queued;
                pbAlertSet( alert.get() );
            }
            pbSignalAssert( end.get() );
        };
        const auto take = [&] {
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
        };
        together( put, take );
        EXPECT_EQ( taken, items );
    }
}

TEST( WakeStress, TimersComeAndGo )
{
    const auto churn = [&]( unsigned seed ) {
        std::mt19937 random( seed );
        for ( int i = 0; i < 1'000; ++i ) {
            const auto reached = barrier( 1 );
            const auto signalable = pb::adopt( pbSignalableCreateBarrier( reached.get() ) );
            auto timer = pb::adopt( pbTimerCreate( signalable.get() ) );
            for ( int changes = 0; changes < 5; ++changes ) {
                pbTimerSchedule( timer.get(), random() % 2 ? 0 : random() % 1000 );
                if ( random() % 2 )
                    pbTimerUnschedule( timer.get() );
            }
            if ( random() % 4 == 0 )
                timer.reset();
            else {
                pbTimerSchedule( timer.get(), 0 );
                pbBarrierPass( reached.get() );
            }
            if ( i % 100 == 0 )
                pb___TimerShutdown();
        }
    };
    together( [&] { churn( 1 ); }, [&] { churn( 2 ); } );
    pb___TimerShutdown();
}

TEST( WakeStress, RegionKeepsWritersApart )
{
    const auto region = pb::adopt( pbRegionCreate() );
    constexpr int rounds = 5'000;
    int sum = 0;
    const auto enter = [&]( bool writes ) {
        for ( int i = 0, seen = 0; i < rounds; ++i ) {
            ( writes ? pbRegionEnterExclusive : pbRegionEnterShared )( region.get() );
            if ( writes )
                ++sum;
            EXPECT_LE( std::exchange( seen, sum ), sum );
            pbRegionLeave( region.get() );
        }
    };
    together( [&] { enter( false ); }, [&] { enter( true ); }, [&] { enter( false ); }, [&] { enter( true ); } );
    EXPECT_EQ( sum, 2 * rounds );
}

} // namespace
