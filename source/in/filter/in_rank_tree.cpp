// RankTrees: laying out the levels of a tree.
#include "in/filter/in_rank_tree.hpp"

#include <algorithm>

namespace in {
namespace {

size_t groups( size_t count, size_t size )
{
    return ( count + size - 1 ) / size;
}

} // namespace

size_t RankTrees::addLevel( size_t count )
{
    const size_t start = nodes_.size();
    Node empty;
    std::fill( std::begin( empty.keys ), std::end( empty.keys ), ordered( UINT32_MAX ) );
    nodes_.resize( start + count, empty );
    return start;
}

RankTree RankTrees::add( const std::vector<uint32_t> &keys )
{
    // How many nodes each level has, from the keys up to the root.
    std::vector<size_t> sizes{ groups( keys.size(), nodeKeys ) };
    while ( sizes.back() > 1 )
        sizes.push_back( groups( sizes.back(), fanOut ) );
    RankTree tree;
    tree.levels = static_cast<uint32_t>( sizes.size() - 1 );
    for ( size_t level = 0; level <= tree.levels; ++level )
        tree.starts[level] = static_cast<uint32_t>( addLevel( sizes[tree.levels - level] ) );

    for ( size_t i = 0; i < keys.size(); ++i )
        nodes_[tree.starts[tree.levels] + i / nodeKeys].keys[i % nodeKeys] = ordered( keys[i] );
    size_t keysBelow = nodeKeys; // of one child
    for ( size_t level = tree.levels; level-- > 0; keysBelow *= fanOut ) {
        const size_t children = sizes[tree.levels - level - 1];
        for ( size_t child = 0; child + 1 < children; ++child )
            if ( child % fanOut < nodeKeys ) // the last child of a node has no key
                nodes_[tree.starts[level] + child / fanOut].keys[child % fanOut] =
                    ordered( keys[( child + 1 ) * keysBelow - 1] );
    }
    return tree;
}

} // namespace in
