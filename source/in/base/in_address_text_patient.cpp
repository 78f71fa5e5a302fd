// The patient readers of address text: the definition of what an address is, word by word.
#include "in/base/in_address_text.hpp"

#include "pb/pb_vector.h"

#include <cstring>

namespace in::text {
namespace {

constexpr pbInt maximumPieces = groupCount;

pb::String pieceAt( const struct pbVector *pieces, pbInt index )
{
    return pb::adopt( pbStringFrom( pbVectorObjAt( pieces, index ) ) );
}

bool isEmptyAt( const struct pbVector *pieces, pbInt index )
{
    return pbStringLength( pieceAt( pieces, index ).get() ) == 0;
}

// An integer that is the whole piece and lies in 0..maximum; a negative one is too large as unsigned.
bool scanWhole( const struct pbString *piece, pbInt base, uint64_t maximum, uint64_t &value )
{
    pbInt scanned = 0;
    pbInt length = 0;
    if ( !pbStringScanInt( piece, 0, base, &scanned, &length ) || length != pbStringLength( piece ) )
        return false;
    value = static_cast<uint64_t>( scanned );
    return value <= maximum;
}

// The IPv4 form without white space around it, as it also ends an IPv6 text.
bool patientV4Tail( const struct pbString *text, uint8_t *bytes )
{
    const auto pieces = pb::adopt( pbStringSplitChar( text, '.', 4 ) );
    if ( pbVectorLength( pieces.get() ) != 4 )
        return false;
    for ( pbInt i = 0; i < 4; ++i ) {
        uint64_t value = 0;
        if ( !scanWhole( pieceAt( pieces.get(), i ).get(), 10, 255, value ) )
            return false;
        bytes[i] = static_cast<uint8_t>( value );
    }
    return true;
}

pb::String trimmed( const struct pbString *text )
{
    pb::String copy = pb::share( text );
    pbStringTrim( copy.address() );
    return copy;
}

// An IPv4 text at the end becomes the two groups that it stands for.
void splitV4Tail( pb::Ref<struct pbVector> &pieces )
{
    const pbInt last = pbVectorLength( pieces.get() ) - 1;
    uint8_t bytes[4];
    if ( !patientV4Tail( pieceAt( pieces.get(), last ).get(), bytes ) )
        return;
    pbVectorDelAt( pieces.address(), last );
    for ( int i = 0; i < 4; i += 2 ) {
        const char group[] = { hexDigits[bytes[i] >> 4], hexDigits[bytes[i] & 15], hexDigits[bytes[i + 1] >> 4],
                               hexDigits[bytes[i + 1] & 15] };
        const auto piece = pb::adopt( pbStringCreateFromCstr( group, sizeof group ) );
        pbVectorAppend( pieces.address(), pbStringObj( piece.get() ) );
    }
}

// Takes out the empty pieces of the first "::" and returns where its zero groups belong, -1 without one.
pbInt removeGap( pb::Ref<struct pbVector> &pieces )
{
    const pbInt count = pbVectorLength( pieces.get() );
    if ( isEmptyAt( pieces.get(), 0 ) && isEmptyAt( pieces.get(), 1 ) ) {
        pbVectorDelAt( pieces.address(), 0 );
        pbVectorDelAt( pieces.address(), 0 );
        return 0;
    }
    if ( isEmptyAt( pieces.get(), count - 1 ) && isEmptyAt( pieces.get(), count - 2 ) ) {
        pbVectorDelAt( pieces.address(), count - 1 );
        pbVectorDelAt( pieces.address(), count - 2 );
        return count - 2;
    }
    for ( pbInt i = 1; i <= count - 2; ++i )
        if ( isEmptyAt( pieces.get(), i ) ) {
            pbVectorDelAt( pieces.address(), i );
            return i;
        }
    return -1;
}

} // namespace

bool patientV4( const struct pbString *text, uint8_t *bytes )
{
    return patientV4Tail( trimmed( text ).get(), bytes );
}

bool patientV6( const struct pbString *text, uint8_t *bytes )
{
    auto pieces = pb::adopt( pbStringSplitChar( trimmed( text ).get(), ':', maximumPieces ) );
    const pbInt count = pbVectorLength( pieces.get() );
    if ( count < 3 )
        return false;
    if ( count == 3 && isEmptyAt( pieces.get(), 0 ) && isEmptyAt( pieces.get(), 1 ) && isEmptyAt( pieces.get(), 2 ) ) {
        memset( bytes, 0, 16 );
        return true;
    }
    splitV4Tail( pieces );
    if ( pbVectorLength( pieces.get() ) > maximumPieces )
        return false;
    const pbInt gap = removeGap( pieces );
    if ( gap >= 0 ) {
        const auto zero = pb::string( "0" );
        while ( pbVectorLength( pieces.get() ) < maximumPieces )
            pbVectorInsert( pieces.address(), gap, pbStringObj( zero.get() ) );
    }
    if ( pbVectorLength( pieces.get() ) != maximumPieces )
        return false;
    for ( pbInt i = 0; i < maximumPieces; ++i ) {
        uint64_t value = 0;
        if ( !scanWhole( pieceAt( pieces.get(), i ).get(), 16, 65535, value ) )
            return false;
        bytes[i * 2] = static_cast<uint8_t>( value >> 8 );
        bytes[i * 2 + 1] = static_cast<uint8_t>( value );
    }
    return true;
}

} // namespace in::text
