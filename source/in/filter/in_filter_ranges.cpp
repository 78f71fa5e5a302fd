// FilterRanges: making disjoint ranges of any, and the tree over them.
#include "in/filter/in_filter_ranges.hpp"

#include <algorithm>

namespace in {
namespace {

template <class Key> constexpr Key greatest = static_cast<Key>( ~Key( 0 ) );

// Sorted, and neither overlapping nor touching.
template <class Key> void unite( std::vector<FilterRange<Key>> &ranges )
{
    std::sort( ranges.begin(), ranges.end(), []( const auto &a, const auto &b ) { return a.first < b.first; } );
    size_t count = 0;
    for ( const FilterRange<Key> &range : ranges )
        if ( count && ( ranges[count - 1].last == greatest<Key> || range.first <= ranges[count - 1].last + 1 ) )
            ranges[count - 1].last = std::max( ranges[count - 1].last, range.last );
        else
            ranges[count++] = range;
    ranges.resize( count );
}

size_t groups( size_t count, size_t size )
{
    return ( count + size - 1 ) / size;
}

} // namespace

template <class Key> FilterRanges<Key>::FilterRanges( std::vector<FilterRange<Key>> ranges )
{
    unite( ranges );
    length_ = ranges.size();
    leaves_.resize( std::max<size_t>( groups( length_, leafRanges ), 1 ) );
    for ( size_t i = 0; i < leaves_.size() * leafRanges; ++i ) {
        Leaf &leaf = leaves_[i / leafRanges];
        leaf.firsts[i % leafRanges] = i < length_ ? ranges[i].first : greatest<Key>;
        leaf.lasts[i % leafRanges] = i < length_ ? ranges[i].last : 0;
    }

    std::vector<Key> lasts; // of each child of the level to be made
    for ( size_t i = 0; i < leaves_.size() && length_; ++i )
        lasts.push_back( ranges[std::min( length_, ( i + 1 ) * leafRanges ) - 1].last );
    std::vector<std::vector<Node>> levels; // the root's comes last
    while ( lasts.size() > 1 ) {
        std::vector<Node> &level = levels.emplace_back( groups( lasts.size(), fanOut ) );
        std::vector<Key> lastsAbove;
        for ( size_t node = 0; node < level.size(); ++node ) {
            const size_t firstChild = node * fanOut, lastChild = std::min( lasts.size(), firstChild + fanOut ) - 1;
            for ( size_t i = 0; i < nodeKeys; ++i )
                level[node].lasts[i] = firstChild + i < lastChild ? lasts[firstChild + i] : greatest<Key>;
            lastsAbove.push_back( lasts[lastChild] );
        }
        lasts = std::move( lastsAbove );
    }
    for ( auto level = levels.rbegin(); level != levels.rend(); ++level ) {
        levels_.push_back( nodes_.size() );
        nodes_.insert( nodes_.end(), level->begin(), level->end() );
    }
}

template class FilterRanges<uint32_t>;
template class FilterRanges<Uint128>;

} // namespace in
