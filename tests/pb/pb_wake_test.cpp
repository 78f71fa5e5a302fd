// Barriers, signals, alerts and the wakes between them.
#include "pb/pb_wake.hpp"
#include "pb/pb_alert.h"
#include "pb/pb_barrier.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "support/asleep.hpp"
#include "support/death_table.hpp"

#include <algorithm>
#include <csignal>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

PB_SORT_DECLARE( test___sort_PROBE )

namespace {

// Counts its wakes, and comes back to whatever dropped it last.
struct Probe final : pb::Object<Probe, test___sort_PROBE> {
    int wakes = 0;
    std::function<void()> farewell;

    ~Probe()
    {
        if ( farewell )
            farewell();
    }
    static void wake( pbObj *target ) { ++static_cast<Probe *>( target )->wakes; }
};

} // namespace

constinit const struct pbSort test___sort_PROBE = pb::detail::makeSort<Probe>( "PROBE" );

namespace {

auto signalableOf( const pb::Ref<Probe> &probe ) { return pb::adopt( pb___SignalableCreate( Probe::wake, probe.get() ) ); }
auto alertableOf( const pb::Ref<Probe> &probe ) { return pb::adopt( pb___AlertableCreate( Probe::wake, probe.get() ) ); }
auto barrier( pbInt count ) { return pb::adopt( pbBarrierCreate( count ) ); }

TEST( BarrierDeathTest, Preconditions )
{
    static const auto open = barrier( 0 );
    support::expectDeaths( { { [] { pbBarrierCreate( -1 ); }, "count >= 0" },
                             { [] { pbBarrierBlock( nullptr ); }, "barrier" },
                             { [] { pbBarrierPassTimed( open.get(), -1 ); }, "milliseconds >= 0" },
                             { [] { pbSignalableCreateBarrier( nullptr ); }, "barrier" },
                             { [] { pbSignalAddSignalable( nullptr, nullptr ); }, "signal" },
                             { [] { pbAlertSet( nullptr ); }, "alert" } } );
}

TEST( MonitorDeathTest, RanksAscend )
{
    const auto enter = []( std::initializer_list<int> ranks ) { std::for_each( ranks.begin(), ranks.end(), pb___MonitorRankEnter ); };
    const auto leave = []( std::initializer_list<int> ranks ) { std::for_each( ranks.begin(), ranks.end(), pb___MonitorRankLeave ); };
    enter( { 10, 20, 30 } );
    leave( { 30, 10 } );
    support::expectDeaths( { { [=] { enter( { 10 } ); }, "monitors are taken in ascending rank" },
                             { [=] { enter( { 20 } ); }, "monitors are taken in ascending rank" },
                             { [=] { leave( { 30 } ); }, "a monitor is left by the thread that entered it" } } );
    leave( { 20 } );
    enter( { 10 } );
    leave( { 10 } );
}

volatile sig_atomic_t futexCalls = 0;

// From here on the calling thread's futex calls are counted and not made.
void interceptFutexCalls()
{
    struct sigaction action {};
    action.sa_handler = []( int ) { futexCalls = futexCalls + 1; };
    sigaction( SIGSYS, &action, nullptr );
    sock_filter code[] = { BPF_STMT( BPF_LD | BPF_W | BPF_ABS, offsetof( seccomp_data, nr ) ),
                           BPF_JUMP( BPF_JMP | BPF_JEQ | BPF_K, SYS_futex, 0, 1 ),
                           BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_TRAP ), BPF_STMT( BPF_RET | BPF_K, SECCOMP_RET_ALLOW ) };
    const sock_fprog program{ std::size( code ), code };
    if ( prctl( PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0 ) || prctl( PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program ) )
        _exit( 100 );
}

// The number of system calls, in a process of its own.
TEST( BarrierDeathTest, WakesOnlySleepersAndOncePerBatch )
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

TEST( Barrier, IsOpenAtZero )
{
    const struct {
        pbInt count;
        const char *calls; // b: block, u: unblock
        bool open;
    } table[] = { { 0, "", true },    { 1, "", false },   { 1, "u", true },    { 2, "u", false }, { 0, "b", false },
                  { 1, "uuu", true }, { 1, "uuub", false }, { 0, "bbuu", true }, { 0, "ub", false } };
    for ( const auto &[count, calls, open] : table ) {
        SCOPED_TRACE( calls );
        const auto subject = barrier( count );
        for ( const char *call = calls; *call; ++call )
            ( *call == 'b' ? pbBarrierBlock : pbBarrierUnblock )( subject.get() );
        EXPECT_EQ( pbBarrierPassTimed( subject.get(), 0 ), open );
        EXPECT_EQ( pbBarrierPassTimed( subject.get(), 1 ), open );
    }
}

TEST( Barrier, LetsEverybodyThroughWhateverOpensIt )
{
    using Opener = std::function<void( pbBarrier * subject, pbBarrier * passed )>;
    const Opener openers[] = {
        []( pbBarrier *subject, pbBarrier * ) { pbBarrierUnblock( subject ); },
        []( pbBarrier *subject, pbBarrier * ) {
            const auto signal = pb::adopt( pbSignalCreate() );
            pbSignalAddBarrier( signal.get(), subject );
            pbSignalAssert( signal.get() );
        },
        []( pbBarrier *subject, pbBarrier * ) {
            const auto signalable = pb::adopt( pbSignalableCreateBarrier( subject ) );
            pbSignalableSignal( signalable.get() );
        },
        []( pbBarrier *subject, pbBarrier *passed ) { // the wakes held back are those that it goes on to wait for
            pb___WakesHoldBegin();
            pbBarrierUnblock( subject );
            pbBarrierPass( passed );
            pb___WakesHoldEnd();
        } };
    for ( const Opener &open : openers ) {
        const auto subject = barrier( 1 ), passed = barrier( 2 );
        const auto pass = [&] {
            EXPECT_TRUE( pbBarrierPassTimed( subject.get(), PB_INT_MAX ) );
            pbBarrierUnblock( passed.get() );
        };
        const support::SleepingThread one( pass ), other( pass );
        open( subject.get(), passed.get() );
    }
}

