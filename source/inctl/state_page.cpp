// How the states of a running host are laid out.
#include "inctl/state_page.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace inctl {
namespace {

constexpr size_t gap = 2, detailMinimum = 24;

struct Columns {
    size_t name = std::string_view( "OBJECT" ).size(), sort = std::string_view( "SORT" ).size();
    size_t state = std::string_view( "STATE" ).size();
    size_t detail = 0; // 0: under the object
};

Columns measured( const std::vector<ObjectState> &states, size_t width )
{
    Columns columns;
    for ( const ObjectState &state : states ) {
        columns.name = std::max( columns.name, state.name.size() );
        columns.sort = std::max( columns.sort, state.sort.size() );
        columns.state = std::max( columns.state, std::string_view( state.state ).size() );
    }
    const size_t withoutSort = columns.name + gap + columns.state + gap;
    const auto fits = [width]( size_t taken ) { return taken + detailMinimum <= width; };
    if ( !fits( withoutSort + columns.sort + gap ) )
        columns.sort = 0;
    const size_t taken = withoutSort + ( columns.sort ? columns.sort + gap : 0 );
    columns.detail = fits( taken ) ? width - taken : 0;
    return columns;
}

// The columns before the detail, padded.
std::string row( const Columns &columns, std::string_view name, std::string_view sort, std::string_view state )
{
    std::string text = fmt::format( "{:<{}}", name, columns.name + gap );
    if ( columns.sort )
        text += fmt::format( "{:<{}}", sort, columns.sort + gap );
    return text + fmt::format( "{:<{}}", state, columns.state + gap );
}

void addState( std::vector<PageLine> &lines, const Columns &columns, const ObjectState &state, size_t width )
{
    std::string text = row( columns, state.name, state.sort, state.state );
    const size_t indent = columns.detail ? text.size() : gap;
    const std::string detail = state.detail();
    PageLine first{ std::move( text ), state.paint(), indent, std::string_view( state.state ).size() };
    first.paintAt = first.text.size() - columns.state - gap;
    std::vector<std::string> parts;
    if ( !detail.empty() )
        parts = wrapped( detail, columns.detail ? columns.detail : width > gap ? width - gap : 1 );
    size_t next = 0;
    if ( columns.detail && !parts.empty() )
        first.text += parts[next++];
    lines.push_back( std::move( first ) );
    for ( ; next < parts.size(); ++next )
        lines.push_back( { std::string( indent, ' ' ) + parts[next] } );
}

void addBad( std::vector<PageLine> &lines, const std::string &text, size_t columns )
{
    for ( std::string &part : wrapped( printable( text ), columns ) )
        lines.push_back( { std::move( part ), Paint::Bad } );
}

// Cut to so many lines, the last of which says so.
void cut( std::vector<PageLine> &lines, size_t count, const std::string &rest )
{
    if ( lines.size() <= count )
        return;
    lines.resize( count );
    if ( count > 0 )
        lines.back() = { rest, Paint::Faint };
}

} // namespace

std::vector<std::string> wrapped( const std::string &text, size_t columns )
{
    const auto begins = []( char byte ) { return ( static_cast<unsigned char>( byte ) & 0xC0 ) != 0x80; };
    std::vector<std::string> lines;
    size_t start = 0, blank = 0, points = 0;
    for ( size_t at = 0; at < text.size(); ++at ) {
        if ( text[at] == ' ' )
            blank = at;
        if ( !begins( text[at] ) || ++points <= columns )
            continue;
        const bool hasBlank = blank > start;
        const size_t end = hasBlank ? blank : at;
        lines.push_back( text.substr( start, end - start ) );
        start = hasBlank ? text.find_first_not_of( ' ', blank ) : at;
        if ( start == std::string::npos )
            return lines;
        at = start;
        points = 1;
    }
    lines.push_back( text.substr( start ) );
    return lines;
}

std::string watchText( const std::string &file, const std::string &problem )
{
    if ( problem.empty() )
        return fmt::format( "changes of {} are seen again", printable( file ) );
    return fmt::format( "changes of {} are not seen, SIGHUP re-loads it: {}", printable( file ), problem );
}

std::vector<PageLine> statesTable( const std::vector<ObjectState> &states, size_t width )
{
    const Columns columns = measured( states, width );
    const char *detail = columns.detail ? "DETAIL" : "";
    std::vector<PageLine> lines = { { row( columns, "OBJECT", "SORT", "STATE" ) + detail, Paint::Strong } };
    for ( const ObjectState &state : states )
        addState( lines, columns, state, width );
    return lines;
}

std::vector<PageLine> statePage( const std::vector<ObjectState> &states, const RunBoard::Refusal &refusal,
                                 const std::string &warning, const std::string &footer, size_t columns, size_t rows )
{
    std::vector<PageLine> below = { { "" } };
    if ( !warning.empty() )
        addBad( below, warning, columns );
    if ( refusal.problems.empty() && !footer.empty() )
        below.push_back( { footer, Paint::Faint } );
    if ( !refusal.problems.empty() )
        addBad( below, "The new file was refused; what ran before goes on:", columns );
    for ( const std::string &problem : refusal.problems )
        addBad( below, problem, columns );
    cut( below, std::max<size_t>( rows / 2, 1 ), "... and more" );

    const size_t room = rows > below.size() ? rows - below.size() : 0;
    std::vector<PageLine> page = statesTable( states, columns );
    if ( page.size() > room ) {
        std::vector<ObjectState> ordered;
        for ( const bool good : { false, true } )
            std::copy_if( states.begin(), states.end(), std::back_inserter( ordered ),
                          [good]( const ObjectState &state ) { return state.good == good; } );
        page = statesTable( ordered, columns );
        cut( page, room, fmt::format( "... of {} objects", states.size() ) );
    }
    page.insert( page.end(), std::make_move_iterator( below.begin() ), std::make_move_iterator( below.end() ) );
    return page;
}

} // namespace inctl
