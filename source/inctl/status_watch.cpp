// StatusWatch: what the objects of a configuration say of their state.
#include "inctl/status_watch.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

std::string itemsText( const struct pbStore *items )
{
    std::string text;
    for ( pbInt i = 0; i < pbStoreLength( items ); ++i )
        if ( pbStoreIsValueAt( items, i ) )
            text += fmt::format( "  {}={}", pb::utf8( pb::adopt( pbStoreKeyAt( items, i ) ) ),
                                 pb::utf8( pb::adopt( pbStoreValueAt( items, i ) ) ) );
    return text;
}

} // namespace

StatusWatch::StatusWatch( const Configuration &configuration, const Waiter &waiter ) : waiter_( waiter )
{
    for ( Configuration::Object &object : configuration.objects() ) {
        nameWidth_ = std::max( nameWidth_, object.name.size() );
        sortWidth_ = std::max( sortWidth_, object.sort.size() );
        watched_.push_back( { std::move( object ), false, false, {} } );
    }
}

StatusWatch::~StatusWatch()
{
    for ( const Watched &watched : watched_ )
        if ( watched.object.status )
            csStatusReporterUpdateDelSignalable( watched.object.status.get(), waiter_.signalable() );
}

void StatusWatch::showChanges( Output &output )
{
    for ( Watched &watched : watched_ )
        if ( look( watched ) )
            show( output, watched );
}

// Registers before it reads, so that nothing is missed. True when there is something new.
bool StatusWatch::look( Watched &watched ) const
{
    struct csStatusReporter *status = watched.object.status.get();
    bool changed = !std::exchange( watched.shown, true );
    if ( !status )
        return changed;
    csStatusReporterUpdateAddSignalable( status, waiter_.signalable() );
    const bool up = csStatusReporterUp( status );
    auto items = pb::adopt( csStatusReporterItems( status ) );
    changed |= up != watched.up || items != watched.items;
    watched.up = up;
    watched.items = std::move( items );
    return changed;
}

void StatusWatch::show( Output &output, const Watched &watched ) const
{
    const Configuration::Object &object = watched.object;
    Record record = Record()
                        .set( "event", "status" )
                        .set( "time", timeStamp() )
                        .set( "name", object.name )
                        .set( "sort", object.sort )
                        .set( "created", bool( object.object ) );
    if ( object.status )
        record.set( "up", watched.up ).set( "items", watched.items );
    output.record( record );

    const char *state = !object.object ? "not created" : !object.status ? "ready" : watched.up ? "up" : "down";
    const Paint paint = !object.object || ( object.status && !watched.up ) ? Paint::Bad : Paint::Good;
    output.line( fmt::format( "{}  {:<{}}  {:<{}}  {}{}", timeOfDay(), object.name, nameWidth_, object.sort, sortWidth_,
                              output.paint( paint, fmt::format( "{:<5}", state ) ),
                              watched.items ? itemsText( watched.items.get() ) : "" ) );
}

} // namespace inctl
