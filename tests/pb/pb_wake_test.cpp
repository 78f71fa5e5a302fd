// Barriers, signals, alerts and the wakes between them.
#include "pb/pb_wake.hpp"
#include "pb/pb_alert.h"
#include "pb/pb_barrier.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_patience.hpp"
#include "pb/pb_signal.h"
#include "support/asleep.hpp"
#include "support/death_table.hpp"
#include "support/target.hpp"

#include <algorithm>
#include <csignal>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace {

using support::Target, support::signalableOf, support::alertableOf;

auto barrier( pbInt count ) { return pb::adopt( pbBarrierCreate( count ) ); }

TEST( WakeDeathTest, Preconditions )
{
    static const auto open = barrier( 0 );
    support::expectDeaths( { { [] { pbBarrierCreate( -1 ); }, "count >= 0" },
                             { [] { pbBarrierBlock( nullptr ); }, "barrier" },
                             { [] { pbBarrierPassTimed( open.get(), -1 ); }, "milliseconds >= 0" },
                             { [] { pbSignalAddSignalable( nullptr, nullptr ); }, "signal" },
                             { [] { pbAlertSet( nullptr ); }, "alert" } } );
}

TEST( MonitorDeathTest, RanksAscend )
{
    for ( const int rank : { 10, 20, 30 } )
        pb___MonitorRankEnter( rank );
    for ( const int rank : { 30, 10 } )
        pb___MonitorRankLeave( rank );
    support::expectDeaths( {
        { [] { pb___MonitorRankEnter( 10 ); }, "monitors are taken in ascending rank" },
        { [] { pb___MonitorRankEnter( 20 ); }, "monitors are taken in ascending rank" },
        { [] { pb___MonitorRankLeave( 30 ); }, "a monitor is left by the thread that entered it" },
    } );
    pb___MonitorRankLeave( 20 );
    pb___MonitorRankEnter( 10 );
}

volatile sig_atomic_t futexCalls = 0;

// From here on the calling thread's futex calls are counted and not made.
void interceptFutexCalls()
{
    signal( SIGSYS, []( int ) { futexCalls = futexCalls + 1; } );
    sock_filter code[] = { BPF_STMT( BPF_LD | BPF_W | BPF_ABS, offsetof( seccomp_data, nr ) ),
                           BPF_JUMP( BPF_JMP | BPF_JEQ | BPF_K, SYS_futex, 0, 1 ),
                           BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_TRAP ),
                           BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_ALLOW ) };
    const sock_fprog program{ std::size( code ), code };
    if ( prctl( PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0 ) || prctl( PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program ) )
        _exit( 100 );
}

// The number of system calls, in a process of its own.
TEST( WakeDeathTest, WakesOnlySleepersAndOncePerBatch )
{
    const auto countCalls = [] {
        const auto nobody = barrier( 1 ), somebody = barrier( 1 );
        const auto alert = pb::adopt( pbAlertCreate() );
        const auto alertable = pb::adopt( pbAlertableCreateBarrier( somebody.get() ) );
        pbAlertAddAlertable( alert.get(), alertable.get() );
        const support::SleepingThread sleeper( [&] { pbBarrierPass( somebody.get() ); } );
        interceptFutexCalls();
        pbBarrierUnblock( nobody.get() );
        pbBarrierPass( nobody.get() );
        int counts = futexCalls;
        pb___WakesHoldBegin();
        for ( int i = 0; i < 3; ++i ) {
            pbAlertSet( alert.get() );
            counts = 10 * counts + futexCalls + !pbBarrierPassTimed( somebody.get(), 0 );
            pbBarrierBlock( somebody.get() );
            pbAlertUnset( alert.get() );
        }
        pb___WakesHoldEnd();
        _exit( 10 * counts + futexCalls ); // the sleeper's wake was counted, not made
    };
    EXPECT_EXIT( countCalls(), testing::ExitedWithCode( 1 ), "" );
}

