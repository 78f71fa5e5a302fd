// RunLines: the events of a running host, a line or a record each.
#include "inctl/run_lines.hpp"

#include "inctl/state_page.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

Record event( const char *kind, const std::string &time = timeStamp() )
{
    return Record().set( "event", kind ).set( "time", time );
}

std::string count( size_t number, const char *what )
{
    return fmt::format( "{} {}{}", number, what, number == 1 ? "" : "s" );
}

} // namespace

void RunLines::states( const std::vector<ObjectState> &changes )
{
    if ( !changes.empty() )
        measure();
    for ( const ObjectState &state : changes )
        showState( state );
}

void RunLines::reloaded( const std::vector<Configuration::Change> &changes )
{
    for ( const Configuration::Change &change : changes ) {
        output_.line( fmt::format( "{}  {:<{}}  {:<{}}  {}", timeOfDay(), change.name, nameWidth_, change.sort,
                                   sortWidth_, change.what ) );
        output_.record( event( "record" )
                            .set( "name", change.name )
                            .set( "sort", change.sort )
                            .set( "change", change.what ) );
    }
    const std::string what = changes.empty() ? "nothing changed" : count( changes.size(), "record" ) + " changed";
    output_.line( fmt::format( "{}  re-loaded {}, {}", timeOfDay(), printable( configuration_.path() ), what ) );
    output_.record( event( "reloaded" ).set( "file", configuration_.path() ).set( "changes", changes.size() ) );
}

void RunLines::refused( const RunBoard::Refusal &refusal )
{
    Record problems;
    std::string lines;
    for ( const std::string &problem : refusal.problems ) {
        problems.append( pb::string( problem ) );
        lines += problem + "\n";
    }
    complain( lines );
    const std::string what = fmt::format( "refused {}, {}; what ran before goes on", printable( configuration_.path() ),
                                          count( refusal.problems.size(), "problem" ) );
    output_.line( fmt::format( "{}  {}", timeOfDay(), output_.paint( Paint::Bad, what ) ) );
    output_.record( event( "refused", refusal.time ).set( "file", configuration_.path() ).set( "problems", problems ) );
}

void RunLines::unwatched( const std::string &problem )
{
    complain( "inctl: " + watchText( configuration_.path(), problem ) + "\n" );
    Record record = event( problem.empty() ? "watched" : "unwatched" ).set( "file", configuration_.path() );
    if ( !problem.empty() )
        record.set( "reason", problem );
    output_.record( record );
}

void RunLines::ending( std::chrono::milliseconds elapsed )
{
    const auto milliseconds = elapsed.count();
    output_.line( fmt::format( "{}  ending after {:.1f} s", timeOfDay(), static_cast<double>( milliseconds ) / 1000 ) );
    output_.record( event( "ending" ).set( "milliseconds", milliseconds ) );
}

// Columns only grow, so that lines stay under each other.
void RunLines::measure()
{
    for ( const ObjectState &state : *board_.states() ) {
        nameWidth_ = std::max( nameWidth_, state.name.size() );
        sortWidth_ = std::max( sortWidth_, state.sort.size() );
    }
}

void RunLines::showState( const ObjectState &state )
{
    output_.record( state.record( event( "status" ) ) );
    const std::string detail = state.detail();
    output_.line( fmt::format( "{}  {:<{}}  {:<{}}  {}{}{}", timeOfDay(), state.name, nameWidth_, state.sort,
                               sortWidth_, output_.paint( state.paint(), fmt::format( "{:<5}", state.state ) ),
                               detail.empty() ? "" : "  ", detail ) );
}

} // namespace inctl
