// FilterRanges: from ranges to turns, and from turns to what is searched.
#include "in/filter/in_filter_ranges.hpp"

#include <algorithm>

namespace in {
namespace {

template <class Key> constexpr Key greatest = static_cast<Key>( ~Key( 0 ) );

int leadingZeros( Uint128 value ) // not 0
{
    const auto upper = static_cast<uint64_t>( value >> 64 );
    return upper ? __builtin_clzll( upper ) : 64 + __builtin_clzll( static_cast<uint64_t>( value ) );
}

} // namespace

template <class Key> Turns<Key>::Turns( std::vector<FilterRange<Key>> ranges )
{
    std::sort( ranges.begin(), ranges.end(), []( const auto &a, const auto &b ) { return a.first < b.first; } );
    for ( size_t i = 0; i < ranges.size(); ) {
        const Key first = ranges[i].first;
        Key last = ranges[i].last;
        // What overlaps or touches belongs to it.
        for ( ++i; i < ranges.size() && ( last == greatest<Key> || ranges[i].first <= last + 1 ); ++i )
            last = std::max( last, ranges[i].last );
        if ( first == 0 )
            zeroInside = true;
        else
            after.push_back( first - 1 );
        if ( last != greatest<Key> )
            after.push_back( last );
    }
}

template struct Turns<uint32_t>;
template struct Turns<Uint128>;

FilterRanges<uint32_t>::FilterRanges( std::vector<FilterRange<uint32_t>> ranges )
{
    Turns<uint32_t> turns( std::move( ranges ) );
    zeroInside_ = turns.zeroInside;
    if ( turns.after.empty() )
        turns.after.push_back( greatest<uint32_t> ); // nothing is above it
    tree_ = trees_.add( turns.after );
}

FilterRanges<Uint128>::FilterRanges( std::vector<FilterRange<Uint128>> ranges )
{
    const Turns<Uint128> turns( std::move( ranges ) );
    if ( !turns.after.empty() )
        addPart( turns.after.data(), turns.after.size(), turns.zeroInside );
    else
        parts_.push_back( { .insideBefore = turns.zeroInside } ); // no key is above its first turn
}

// A part yet without its number, unless the turns are one, or the two of a network.
Uint128 FilterRanges<Uint128>::closerOf( const Uint128 *turns, size_t count )
{
    const Uint128 size = count == 2 ? turns[1] - turns[0] : 0;
    const bool isNetwork = count == 2 && ( size & ( size - 1 ) ) == 0;
    const unsigned span = count == 1 ? noSpan : isNetwork ? 127 - leadingZeros( size ) : partSpan;
    return Uint128( span ) << spanShift | ( span == partSpan ? 0 : turns[0] & belowSpan );
}

size_t FilterRanges<Uint128>::addPart( const Uint128 *turns, size_t count, bool insideBefore )
{
    const size_t number = parts_.size();
    parts_.emplace_back();
    Part part;
    part.first = turns[0];
    part.last = turns[count - 1];
    part.insideBefore = insideBefore;
    part.insideAfter = insideBefore ^ ( count & 1 );
    part.firstCells = static_cast<uint32_t>( cells_.size() );
    if ( count > 1 )
        part.skippedBits = static_cast<uint32_t>( leadingZeros( part.first ^ part.last ) );

    const uint32_t bitsBelow = part.skippedBits < 96 ? 96 - part.skippedBits : 0;
    const Uint128 windowEnd = ( Uint128( 1 ) << bitsBelow ) - 1;
    std::vector<uint32_t> windows;
    struct Crowd { // the turns of a cell that becomes a part
        const Uint128 *turns;
        size_t count, closer;
        bool insideBefore;
    };
    std::vector<Crowd> crowds;
    bool inside = insideBefore;
    for ( size_t i = 0, end; i < count; i = end ) {
        const uint32_t window = part.window( turns[i] );
        for ( end = i + 1; end < count && part.window( turns[end] ) == window; )
            ++end;
        const size_t bit = windows.size() % 64;
        if ( bit == 0 )
            cells_.push_back( { 0, 0, static_cast<uint32_t>( closer_.size() ) } );
        windows.push_back( window );
        cells_.back().insideBefore |= uint64_t{ inside } << bit;
        if ( end - i > 1 || ( turns[i] & windowEnd ) != windowEnd ) {
            cells_.back().looksCloser |= uint64_t{ 1 } << bit;
            closer_.push_back( closerOf( turns + i, end - i ) );
            if ( closer_.back() >> spanShift == partSpan )
                crowds.push_back( { turns + i, end - i, closer_.size() - 1, inside } );
        }
        inside ^= ( end - i ) & 1;
    }
    part.tree = trees_.add( windows );
    parts_[number] = part;
    for ( const Crowd &crowd : crowds ) {
        const size_t ofCrowd = addPart( crowd.turns, crowd.count, crowd.insideBefore );
        closer_[crowd.closer] |= ofCrowd;
    }
    return number;
}

} // namespace in