TEST( Wakes, AreHeldBackUntilTheFlush )
{
    const auto opens = []( struct pbObj *target ) { pbBarrierUnblock( pbBarrierFrom( target ) ); };
    const auto counted = barrier( 65 ); // one more than are held back at a time
    EXPECT_FALSE( pb___WakesTryHold( opens, pbBarrierObj( counted.get() ) ) );
    pb___WakesHoldBegin();
    for ( int i = 0; i < 65; ++i )
        EXPECT_TRUE( pb___WakesTryHold( opens, pbBarrierObj( counted.get() ) ) );
    EXPECT_FALSE( pbBarrierPassTimed( counted.get(), 0 ) );
    pb___WakesFlush();
    EXPECT_TRUE( pbBarrierPassTimed( counted.get(), 0 ) );
    pb___WakesHoldEnd();
}

TEST( Barrier, IsOpenAtZero )
{
    const struct {
        pbInt count;
        const char *calls; // b: block, u: unblock
        bool open;
    } table[] = { { 0, "", true },    { 1, "", false },     { 1, "u", true },   { 2, "u", false }, { 0, "b", false },
                  { 1, "uuu", true }, { 1, "uuub", false }, { 0, "bbuu", true } };
    for ( const auto &[count, calls, open] : table ) {
        SCOPED_TRACE( calls );
        const auto subject = barrier( count );
        for ( const char *call = calls; *call; ++call )
            ( *call == 'b' ? pbBarrierBlock : pbBarrierUnblock )( subject.get() );
        EXPECT_EQ( pbBarrierPassTimed( subject.get(), 0 ), open );
        EXPECT_EQ( pbBarrierPassTimed( subject.get(), 1 ), open );
    }
}

// The wakes that a thread holds back include those that it goes on to wait for.
TEST( Barrier, LetsAllSleepersThroughWhenItsSignalIsAsserted )
{
    const auto subject = barrier( 1 ), passed = barrier( 2 );
    const auto signal = pb::adopt( pbSignalCreate() );
    pbSignalAddBarrier( signal.get(), subject.get() );
    const auto pass = [&] {
        EXPECT_TRUE( pbBarrierPassTimed( subject.get(), PB_INT_MAX ) );
        pbBarrierUnblock( passed.get() );
    };
    const support::SleepingThread one( pass ), other( pass );
    const pb::WakeHold hold;
    pbSignalAssert( signal.get() );
    pbBarrierPass( passed.get() );
}

