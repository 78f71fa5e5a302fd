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
// apart. The few turns that agree in it, in most cases the two of a network or of a host, are compared in what follows
// the window, or else searched in a window of their own: at most four windows in all.
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
            // Both come from memory at the same time.
            const size_t rank = trees_.rank( part.tree, window, [&]( size_t near ) {
                __builtin_prefetch( &cells_[part.firstCells + near / 64] );
            } );
            const Cells &cells = cells_[part.firstCells + rank / 64];
            const bool inside = cells.insideBefore >> ( rank % 64 ) & 1;
            if ( !trees_.isKey( part.tree, rank, window ) || !( cells.looksCloser >> ( rank % 64 ) & 1 ) )
                return inside;
            const uint64_t closerBefore = cells.looksCloser & ( ( uint64_t{ 1 } << ( rank % 64 ) ) - 1 );
            const Uint128 closer =
                closer_[cells.firstCloser + static_cast<size_t>( __builtin_popcountll( closerBefore ) )];
            const Uint128 turn = closer & belowSpan, rest = key & belowSpan;
            const auto span = static_cast<unsigned>( closer >> spanShift );
            if ( span < partSpan )
                return inside ^ ( rest > turn ) ^ ( rest > turn + ( Uint128( 1 ) << span ) );
            at = static_cast<size_t>( turn );
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
        uint32_t firstCloser = 0;  // of the cells that look closer, one each
    };
    // What a cell that looks closer has: the 96 lowest bits of its first turn, and above them that its second one is
    // 2^span beyond; or that there is none, which then is beyond all that is compared; or the number of a part.
    static constexpr unsigned spanShift = 96;
    static constexpr Uint128 belowSpan = ( Uint128( 1 ) << spanShift ) - 1;
    static constexpr unsigned noSpan = 127, partSpan = 128;

    static Uint128 closerOf( const Uint128 *turns, size_t count );
    size_t addPart( const Uint128 *turns, size_t count, bool insideBefore );

    RankTrees trees_;
    std::vector<Part> parts_; // the first is for all turns
    std::vector<Cells> cells_;
    std::vector<Uint128, LargePages<Uint128>> closer_;
};

} // namespace in

#endif
