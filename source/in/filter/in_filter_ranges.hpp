// FilterRanges: a set of integers, given as ranges that may overlap, and asked for single members. Immutable.
// The cost of a question grows with the number of levels of a tree with wide nodes: a node is one or two cache lines, all
// of its keys are looked at, and no branch depends on them. In-tree only.
#ifndef IN_FILTER_RANGES_HPP
#define IN_FILTER_RANGES_HPP

#include <cstddef>
#include <cstdint>
#include <vector>

namespace in {

__extension__ typedef unsigned __int128 Uint128;

template <class Key> struct FilterRange {
    Key first, last; // both inclusive, first <= last
};

// Key is uint32_t or Uint128.
template <class Key> class FilterRanges {
public:
    FilterRanges() : FilterRanges( std::vector<FilterRange<Key>>() ) {}
    explicit FilterRanges( std::vector<FilterRange<Key>> ranges );

    bool contains( Key key ) const
    {
        size_t at = 0;
        for ( const size_t level : levels_ )
            at = at * fanOut + countBelow( nodes_[level + at].lasts, key );
        const Leaf &leaf = leaves_[at];
        bool found = false;
        for ( size_t i = 0; i < leafRanges; ++i )
            found |= ( leaf.firsts[i] <= key ) & ( key <= leaf.lasts[i] );
        return found;
    }
    size_t length() const { return length_; } // of disjoint ranges that do not touch

private:
    static constexpr size_t nodeKeys = sizeof( Key ) == 4 ? 16 : 8;
    static constexpr size_t fanOut = nodeKeys + 1;
    static constexpr size_t leafRanges = nodeKeys / 2;

    // The last members of all children but the last one. Where there are fewer the rest is the greatest key, below which
    // everything is.
    struct alignas( 64 ) Node {
        Key lasts[nodeKeys];
    };
    // Where there are fewer ranges the rest is empty: first above last.
    struct alignas( 64 ) Leaf {
        Key firsts[leafRanges], lasts[leafRanges];
    };

    static size_t countBelow( const Key ( &keys )[nodeKeys], Key key )
    {
        if constexpr ( sizeof( Key ) == 4 ) {
            uint32_t count = 0; // of the keys' width, so that the loop becomes one of vectors
            for ( const Key each : keys )
                count += each < key;
            return count;
        }
        else {
            size_t count = 0;
            for ( const Key each : keys )
                count += each < key;
            return count;
        }
    }

    std::vector<Node> nodes_;
    std::vector<size_t> levels_; // where each begins, the root's first
    std::vector<Leaf> leaves_;   // at least one
    size_t length_ = 0;
};

extern template class FilterRanges<uint32_t>;
extern template class FilterRanges<Uint128>;

} // namespace in

#endif
