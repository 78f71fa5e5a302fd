// StatusWatch: what the objects of a configuration say of their state.
#include "inctl/status_watch.hpp"

#include "inctl/records.hpp"

#include <unordered_set>

namespace inctl {

StatusWatch::StatusWatch( const Configuration &configuration, struct pbSignalable *objects, struct pbSignalable *states,
                          ObjectState ( *stateOf )( const struct csRecord *record ) )
    : configuration_( configuration ), objects_( pb::share( objects ) ), states_( pb::share( states ) ),
      stateOf_( stateOf )
{
}

StatusWatch::~StatusWatch()
{
    close();
}

bool StatusWatch::watch( Watched &watched, const struct csRecord *record )
{
    Watched now{ {}, pb::adopt( csRecordStatus( record ) ), conditionOf( record ) };
    // What the record had before may live on, and its changes are no longer the record's.
    if ( !now.status.is( watched.status ) || !now.condition.is( watched.condition ) )
        withdraw( watched );
    if ( now.status )
        csStatusReporterUpdateAddSignalable( now.status.get(), states_.get() );
    if ( now.condition )
        csConditionUpdateAddSignalable( now.condition.get(), states_.get() );
    now.state = stateOf_( record );
    const bool changed = now.state != watched.state;
    watched = std::move( now );
    return changed;
}

void StatusWatch::withdraw( const Watched &watched ) const
{
    if ( watched.status )
        csStatusReporterUpdateDelSignalable( watched.status.get(), states_.get() );
    if ( watched.condition )
        csConditionUpdateDelSignalable( watched.condition.get(), states_.get() );
}

std::vector<std::string> StatusWatch::look()
{
    open_ = true;
    csConfigurationUpdateAddSignalable( configuration_.configuration(), objects_.get() );
    std::vector<std::string> changed;
    std::unordered_set<std::string> there;
    order_.clear();
    for ( const auto &record : recordsOf( configuration_.configuration() ) ) {
        std::string name = pb::utf8( pb::adopt( csRecordName( record.get() ) ) );
        if ( watch( watched_[name], record.get() ) )
            changed.push_back( name );
        there.insert( name );
        order_.push_back( std::move( name ) );
    }
    std::erase_if( watched_, [&]( const auto &entry ) {
        if ( there.contains( entry.first ) )
            return false;
        withdraw( entry.second );
        changed.push_back( entry.first );
        return true;
    } );
    return changed;
}

void StatusWatch::close()
{
    if ( !std::exchange( open_, false ) )
        return;
    csConfigurationUpdateDelSignalable( configuration_.configuration(), objects_.get() );
    for ( const auto &[name, watched] : watched_ )
        withdraw( watched );
    watched_.clear();
    order_.clear();
}

const ObjectState *StatusWatch::find( const std::string &name ) const
{
    const auto found = watched_.find( name );
    return found == watched_.end() ? nullptr : &found->second.state;
}

std::vector<std::string> StatusWatch::names() const
{
    return order_;
}

} // namespace inctl
