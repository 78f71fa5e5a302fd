// FilterRanges: a set of integers, given as ranges that may overlap, and asked for single members. Immutable.
// It is kept as its turns: the integers after which what was inside is outside and the other way round. Whether one is a
// member follows from the number of turns below it. In-tree only.
#ifndef IN_FILTER_RANGES_HPP
#define IN_FILTER_RANGES_HPP

#include "in/filter/in_rank_tree.hpp"

#include <vector>

namespace in {

__extension__ typedef unsigned __int128 Uint128;

template <class Key> struct FilterRange {
    Key first, last; // both inclusive, first <= last
};

// The turns of a set, ascending; zero is a member or not.
template <class Key> struct Turns {
    bool zeroInside = false;
    std::vector<Key> after;

    explicit Turns( std::vector<FilterRange<Key>> ranges );
};

template <class Key> class FilterRanges;

template <> class FilterRanges<uint32_t> {
public:
    FilterRanges() : FilterRanges( std::vector<FilterRange<uint32_t>>() ) {}
    explicit FilterRanges( std::vector<FilterRange<uint32_t>> ranges );

    bool contains( uint32_t key ) const { return zeroInside_ ^ ( trees_.rank( tree_, key ) & 1 ); }

private:
    RankTrees trees_;
    RankTree tree_;
    bool zeroInside_;
};

// Of 128 bits only a window of 32 is searched, which begins where the turns first differ; it tells nearly all of them
// apart. The few turns that agree in it, in most cases the two of a range that is small, are compared whole, or searched
// in a window of their own if there are more than two: at most four windows in all.
template <> class FilterRanges<Uint128> {
public:
    FilterRanges() : FilterRanges( std::vector<FilterRange<Uint128>>() ) {}
    explicit FilterRanges( std::vector<FilterRange<Uint128>> ranges );

    bool contains( Uint128 key ) const
    {
        for ( size_t at = 0;; ) {
            const Part &part = parts_[at];
            if ( key <= part.first )
                return part.insideBefore;
            if ( key > part.last )
                return part.insideAfter;
            const uint32_t window = part.window( key );
            const size_t rank = trees_.rank( part.tree, window );
            const Cells &cells = cells_[part.firstCells + rank / 64];
            const bool inside = cells.insideBefore >> ( rank % 64 ) & 1;
            if ( !trees_.isKey( part.tree, rank, window ) || !( cells.looksCloser >> ( rank % 64 ) & 1 ) )
                return inside;
            const uint64_t closerBefore = cells.looksCloser & ( ( uint64_t{ 1 } << ( rank % 64 ) ) - 1 );
            const Pair &pair = pairs_[cells.firstPair + static_cast<size_t>( __builtin_popcountll( closerBefore ) )];
            if ( pair.isPart() ) {
                at = static_cast<size_t>( pair.second );
                continue;
            }
            return inside ^ ( key > pair.first ) ^ ( key > pair.second );
        }
    }

private:
    // Turns that agree in all bits before the window.
    struct Part {
        Uint128 first = ~Uint128( 0 ), last = ~Uint128( 0 ); // turns
        RankTree tree;                                       // of the windows, each once; those are the cells
        uint32_t skippedBits = 0;
        uint32_t firstCells = 0;
        bool insideBefore = false, insideAfter = false;

        uint32_t window( Uint128 key ) const { return static_cast<uint32_t>( ( key << skippedBits ) >> 96 ); }
    };
    // 64 cells of a part, a bit each. No key of the part is above its last cell.
    struct Cells {
        uint64_t insideBefore = 0; // before the turns of the cell, hence also between it and the one before
        uint64_t looksCloser = 0;  // the cell has turns below the end of the window
        uint32_t firstPair = 0;    // of the cells that look closer, one each
    };
    // One or two turns, of which the second is the greatest key if there is only one; or the number of a part.
    struct alignas( 32 ) Pair {
        Uint128 first, second;
        bool isPart() const { return first > second; }
    };

    size_t addPart( const Uint128 *turns, size_t count, bool insideBefore );

    RankTrees trees_;
    std::vector<Part> parts_; // the first is for all turns
    std::vector<Cells> cells_;
    std::vector<Pair, LargePages<Pair>> pairs_;
};

} // namespace in

#endif
