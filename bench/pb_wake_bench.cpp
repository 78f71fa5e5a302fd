// What waiting and looking up cost: dictionaries, signals, alerts, barriers, timers.
#include "pb/pb_alert.h"
#include "pb/pb_alertable.h"
#include "pb/pb_barrier.h"
#include "pb/pb_boxed_int.h"
#include "pb/pb_dict.h"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pb/pb_timer.h"

#include <benchmark/benchmark.h>

#include <thread>

namespace {

pb::Ref<pbDict> dictOf( pbInt length )
{
    auto dict = pb::adopt( pbDictCreate() );
    for ( pbInt key = 0; key < length; ++key )
        pbDictSetIntKey( dict.address(), 3 * key, pb::adopt( pbBoxedIntObj( pbBoxedIntCreate( key ) ) ).get() );
    return dict;
}

void dictLookUp( benchmark::State &state )
{
    const auto dict = dictOf( state.range( 0 ) );
    for ( pbInt key = 0; auto _ : state ) {
        pbObjRelease( pbDictIntKey( dict.get(), 3 * key ) );
        key = ( key + 7919 ) % state.range( 0 ); // a prime: all keys, in no order that helps
    }
}
BENCHMARK( dictLookUp )->Arg( 16 )->Arg( 1024 )->Arg( 16384 );

// What a table of channels does for each channel that comes and goes.
void dictSetAndDelete( benchmark::State &state )
{
    auto dict = dictOf( state.range( 0 ) );
    const auto value = pb::adopt( pbBoxedIntObj( pbBoxedIntCreate( 0 ) ) );
    for ( pbInt key = 0; auto _ : state ) {
        pbDictSetIntKey( dict.address(), 3 * key + 1, value.get() );
        pbDictDelIntKey( dict.address(), 3 * key + 1 );
        key = ( key + 7919 ) % state.range( 0 );
    }
}
BENCHMARK( dictSetAndDelete )->Arg( 16 )->Arg( 1024 )->Arg( 16384 );

// The first change after the dictionary was shared.
void dictCopyOnWrite( benchmark::State &state )
{
    auto dict = dictOf( state.range( 0 ) );
    const auto value = pb::adopt( pbBoxedIntObj( pbBoxedIntCreate( 0 ) ) );
    for ( auto _ : state ) {
        const auto snapshot = dict;
        pbDictSetIntKey( dict.address(), 0, value.get() );
    }
}
BENCHMARK( dictCopyOnWrite )->Arg( 16 )->Arg( 1024 )->Arg( 16384 );

// A signal is used once, so it is made and dropped too.
void signalAssertWithOneObserver( benchmark::State &state )
{
    const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    for ( auto _ : state ) {
        const auto signal = pb::adopt( pbSignalCreate() );
        pbSignalAddSignalable( signal.get(), signalable.get() );
        pbSignalAssert( signal.get() );
    }
}
BENCHMARK( signalAssertWithOneObserver );

void signalAddAndDelete( benchmark::State &state )
{
    const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
    const auto signal = pb::adopt( pbSignalCreate() );
    std::vector<pb::Ref<pbSignalable>> others;
    for ( int i = 0; i < state.range( 0 ); ++i ) {
        others.push_back( pb::adopt( pbSignalableCreateBarrier( barrier.get() ) ) );
        pbSignalAddSignalable( signal.get(), others.back().get() );
    }
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    for ( auto _ : state ) {
        pbSignalAddSignalable( signal.get(), signalable.get() );
        pbSignalDelSignalable( signal.get(), signalable.get() );
    }
}
BENCHMARK( signalAddAndDelete )->Arg( 0 )->Arg( 15 )->Arg( 16384 );

// The alert of a queue that gets and loses its only item, observed by nobody or by one.
void alertSetAndUnset( benchmark::State &state )
{
    const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
    const auto alertable = pb::adopt( pbAlertableCreateBarrier( barrier.get() ) );
    const auto alert = pb::adopt( pbAlertCreate() );
    if ( state.range( 0 ) )
        pbAlertAddAlertable( alert.get(), alertable.get() );
    for ( auto _ : state ) {
        pbAlertSet( alert.get() );
        pbAlertUnset( alert.get() );
    }
}
BENCHMARK( alertSetAndUnset )->Arg( 0 )->Arg( 1 );

void alertSetWhileSet( benchmark::State &state )
{
    const auto alert = pb::adopt( pbAlertCreate() );
    pbAlertSet( alert.get() );
    for ( auto _ : state )
        pbAlertSet( alert.get() );
}
BENCHMARK( alertSetWhileSet );

void barrierBlockAndUnblock( benchmark::State &state )
{
    const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
    for ( auto _ : state ) {
        pbBarrierBlock( barrier.get() );
        pbBarrierUnblock( barrier.get() );
    }
}
BENCHMARK( barrierBlockAndUnblock );

// There and back between two threads that sleep for each other.
void barrierHandover( benchmark::State &state )
{
    const auto there = pb::adopt( pbBarrierCreate( 1 ) ), back = pb::adopt( pbBarrierCreate( 1 ) );
    std::atomic<bool> end{ false };
    std::thread partner( [&] {
        for ( ;; ) {
            pbBarrierPass( there.get() );
            if ( end )
                return;
            pbBarrierBlock( there.get() );
            pbBarrierUnblock( back.get() );
        }
    } );
    for ( auto _ : state ) {
        pbBarrierUnblock( there.get() );
        pbBarrierPass( back.get() );
        pbBarrierBlock( back.get() );
    }
    end = true;
    pbBarrierUnblock( there.get() );
    partner.join();
}
BENCHMARK( barrierHandover )->UseRealTime();

// Beside that many others, none of which comes due.
void timerScheduleAndUnschedule( benchmark::State &state )
{
    constexpr pbInt hour = 3'600'000;
    const auto barrier = pb::adopt( pbBarrierCreate( 0 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    std::vector<pb::Ref<pbTimer>> timers;
    for ( int i = 0; i <= state.range( 0 ); ++i )
        pbTimerSchedule( timers.emplace_back( pb::adopt( pbTimerCreate( signalable.get() ) ) ).get(), hour + i );
    for ( auto _ : state ) {
        pbTimerSchedule( timers.back().get(), 2 * hour );
        pbTimerUnschedule( timers.back().get() );
    }
}
BENCHMARK( timerScheduleAndUnschedule )->Arg( 1 )->Arg( 1024 );

} // namespace
