// The names that a misspelt one was probably meant to be.
#include "inctl/nearest.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {
namespace {

// Optimal string alignment: insertions, deletions, substitutions and swaps of neighbours, each costing one.
size_t distance( std::string_view a, std::string_view b )
{
    std::vector<std::vector<size_t>> cost( a.size() + 1, std::vector<size_t>( b.size() + 1 ) );
    for ( size_t i = 0; i <= a.size(); ++i )
        cost[i][0] = i;
    for ( size_t j = 0; j <= b.size(); ++j )
        cost[0][j] = j;
    for ( size_t i = 1; i <= a.size(); ++i )
        for ( size_t j = 1; j <= b.size(); ++j ) {
            const size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
            cost[i][j] = std::min( { cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + wrong } );
            if ( i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1] )
                cost[i][j] = std::min( cost[i][j], cost[i - 2][j - 2] + 1 );
        }
    return cost[a.size()][b.size()];
}

std::string joined( const std::vector<std::string> &names, std::string_view last )
{
    std::string text;
    for ( size_t i = 0; i < names.size(); ++i )
        text += fmt::format( "{}{}", i == 0 ? "" : i + 1 == names.size() ? last : ", ", names[i] );
    return text;
}

} // namespace

std::vector<std::string> nearestNames( std::string_view name, const std::vector<std::string> &names )
{
    // What is typed comes from the command line: a bound keeps the quadratic comparison small.
    const std::string_view typed = name.substr( 0, 64 );
    const size_t allowed = std::max<size_t>( 2, typed.size() / 3 );
    std::vector<std::pair<size_t, std::string>> near;
    for ( const std::string &candidate : names ) {
        const size_t errors = distance( typed, candidate );
        const bool begun = typed.size() >= 2 && candidate.starts_with( typed );
        if ( begun || ( errors <= allowed && errors < std::max( typed.size(), candidate.size() ) ) )
            near.emplace_back( begun ? 1 : errors, candidate );
    }
    std::sort( near.begin(), near.end() );
    std::vector<std::string> result;
    for ( size_t i = 0; i < near.size() && i < 3 && near[i].first <= near[0].first + 1; ++i )
        result.push_back( near[i].second );
    return result;
}

std::string suggestion( std::string_view name, const std::vector<std::string> &names )
{
    const std::vector<std::string> near = nearestNames( name, names );
    if ( !near.empty() )
        return fmt::format( "; did you mean {}?", joined( near, " or " ) );
    if ( names.empty() || names.size() > 12 )
        return "";
    return fmt::format( "; there {} {}", names.size() == 1 ? "is" : "are", joined( names, " and " ) );
}

} // namespace inctl
