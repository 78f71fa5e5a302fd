// StatusWatch: what the objects of a configuration say of their state.
#include "inctl/status_watch.hpp"

#include "cs/cs_condition.h"

#include <algorithm>
#include <map>

namespace inctl {
namespace {

struct csCondition *conditionOf( const Configuration::Object &object )
{
    const bool is = object.object && pbObjSort( object.object.get() ) == csConditionSort();
    return is ? csConditionFrom( object.object.get() ) : nullptr;
}

} // namespace

StatusWatch::StatusWatch( const Configuration &configuration, const Waiter &waiter )
    : configuration_( configuration ), waiter_( waiter )
{
}

StatusWatch::~StatusWatch()
{
    csConfigurationUpdateDelSignalable( configuration_.configuration(), waiter_.signalable() );
    for ( const Watched &watched : watched_ )
        detach( watched );
}

// Registers before it reads, so that nothing is missed.
std::vector<ObjectState> StatusWatch::changes()
{
    csConfigurationUpdateAddSignalable( configuration_.configuration(), waiter_.signalable() );
    follow();
    std::vector<ObjectState> changes;
    for ( Watched &watched : watched_ ) {
        attach( watched );
        ObjectState state = objectState( watched.object );
        if ( std::exchange( watched.fresh, false ) || watched.state != state ) {
            watched.state = std::move( state );
            changes.push_back( watched.state );
        }
    }
    return changes;
}

std::vector<ObjectState> StatusWatch::states() const
{
    std::vector<ObjectState> states;
    for ( const Watched &watched : watched_ )
        states.push_back( watched.state );
    return states;
}

// Takes over the records as they are now. A record that still has its object keeps what was seen of it.
void StatusWatch::follow()
{
    std::map<std::string, Watched> before;
    for ( Watched &watched : std::exchange( watched_, {} ) ) {
        std::string name = watched.object.name;
        before.emplace( std::move( name ), std::move( watched ) );
    }
    for ( Configuration::Object &object : configuration_.objects() ) {
        const auto known = before.find( object.name );
        if ( known != before.end() && known->second.object.object.is( object.object ) &&
             known->second.object.sort == object.sort ) {
            watched_.push_back( std::move( known->second ) );
            before.erase( known );
        }
        else
            watched_.push_back( { std::move( object ), {}, true } );
    }
    for ( const auto &[name, gone] : before )
        detach( gone );
}

void StatusWatch::attach( const Watched &watched ) const
{
    if ( const auto &status = watched.object.status )
        csStatusReporterUpdateAddSignalable( status.get(), waiter_.signalable() );
    if ( struct csCondition *condition = conditionOf( watched.object ) )
        csConditionUpdateAddSignalable( condition, waiter_.signalable() );
}

void StatusWatch::detach( const Watched &watched ) const
{
    if ( const auto &status = watched.object.status )
        csStatusReporterUpdateDelSignalable( status.get(), waiter_.signalable() );
    if ( struct csCondition *condition = conditionOf( watched.object ) )
        csConditionUpdateDelSignalable( condition, waiter_.signalable() );
}

} // namespace inctl
