// RunLoop: what wakes a running host, and what it does then.
#include "inctl/run_loop.hpp"

#include <algorithm>
#include <utility>

namespace inctl {
namespace {

ObjectState stateOfRecord( const struct csRecord *record )
{
    return objectState( Configuration::Object( record ) );
}

} // namespace

RunLoop::RunLoop( const Parts &parts )
    : parts_( parts ),
      watch_( parts.configuration, parts.waiter.signalable(), parts.waiter.signalable(), stateOfRecord ),
      watchdog_( manager_, parts.waiter )
{
    parts_.waiter.add( parts_.signals.descriptor() );
    if ( parts_.file.descriptor() >= 0 )
        parts_.waiter.add( parts_.file.descriptor() );
    tellWatch();
}

void RunLoop::run( std::optional<Clock::time_point> deadline )
{
    showStates();
    manager_.ready();
    follow( deadline );
    manager_.stopping();
}

void RunLoop::follow( std::optional<Clock::time_point> deadline )
{
    for ( ;; ) {
        watchdog_.beat();
        showStates();
        parts_.view.show();
        if ( parts_.output.broken() || parts_.waiter.wait( nextTime( deadline ) ) == Waiter::Woken::Stop )
            return;
        if ( deadline && Clock::now() >= *deadline )
            return;
        takeEvents();
    }
}

void RunLoop::showStates()
{
    std::vector<ObjectState> changes, states;
    for ( const std::string &name : watch_.look() )
        if ( const ObjectState *state = watch_.find( name ) ) // else gone
            changes.push_back( *state );
    for ( const std::string &name : watch_.names() )
        states.push_back( *watch_.find( name ) );
    if ( states != *parts_.board.states() )
        parts_.board.setStates( std::move( states ) );
    parts_.view.states( changes );
    manager_.status( parts_.board.summary() );
}

std::optional<RunLoop::Clock::time_point> RunLoop::nextTime( std::optional<Clock::time_point> deadline ) const
{
    std::optional<Clock::time_point> next = deadline;
    for ( const auto &time : { parts_.file.settled(), watchdog_.next(), parts_.view.next() } )
        if ( time )
            next = std::min( next.value_or( *time ), *time );
    return next;
}

void RunLoop::takeEvents()
{
    const ControlSignals::Asked asked = parts_.signals.take();
    if ( asked.resize )
        parts_.view.resized();
    if ( asked.stop )
        parts_.view.suspend();
    parts_.file.take();
    const auto settled = parts_.file.settled();
    if ( asked.reload && parts_.trace )
        parts_.trace->reopen();
    if ( asked.reload || ( settled && *settled <= Clock::now() ) )
        reload();
}

void RunLoop::reload()
{
    manager_.reloading();
    parts_.file.renew(); // before it is read: a change behind that is seen
    Configuration::Reload reload = parts_.configuration.reload();
    const bool refused = !reload.problems.empty();
    parts_.board.setRefusal( { refused ? timeStamp() : "", std::move( reload.problems ) } );
    if ( refused )
        parts_.view.refused( parts_.board.refusal() );
    else
        parts_.view.reloaded( reload.changes );
    showStates(); // with what is new, before it counts as done
    tellWatch();
    manager_.ready();
}

void RunLoop::tellWatch()
{
    if ( std::exchange( watchProblem_, parts_.file.problem() ) != parts_.file.problem() )
        parts_.view.unwatched( watchProblem_ );
}

} // namespace inctl
