// Keeps the live objects of all running configurations by name, and tells the watches of a name what becomes of it.
#include "cs/cs_records_internal.h"

#include "cs/cs_condition.h"

namespace cs {

Records &Records::instance()
{
    static Records &records = *new Records; // never destroyed: objects may go while the process ends
    return records;
}

void Records::appear( const std::string &name, const pb::Ref<struct pbObj> &obj )
{
    Dropped dropped;
    pb::Guard guard( monitor );
    objects.emplace( name, obj );
    resolveWatches( name, dropped );
}

void Records::go( const std::string &name, const pb::Ref<struct pbObj> &obj )
{
    Dropped dropped;
    pb::Guard guard( monitor );
    const auto [begin, end] = objects.equal_range( name );
    for ( auto entry = begin; entry != end; ++entry )
        if ( entry->second.is( obj ) ) {
            dropped.push_back( std::move( entry->second ) );
            objects.erase( entry );
            break;
        }
    resolveWatches( name, dropped );
}

void Records::valueChanged( const struct pbObj *obj )
{
    Dropped dropped;
    pb::Guard guard( monitor );
    for ( auto entry = followers.lower_bound( { obj, nullptr } ); entry != followers.end() && entry->first == obj;
          ++entry )
        entry->second->changed( dropped );
}

void Records::resolveWatches( const std::string &name, Dropped &dropped )
{
    for ( auto entry = watches.lower_bound( { name, nullptr } ); entry != watches.end() && entry->first == name;
          ++entry )
        entry->second->resolve( dropped );
}

pb::Ref<struct pbObj> Records::find( const std::string &name, const struct pbSort *sort ) const
{
    const auto [begin, end] = objects.equal_range( name );
    for ( auto entry = begin; entry != end; ++entry )
        if ( pbObjSort( entry->second.get() ) == sort )
            return entry->second;
    return nullptr;
}

void Watch::configure( const std::string &optionalName, pb::Ref<struct pbObj> optionalGiven )
{
    Records &records = Records::instance();
    Records::Dropped dropped;
    pb::Guard guard( Records::monitor );
    const bool wasConfigured = given_ || !name_.empty();
    if ( !name_.empty() )
        records.watches.erase( { name_, this } );
    name_ = optionalName;
    if ( !name_.empty() )
        records.watches.insert( { name_, this } );
    std::swap( given_, optionalGiven );
    dropped.push_back( std::move( optionalGiven ) );
    if ( wasConfigured != ( given_ || !name_.empty() ) )
        changed( dropped );
    resolve( dropped );
}

Watch::State Watch::state() const
{
    pb::Guard guard( Records::monitor );
    return { given_ || !name_.empty(), object_ };
}

void Watch::addSignalable( struct pbSignalable *signalable )
{
    pb::Guard guard( Records::monitor );
    pbSignalAddSignalable( update_.get(), signalable );
}

void Watch::delSignalable( struct pbSignalable *signalable )
{
    pb::Guard guard( Records::monitor );
    pbSignalDelSignalable( update_.get(), signalable );
}

void Watch::resolve( Records::Dropped &dropped )
{
    Records &records = Records::instance();
    auto object = given_ ? given_ : name_.empty() ? nullptr : records.find( name_, sort_ );
    if ( object.is( object_ ) )
        return;
    if ( follows_ == Follows::Value && object_ )
        records.followers.erase( { object_.get(), this } );
    if ( follows_ == Follows::Value && object )
        records.followers.insert( { object.get(), this } );
    std::swap( object, object_ );
    dropped.push_back( std::move( object ) );
    changed( dropped );
}

// Asserted under the monitor, so that no notification starts after a Del; whoever is woken registers with the next
// signal before he reads.
void Watch::changed( Records::Dropped &dropped )
{
    pbSignalAssert( update_.get() );
    auto over = std::exchange( update_, pb::adopt( pbSignalCreate() ) );
    dropped.push_back( pb::adopt( pbSignalObj( over.release() ) ) );
}

} // namespace cs
