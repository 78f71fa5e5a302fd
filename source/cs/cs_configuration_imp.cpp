// The records of a configuration and their live objects: starting, stopping, and becoming what another one says.
#include "cs/cs_configuration_imp_internal.h"

#include "cs/cs_records_change_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_vector.h"

#include <cstdlib>

PB_OBJECT_DEFINE( csConfiguration, cs___sort_CS_CONFIGURATION )

namespace cs {

std::string canonicalPath( const std::string &path )
{
    const std::unique_ptr<char, decltype( &std::free )> real( ::realpath( path.c_str(), nullptr ), std::free );
    return real ? real.get() : path;
}

Loaded loadedFrom( ParsedConfiguration parsed, const std::string &path, std::string text )
{
    Loaded loaded;
    for ( Record &record : parsed.records ) {
        auto live = pb::make<struct csRecord>();
        live->name = std::move( record.name );
        live->sort = std::move( record.sort );
        live->optionalStore = std::move( record.optionalStore );
        loaded.records.push_back( std::move( live ) );
    }
    loaded.source = std::make_shared<Source>(
        Source{ path, canonicalPath( path ), std::move( text ), std::move( parsed.modules ) } );
    return loaded;
}

namespace {

LiveRecords withoutObjects( const LiveRecords &records )
{
    LiveRecords result = records;
    for ( auto &record : result )
        if ( record->optionalObject )
            pb::edit( record.address() ).optionalObject.reset();
    return result;
}

} // namespace
} // namespace cs

csConfiguration::csConfiguration( cs::Loaded loaded )
    : stream( pb::adopt( trStreamCreateCstr( "CS_CONFIGURATION", -1 ) ) ), records( std::move( loaded.records ) ),
      source( std::move( loaded.source ) )
{
}

csConfiguration::~csConfiguration()
{
    stop();
}

cs::Loaded csConfiguration::current() const
{
    pb::Guard guard( monitor );
    return { records, source };
}

void csConfiguration::start()
{
    const cs::TurnTaken taken( turn );
    if ( !std::exchange( started, true ) )
        makeLive( currentRecords(), nullptr );
}

void csConfiguration::stop()
{
    const cs::TurnTaken taken( turn );
    if ( !std::exchange( started, false ) )
        return;
    cs::Loaded was = current();
    cs::LiveRecords stopped = cs::withoutObjects( was.records );
    cs::RecordsChange change( stream.get(), std::move( was.records ), {} );
    publish( std::move( stopped ), was.source );
    change.releaseOthers();
}

void csConfiguration::apply( const cs::Loaded &next, struct pbVector **optionalChanges )
{
    const cs::TurnTaken taken( turn );
    applyNow( next, optionalChanges );
}

void csConfiguration::applyNow( const cs::Loaded &next, struct pbVector **optionalChanges )
{
    publish( currentRecords(), next.source );
    if ( started )
        return makeLive( next.records, optionalChanges );
    publish( cs::withoutObjects( next.records ), next.source );
    cs::setVector( optionalChanges, pb::adopt( pbVectorCreate() ) );
}

void csConfiguration::makeLive( const cs::LiveRecords &next, struct pbVector **optionalChanges )
{
    cs::Loaded was = current();
    cs::RecordsChange change( stream.get(), std::move( was.records ), next ); // the only one to hold what it releases
    publish( change.kept(), was.source );
    change.releaseOthers();
    publish( change.makeNext(), was.source );
    cs::setVector( optionalChanges, change.changes() );
}

void csConfiguration::publish( cs::LiveRecords next, std::shared_ptr<const cs::Source> nextSource )
{
    pb::Ref<struct pbSignal> over; // dropped after the monitor, as what is replaced
    pb::Guard guard( monitor );
    source.swap( nextSource );
    const bool same = std::equal( next.begin(), next.end(), records.begin(), records.end(),
                                  []( const auto &a, const auto &b ) { return a.is( b ); } );
    if ( same )
        return;
    records.swap( next );
    pbSignalAssert( update.get() );
    over = std::exchange( update, pb::adopt( pbSignalCreate() ) );
}
