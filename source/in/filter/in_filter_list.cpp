// FilterList: made of what a rebuild has found.
#include "in/filter/in_filter_list.hpp"

#include "pb/pb_boxed_int.h"
#include "pb/pb_format.hpp"
#include "pb/pb_store.h"
#include "pb/pb_vector.hpp"

#include <unordered_map>

namespace in {
namespace {

using Address = pb::Ref<struct inAddress>;

Address addressAt( const pb::Ref<struct pbVector> &addresses, pbInt index )
{
    return pb::adopt( inAddressFrom( pbVectorObjAt( addresses.get(), index ) ) );
}

pbInt bitsAt( const pb::Ref<struct pbVector> &matchingBits, pbInt index )
{
    return pbBoxedIntValue( pb::adopt( pbBoxedIntFrom( pbVectorObjAt( matchingBits.get(), index ) ) ).get() );
}

// What "ADDRESS/BITS" tells apart, without making a text of it.
struct Identity {
    Address address;
    pbInt bits;
    bool operator==( const Identity & ) const = default;
};

struct IdentityHash {
    size_t operator()( const Identity &identity ) const
    {
        uint64_t halves[2];
        memcpy( halves, identity.address->bytes, sizeof halves );
        uint64_t hash = static_cast<uint64_t>( identity.bits + identity.address->version );
        for ( const uint64_t half : halves )
            hash = ( ( hash ^ half ) * 0x9E3779B97F4A7C15 ) ^ ( hash >> 29 );
        return hash ^ hash >> 32;
    }
};

// The members of the network of the key's first bits. Bits beyond the length leave none: not even the address itself
// agrees in that many.
template <class Key> void addRange( std::vector<FilterRange<Key>> &ranges, Key key, pbInt bits )
{
    constexpr pbInt length = sizeof( Key ) * 8;
    if ( bits > length )
        return;
    const Key others = bits < 0 || bits == length ? Key( 0 ) : static_cast<Key>( ~Key( 0 ) ) >> bits;
    ranges.push_back( { static_cast<Key>( key & ~others ), static_cast<Key>( key | others ) } );
}

} // namespace

void FilterFindings::removeDuplicates()
{
    const pbInt length = pbVectorLength( addresses.get() );
    const auto keptAddresses = pb::adopt( pb___VectorCreateWithRoom( length ) );
    const auto keptBits = pb::adopt( pb___VectorCreateWithRoom( length ) );
    std::unordered_map<Identity, uint32_t, IdentityHash> kept;
    kept.reserve( static_cast<size_t>( length ) );
    for ( pbInt i = 0; i < length; ++i ) {
        const auto index = static_cast<uint32_t>( kept.size() );
        const auto [found, isNew] =
            kept.try_emplace( { addressAt( addresses, i ), bitsAt( matchingBits, i ) }, index );
        sources[static_cast<size_t>( i )].address = found->second;
        if ( !isNew )
            continue;
        pb___VectorAppendAdopted( keptAddresses.get(), pbVectorObjAt( addresses.get(), i ) );
        pb___VectorAppendAdopted( keptBits.get(), pbVectorObjAt( matchingBits.get(), i ) );
    }
    addresses = keptAddresses;
    matchingBits = keptBits;
}

FilterList::FilterList( pb::Ref<struct inFilterOptions> options, FilterFindings findings )
    : options_( std::move( options ) ), findings_( std::move( findings ) )
{
    const auto *addressesVector = findings_.addresses.get();
    const auto *matchingBitsVector = findings_.matchingBits.get();
    PB_ASSERT( pbVectorLength( addressesVector ) == pbVectorLength( matchingBitsVector ) );
    std::vector<FilterRange<uint32_t>> rangesV4;
    std::vector<FilterRange<Uint128>> rangesV6;
    for ( pbInt i = 0; i < pbVectorLength( addressesVector ); ++i ) {
        const Address address = addressAt( findings_.addresses, i );
        const pbInt bits = bitsAt( findings_.matchingBits, i );
        if ( address->isV4() )
            addRange( rangesV4, keyV4( *address ), bits );
        else
            addRange( rangesV6, keyV6( *address ), bits );
    }
    v4_ = FilterRanges<uint32_t>( std::move( rangesV4 ) );
    v6_ = FilterRanges<Uint128>( std::move( rangesV6 ) );
}

pbInt FilterList::length() const
{
    return pbVectorLength( findings_.addresses.get() );
}

pb::Ref<struct pbStore> FilterList::keys() const
{
    auto array = pb::adopt( pbStoreCreate() );
    for ( pbInt i = 0; i < length(); ++i )
        pbStoreArrayAppendValue( array.address(),
                                 pb::format( "%o/%o", pb::adopt( pbVectorObjAt( findings_.addresses.get(), i ) ),
                                             pb::adopt( pbVectorObjAt( findings_.matchingBits.get(), i ) ) )
                                     .get() );
    return array;
}

std::string FilterList::notesText() const
{
    constexpr size_t most = 5;
    std::string text;
    for ( size_t i = 0; i < findings_.notes.size() && i < most; ++i ) {
        const auto &note = findings_.notes[i];
        text += ( i ? "; " : "" ) + ( "entry " + std::to_string( note.entry + 1 ) ) + ": " + pb::utf8( note.name ) +
                ": " + note.text;
    }
    if ( findings_.notes.size() > most )
        text += "; and " + std::to_string( findings_.notes.size() - most ) + " more";
    return text;
}

} // namespace in