TEST( Patience, LooksWhereItPaysAndHardlyEverElsewhere )
{
    pb::Patience patience;
    constexpr int waits = 20'000;
    const auto looks = [&]( pb::Patience::Outcome outcome ) {
        int count = 0;
        for ( int wait = 0; wait < waits; ++wait )
            if ( patience.worthwhile() ) {
                patience.judge( outcome );
                ++count;
            }
        return count;
    };
    EXPECT_LT( looks( pb::Patience::failed ), waits / 1'000 );
    EXPECT_GT( looks( pb::Patience::paid ), waits / 2 );
    EXPECT_LT( looks( pb::Patience::failed ), waits / 1'000 ) << "what paid once is given up";
    EXPECT_GT( looks( pb::Patience::paid ), waits / 2 );
    EXPECT_LT( looks( pb::Patience::robbed ), waits / 500 ) << "and at once where others compute";
    EXPECT_TRUE( patience.look( [] { return true; } ) );
    EXPECT_FALSE( patience.look( [] { return false; } ) ) << "a look ends";
}

TEST( SignalAndAlert, WakeOnceForEachEvent )
{
    const struct {
        const char *calls; // of a signal: + add, - delete, ! assert; of an alert: a add, d delete, s set, u unset
        int wakes;
    } table[] = { { "++!!", 1 }, { "+", 0 },    { "+-!", 0 },  { "++-!", 0 }, { "-!", 0 },  { "!+", 1 },
                  { "!++", 2 },  { "+!+", 2 },  { "+-+!", 1 }, { "!+-+", 2 }, { "!-", 0 },  { "ass", 1 },
                  { "asus", 2 }, { "aas", 1 },  { "sa", 1 },   { "saa", 2 },  { "asa", 2 }, { "aads", 0 },
                  { "sua", 0 },  { "asdus", 1 }, { "dus", 0 } };
    for ( const auto &[calls, wakes] : table ) {
        SCOPED_TRACE( calls );
        const auto target = pb::make<Target>();
        const auto signal = pb::adopt( pbSignalCreate() );
        const auto signalable = signalableOf( target );
        const auto alert = pb::adopt( pbAlertCreate() );
        const auto alertable = alertableOf( target );
        for ( const char *call = calls; *call; ++call )
            switch ( *call ) {
            case '+': pbSignalAddSignalable( signal.get(), signalable.get() ); break;
            case '-': pbSignalDelSignalable( signal.get(), signalable.get() ); break;
            case '!': pbSignalAssert( signal.get() ); break;
            case 'a': pbAlertAddAlertable( alert.get(), alertable.get() ); break;
            case 'd': pbAlertDelAlertable( alert.get(), alertable.get() ); break;
            case 's': pbAlertSet( alert.get() ); break;
            default: pbAlertUnset( alert.get() );
            }
        EXPECT_EQ( target->wakes, wakes );
    }
}

// Enough observers for the index, changed on both sides of the bound where it is made and dropped.
TEST( Signal, KeepsManyObserversApart )
{
    for ( const size_t kept : { 0, 5, 9, 30 } ) {
        const auto signal = pb::adopt( pbSignalCreate() );
        std::vector<pb::Ref<Target>> targets( 40 );
        std::vector<pb::Ref<pbSignalable>> signalables;
        for ( auto &target : targets ) {
            target = pb::make<Target>();
            pbSignalAddSignalable( signal.get(), signalables.emplace_back( signalableOf( target ) ).get() );
        }
        for ( size_t i = kept; i < targets.size(); ++i )
            pbSignalDelSignalable( signal.get(), signalables[i].get() );
        for ( size_t i = 0; i < targets.size(); i += 2 )
            pbSignalAddSignalable( signal.get(), signalables[i].get() );
        pbSignalAssert( signal.get() );
        for ( size_t i = 0; i < targets.size(); ++i )
            EXPECT_EQ( targets[i]->wakes, i < kept || i % 2 == 0 ) << kept << " " << i;
    }
}

// The last reference to an observer is dropped where its destructor may use the signal or the alert again, and never by
// an assertion, whose caller may hold monitors.
TEST( Signal, DroppedObserversMayComeBack )
{
    int returns = 0;
    const auto signal = pb::adopt( pbSignalCreate() );
    const auto alert = pb::adopt( pbAlertCreate() );
    const auto returning = [&] {
        auto target = pb::make<Target>();
        target->onFree = [&, other = pb::make<Target>()] {
            ++returns;
            pbSignalAddSignalable( signal.get(), signalableOf( other ).get() );
            pbAlertAddAlertable( alert.get(), alertableOf( other ).get() );
        };
        return target;
    };
    pbSignalable *const deleted = signalableOf( returning() ).release();
    pbSignalAddSignalable( signal.get(), deleted );
    pbSignalableRelease( deleted );
    pbSignalDelSignalable( signal.get(), deleted );
    pbAlertable *const alerted = alertableOf( returning() ).release();
    pbAlertAddAlertable( alert.get(), alerted );
    pbAlertableRelease( alerted );
    pbAlertDelAlertable( alert.get(), alerted );
    auto over = pb::adopt( pbSignalCreate() );
    pbSignalAddSignalable( over.get(), signalableOf( returning() ).get() );
    pbSignalAssert( over.get() );
    EXPECT_EQ( returns, 2 );
    over.reset();
    EXPECT_EQ( returns, 3 );
}

} // namespace
