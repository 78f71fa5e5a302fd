// Finds the names near to a misspelt one.
#include "cs/cs_nearest.hpp"

#include <algorithm>

namespace cs {
namespace {

std::string lowerCase( std::string_view text )
{
    std::string lower( text );
    for ( char &c : lower )
        if ( c >= 'A' && c <= 'Z' )
            c += 'a' - 'A';
    return lower;
}

// Optimal string alignment: insertions, deletions, substitutions and swaps of neighbours, each costing one. Three rows
// are enough, since a swap looks back two.
size_t editDistance( std::string_view a, std::string_view b )
{
    std::vector<size_t> before( b.size() + 1 ), last( b.size() + 1 ), row( b.size() + 1 );
    for ( size_t j = 0; j <= b.size(); ++j )
        row[j] = j;
    for ( size_t i = 1; i <= a.size(); ++i ) {
        before.swap( last );
        last.swap( row );
        row[0] = i;
        for ( size_t j = 1; j <= b.size(); ++j ) {
            row[j] = std::min( { last[j] + 1, row[j - 1] + 1, last[j - 1] + ( a[i - 1] != b[j - 1] ) } );
            if ( i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1] )
                row[j] = std::min( row[j], before[j - 2] + 1 );
        }
    }
    return row[b.size()];
}

} // namespace

std::vector<std::string> nearestNames( std::string_view name, const std::vector<std::string> &known )
{
    constexpr size_t Longest = 64; // of what is compared: the cost is the product of the lengths
    if ( name.size() > Longest )
        return {};
    const std::string typed = lowerCase( name );
    const size_t allowed = std::max<size_t>( 2, typed.size() / 3 );
    std::vector<std::pair<size_t, std::string>> near;
    for ( const std::string &candidate : known ) {
        if ( candidate.size() > Longest )
            continue;
        const std::string meant = lowerCase( candidate );
        const bool begun = typed.size() >= 2 && meant.starts_with( typed );
        // Each character that one has more is an error at least.
        const size_t surplus = std::max( typed.size(), meant.size() ) - std::min( typed.size(), meant.size() );
        if ( !begun && surplus > allowed )
            continue;
        const size_t errors = editDistance( typed, meant );
        if ( begun || ( errors <= allowed && errors < std::min( typed.size(), meant.size() ) ) )
            near.emplace_back( begun ? std::min<size_t>( errors, 1 ) : errors, candidate );
    }
    std::sort( near.begin(), near.end() );
    std::vector<std::string> result;
    for ( size_t i = 0; i < near.size() && i < 3 && near[i].first <= near[0].first + 1; ++i )
        result.push_back( near[i].second );
    return result;
}

} // namespace cs