TEST( Signal, WakesEachObserverOnce )
{
    const struct {
        const char *calls; // a: add, d: delete, !: assert
        int wakes;
    } table[] = { { "!", 0 },   { "a", 0 },    { "a!", 1 },  { "aa!", 1 },  { "a!!", 1 },  { "ad!", 0 },  { "aad!", 0 },
                  { "d!", 0 },  { "!a", 1 },   { "!aa", 2 }, { "a!a", 2 },  { "ada!", 1 }, { "!ada", 2 }, { "!d", 0 } };
    for ( const auto &[calls, wakes] : table ) {
        SCOPED_TRACE( calls );
        const auto signal = pb::adopt( pbSignalCreate() );
        const auto probe = pb::make<Probe>();
        const auto signalable = signalableOf( probe );
        for ( const char *call = calls; *call; ++call )
            switch ( *call ) {
            case 'a': pbSignalAddSignalable( signal.get(), signalable.get() ); break;
            case 'd': pbSignalDelSignalable( signal.get(), signalable.get() ); break;
            default: pbSignalAssert( signal.get() );
            }
        EXPECT_EQ( probe->wakes, wakes );
        // An asserted signal keeps nothing.
        EXPECT_TRUE( !pbSignalAsserted( signal.get() ) || !pbObjIsShared( pbSignalableObj( signalable.get() ) ) );
    }
}

TEST( Alert, WakesWhenItTurnsSetAndWhenAddedWhileSet )
{
    const struct {
        const char *calls; // a: add, d: delete, s: set, u: unset
        int wakes;
    } table[] = { { "as", 1 },   { "ass", 1 },  { "asus", 2 }, { "aas", 1 },  { "sa", 1 },   { "saa", 2 },
                  { "asa", 2 },  { "ads", 0 },  { "aads", 0 }, { "sua", 0 },  { "asdus", 1 }, { "dus", 0 } };
    for ( const auto &[calls, wakes] : table ) {
        SCOPED_TRACE( calls );
        const auto alert = pb::adopt( pbAlertCreate() );
        const auto probe = pb::make<Probe>();
        const auto alertable = alertableOf( probe );
        bool set = false;
        for ( const char *call = calls; *call; ++call )
            switch ( *call ) {
            case 'a': pbAlertAddAlertable( alert.get(), alertable.get() ); break;
            case 'd': pbAlertDelAlertable( alert.get(), alertable.get() ); break;
            case 's': pbAlertSet( alert.get() ), set = true; break;
            default: pbAlertUnset( alert.get() ), set = false;
            }
        EXPECT_EQ( probe->wakes, wakes );
        EXPECT_EQ( pbAlertIsSet( alert.get() ), set );
    }
}

// Enough observers for the index, changed on both sides of the bound where it is made and dropped.
TEST( Signal, KeepsManyObserversApart )
{
    for ( const size_t kept : { 0, 5, 9, 30 } ) {
        std::vector<std::pair<pb::Ref<Probe>, pb::Ref<pbSignalable>>> observers;
        const auto signal = pb::adopt( pbSignalCreate() );
        for ( int i = 0; i < 40; ++i ) {
            auto probe = pb::make<Probe>();
            observers.emplace_back( probe, signalableOf( probe ) );
            pbSignalAddSignalable( signal.get(), observers.back().second.get() );
        }
        for ( size_t i = kept; i < observers.size(); ++i )
            pbSignalDelSignalable( signal.get(), observers[i].second.get() );
        for ( size_t i = 0; i < observers.size(); i += 2 )
            pbSignalAddSignalable( signal.get(), observers[i].second.get() );
        pbSignalAssert( signal.get() );
        for ( size_t i = 0; i < observers.size(); ++i )
            EXPECT_EQ( observers[i].first->wakes, i < kept || i % 2 == 0 ) << kept << " " << i;
    }
}

// The last reference to an observer is dropped where its destructor may use the signal or the alert again.
TEST( Signal, DroppedObserversMayComeBack )
{
    int farewells = 0;
    const auto signal = pb::adopt( pbSignalCreate() );
    const auto alert = pb::adopt( pbAlertCreate() );
    const auto other = pb::make<Probe>();
    const auto otherSignalable = signalableOf( other );
    const auto otherAlertable = alertableOf( other );
    const auto leave = [&]( auto add, auto createOf, auto *subject, auto drop ) {
        auto probe = pb::make<Probe>();
        probe->farewell = [&] {
            ++farewells;
            pbSignalAddSignalable( signal.get(), otherSignalable.get() );
            pbSignalDelSignalable( signal.get(), otherSignalable.get() );
            pbAlertAddAlertable( alert.get(), otherAlertable.get() );
        };
        auto observer = createOf( std::exchange( probe, nullptr ) );
        add( subject, observer.get() );
        auto *borrowed = observer.get();
        observer.reset();
        drop( subject, borrowed );
    };
    leave( pbSignalAddSignalable, signalableOf, signal.get(), pbSignalDelSignalable );
    leave( pbSignalAddSignalable, signalableOf, signal.get(), []( pbSignal *subject, auto * ) { pbSignalAssert( subject ); } );
    leave( pbAlertAddAlertable, alertableOf, alert.get(), pbAlertDelAlertable );
    EXPECT_EQ( farewells, 3 );
}

} // namespace
