// RankTrees: searches among sorted integers of 32 bits: how many of them are below one. The cost of a question grows with
// the number of levels of a tree whose nodes are one cache line: all keys of a node are looked at, no branch depends on
// them, and a level divides what is left by 17. In-tree only.
#ifndef IN_RANK_TREE_HPP
#define IN_RANK_TREE_HPP

#include "in/filter/in_large_pages.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

#if defined( __SSE2__ )
#include <emmintrin.h>
#endif

namespace in {

// One tree among the nodes of RankTrees.
struct RankTree {
    static constexpr size_t mostLevels = 8; // more than 2^32 keys need
    uint32_t levels = 0;                    // above the keys themselves
    uint32_t starts[mostLevels + 1] = {};   // the root's first, the keys' last
};

class RankTrees {
public:
    // Ascending, each once, not empty.
    RankTree add( const std::vector<uint32_t> &keys );

    // How many keys of the tree are below.
    size_t rank( const RankTree &tree, uint32_t key ) const
    {
        return rank( tree, key, []( size_t ) {} );
    }
    // The same; near hears a rank that is at most 16 below the result, before the keys there have been looked at.
    template <class Near> size_t rank( const RankTree &tree, uint32_t key, Near near ) const
    {
        const int32_t sought = ordered( key );
        size_t at = 0;
        for ( uint32_t level = 0; level < tree.levels; ++level )
            at = at * fanOut + countBelow( nodes_[tree.starts[level] + at], sought );
        near( at * nodeKeys );
        return at * nodeKeys + countBelow( nodes_[tree.starts[tree.levels] + at], sought );
    }
    // Of the key at a rank, which may be the number of keys: then it is no key.
    bool isKey( const RankTree &tree, size_t rank, uint32_t key ) const
    {
        return nodes_[tree.starts[tree.levels] + rank / nodeKeys].keys[rank % nodeKeys] == ordered( key );
    }

private:
    static constexpr size_t nodeKeys = 16;
    static constexpr size_t fanOut = nodeKeys + 1;

    // Keys, or the last keys of all children but the last one. Where there are fewer the rest is the greatest key, below
    // which everything is.
    struct alignas( 64 ) Node {
        int32_t keys[nodeKeys];
    };

    // Signed integers in the order of the unsigned ones: vectors compare those.
    static int32_t ordered( uint32_t key ) { return static_cast<int32_t>( key ^ 0x80000000 ); }

    static size_t countBelow( const Node &node, int32_t sought )
    {
#if defined( __SSE2__ )
        const __m128i wanted = _mm_set1_epi32( sought );
        const auto below = [&]( size_t i ) {
            return _mm_cmpgt_epi32( wanted, _mm_load_si128( reinterpret_cast<const __m128i *>( node.keys + i ) ) );
        };
        const __m128i bytes = _mm_packs_epi16( _mm_packs_epi32( below( 0 ), below( 4 ) ),
                                               _mm_packs_epi32( below( 8 ), below( 12 ) ) );
        // Sorted keys: a bit for each that is below, then zeros.
        return static_cast<size_t>( __builtin_ctz( ~static_cast<unsigned>( _mm_movemask_epi8( bytes ) ) ) );
#else
        uint32_t count = 0;
        for ( const int32_t key : node.keys )
            count += key < sought;
        return count;
#endif
    }

    size_t addLevel( size_t count );

    std::vector<Node, LargePages<Node>> nodes_;
};

} // namespace in

#endif
