// Watchdog: a process of the scheduler between the clock and the service manager.
#include "inctl/watchdog.hpp"

#include "pb/pb_signalable.h"

#include <atomic>

PB_SORT_DECLARE( inctl___sort_INCTL_PROBE )

namespace inctl {

struct Probe final : pb::Object<Probe, inctl___sort_INCTL_PROBE> {
    explicit Probe( struct pbSignalable *wakes ) : signalable( pb::share( wakes ) ) {}

    const pb::Ref<struct pbSignalable> signalable;
    std::atomic<bool> ran = false;

    static void run( struct pbObj *argument )
    {
        Probe &probe = *static_cast<Probe *>( argument );
        probe.ran = true;
        pbSignalableSignal( probe.signalable.get() );
    }
};

Watchdog::Watchdog( ServiceManager &manager, const Waiter &waiter )
    : manager_( manager ), probe_( pb::make<Probe>( waiter.signalable() ) ),
      // The priority of stacks: it waits for what they wait for.
      process_( pb::adopt( prProcessCreateWithPriorityCstr( 1, Probe::run, probe_.get(), "inctl watchdog", -1 ) ) )
{
    if ( interval_ )
        next_ = Clock::now();
}

Watchdog::~Watchdog()
{
    prProcessHalt( process_.get() );
    prProcessEndWait( process_.get() );
}

void Watchdog::beat()
{
    if ( probe_->ran.exchange( false ) )
        manager_.alive();
    if ( const auto now = Clock::now(); next_ && *next_ <= now ) {
        next_ = now + *interval_;
        prProcessSchedule( process_.get() );
    }
}

} // namespace inctl

constinit const pbSort inctl___sort_INCTL_PROBE = pb::detail::makeSort<inctl::Probe>( "INCTL_PROBE" );
