// LiveTable: a table that is redrawn in place.
#include "inctl/live_table.hpp"

#include <fmt/format.h>

namespace inctl {
namespace {

// Nobody reads faster, and a host whose states flap is not to spend its time on the terminal.
constexpr std::chrono::milliseconds pause{ 100 };

// No signal tells that the shell has brought what ran in the background to the front.
constexpr std::chrono::milliseconds look{ 250 };

} // namespace

LiveTable::LiveTable( Output &output, const Configuration &configuration, const RunBoard &board )
    : output_( output ), configuration_( configuration ), board_( board ),
      footer_( fmt::format( "{}  running {}; Ctrl-C ends", timeOfDay(), printable( configuration.path() ) ) )
{
    screen_.emplace( output_ );
}

void LiveTable::states( const std::vector<ObjectState> &changes )
{
    if ( !changes.empty() )
        touch();
}

void LiveTable::reloaded( const std::vector<Configuration::Change> &changes )
{
    const std::string what = changes.empty()       ? "nothing changed"
                             : changes.size() == 1 ? fmt::format( "{} {}", changes[0].name, changes[0].what )
                                                   : fmt::format( "{} records changed", changes.size() );
    footer_ = fmt::format( "{}  re-loaded {}, {}", timeOfDay(), printable( configuration_.path() ), what );
    touch();
}

void LiveTable::refused( const RunBoard::Refusal &refusal )
{
    if ( !isatty( STDERR_FILENO ) ) // else it is this very terminal
        complain( fmt::format( "{}\n", fmt::join( refusal.problems, "\n" ) ) );
    touch();
}

void LiveTable::unwatched( const std::string &problem )
{
    const std::string text = watchText( configuration_.path(), problem );
    if ( !isatty( STDERR_FILENO ) ) // else it is this very terminal
        complain( "inctl: " + text + "\n" );
    warning_ = problem.empty() ? "" : text;
    touch();
}

void LiveTable::ending( std::chrono::milliseconds elapsed )
{
    screen_.reset();
    const std::string last = fmt::format( "ending after {:.1f} s", static_cast<double>( elapsed.count() ) / 1000 );
    const auto states = board_.states();
    const RunBoard::Refusal refusal = board_.refusal();
    const size_t columns = Screen::size().columns;
    for ( const PageLine &line : refusal.problems.empty() && warning_.empty()
                                     ? statesTable( *states, columns )
                                     : statePage( *states, refusal, warning_, "", columns, std::string::npos ) )
        output_.line( shown( line ) );
    output_.line( fmt::format( "{}  {}", timeOfDay(), last ) );
}

void LiveTable::suspend()
{
    screen_->suspend();
    touch();
}

void LiveTable::touch()
{
    next_ = next_.value_or( std::max( Clock::now(), drawn_ + pause ) );
}

void LiveTable::show()
{
    if ( !next_ || Clock::now() < *next_ )
        return;
    if ( !Screen::inFront() ) {
        next_ = Clock::now() + look;
        return;
    }
    next_.reset();
    drawn_ = Clock::now();
    const Screen::Size size = Screen::size();
    std::vector<std::string> lines;
    for ( const PageLine &line : statePage( *board_.states(), board_.refusal(), warning_, footer_, size.columns,
                                            size.rows ) )
        lines.push_back( shown( line ) );
    screen_->draw( lines );
}

std::string LiveTable::shown( const PageLine &line ) const
{
    const size_t length = line.paintLength ? line.paintLength : line.text.size();
    return line.text.substr( 0, line.paintAt ) + output_.paint( line.paint, line.text.substr( line.paintAt, length ) ) +
           line.text.substr( line.paintAt + length );
}

} // namespace inctl
