// pbFlagset: a short table of names and masks in ascending order of mask.
#include "pb/pb_flagset.h"

#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <vector>

PB_SORT_DECLARE( pb___sort_PB_FLAGSET )

namespace {

struct Flag {
    uint64_t mask;
    pb::String name;

    auto operator<=>( const Flag & ) const = default;
};

} // namespace

struct pbFlagset final : pb::Object<struct pbFlagset, pb___sort_PB_FLAGSET> {
    std::vector<Flag> flags;

    auto operator<=>( const pbFlagset & ) const = default;
};

PB_OBJECT_DEFINE( pbFlagset, pb___sort_PB_FLAGSET )

extern "C" {

struct pbFlagset *pbFlagsetCreate( void ) { return new pbFlagset; }

void pbFlagsetAddFlagCstr( struct pbFlagset **flagset, const char *name, pbInt nameLength, uint64_t mask )
{
    PB_ASSERT( flagset );
    PB_ASSERT( *flagset );
    PB_ASSERT( mask );
    PB_ASSERT( !pbFlagsetHasFlagCstr( *flagset, name, nameLength ) );
    Flag flag{ mask, pb::adopt( pbStringCreateFromCstr( name, nameLength ) ) };
    auto &flags = pb::edit( flagset ).flags;
    const auto place = std::ranges::upper_bound( flags, mask, {}, &Flag::mask );
    PB_ASSERT_TEXT( place == flags.begin() || place[-1].mask != mask, "the flag's mask is new" );
    flags.insert( place, std::move( flag ) );
}

pbBool pbFlagsetHasFlagCstr( const struct pbFlagset *flagset, const char *name, pbInt nameLength )
{
    PB_ASSERT( flagset );
    PB_ASSERT( name );
    return std::ranges::any_of( flagset->flags, [&]( const Flag &flag ) {
        return pbStringEqualsCstr( flag.name.get(), name, nameLength );
    } );
}

struct pbString *pbFlagsetGenerate( const struct pbFlagset *flagset, uint64_t flags )
{
    PB_ASSERT( flagset );
    pb::String text = pb::adopt( pbStringCreate() );
    for ( const Flag &flag : flagset->flags ) {
        if ( ( flags & flag.mask ) != flag.mask )
            continue;
        if ( pbStringLength( text.get() ) )
            pbStringAppendChar( text.address(), '|' );
        pbStringAppend( text.address(), flag.name.get() );
    }
    return text.release();
}

uint64_t pbFlagsetParse( const struct pbFlagset *flagset, const struct pbString *text )
{
    PB_ASSERT( flagset );
    PB_ASSERT( text );
    uint64_t flags = 0;
    const auto pieces = pb::adopt( pbStringSplitChar( text, '|', -1 ) );
    for ( pbInt i = 0; i < pbVectorLength( pieces.get() ); ++i ) {
        auto piece = pb::adopt( pbStringFrom( pbVectorObjAt( pieces.get(), i ) ) );
        pbStringTrim( piece.address() );
        if ( const auto flag = std::ranges::find( flagset->flags, piece, &Flag::name ); flag != flagset->flags.end() )
            flags |= flag->mask;
    }
    return flags;
}

} // extern "C"
