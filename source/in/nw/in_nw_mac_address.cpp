// inNwMacAddress: a 6-byte hardware address.
#include "in/nw/in_nw_mac_address.h"

#include "pb/pb_buffer.h"
#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <array>

PB_SORT_DECLARE( in___sort_IN_NW_MAC_ADDRESS )

struct inNwMacAddress final : pb::Object<struct inNwMacAddress, in___sort_IN_NW_MAC_ADDRESS> {
    std::array<uint8_t, 6> bytes{};

    auto operator<=>( const inNwMacAddress & ) const = default;

    pb::String toString() const
    {
        return pb::format( "%^02!16i:%^02!16i:%^02!16i:%^02!16i:%^02!16i:%^02!16i", bytes[0], bytes[1], bytes[2],
                           bytes[3], bytes[4], bytes[5] );
    }
};

PB_OBJECT_DEFINE( inNwMacAddress, in___sort_IN_NW_MAC_ADDRESS )

struct inNwMacAddress *inNwMacAddressCreate( void )
{
    return pb::make<struct inNwMacAddress>().release();
}

struct inNwMacAddress *inNwMacAddressCreateFrom( const struct inNwMacAddress *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNwMacAddress>( *source ).release();
}

struct inNwMacAddress *inNwMacAddressCreateFromBytes( const void *bytes )
{
    PB_ASSERT( bytes );
    auto mac = pb::make<struct inNwMacAddress>();
    memcpy( mac->bytes.data(), bytes, mac->bytes.size() );
    return mac.release();
}

// Six pieces between separators, or null. The seventh piece would hold what is too much.
static pb::Ref<struct pbVector> splitInSix( const struct pbString *source, pbChar separator )
{
    auto pieces = pb::adopt( pbStringSplitChar( source, separator, 7 ) );
    return pbVectorLength( pieces.get() ) == 6 ? pieces : nullptr;
}

struct inNwMacAddress *inNwMacAddressTryCreateFromString( const struct pbString *source )
{
    PB_ASSERT( source );
    auto pieces = splitInSix( source, ':' );
    if ( !pieces )
        pieces = splitInSix( source, '-' );
    if ( !pieces )
        return nullptr;
    auto mac = pb::make<struct inNwMacAddress>();
    for ( pbInt i = 0; i < 6; ++i ) {
        const auto piece = pb::adopt( pbStringFrom( pbVectorObjAt( pieces.get(), i ) ) );
        pbInt value = 0;
        pbInt length = 0;
        if ( !pbStringScanInt( piece.get(), 0, 16, &value, &length ) || length != pbStringLength( piece.get() )
             || value < 0 || value > 255 )
            return nullptr;
        mac->bytes[static_cast<size_t>( i )] = static_cast<uint8_t>( value );
    }
    return mac.release();
}

struct inNwMacAddress *inNwMacAddressTryCreateFromBuffer( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    return pbBufferLength( buffer ) == 6 ? inNwMacAddressCreateFromBytes( pbBufferBacking( buffer ) ) : nullptr;
}

const uint8_t *inNwMacAddressBacking( const struct inNwMacAddress *mac )
{
    PB_ASSERT( mac );
    return mac->bytes.data();
}

pbInt inNwMacAddressLength( const struct inNwMacAddress *mac )
{
    PB_ASSERT( mac );
    return 6;
}

pbInt inNwMacAddressByteAt( const struct inNwMacAddress *mac, pbInt byteIdx )
{
    PB_ASSERT( mac );
    PB_ASSERT( byteIdx >= 0 );
    PB_ASSERT( byteIdx < 6 );
    return mac->bytes[static_cast<size_t>( byteIdx )];
}

void inNwMacAddressSetByteAt( struct inNwMacAddress **mac, pbInt byteIdx, pbInt value )
{
    PB_ASSERT( mac );
    PB_ASSERT( *mac );
    PB_ASSERT( byteIdx >= 0 );
    PB_ASSERT( byteIdx < 6 );
    pb::edit( mac ).bytes[static_cast<size_t>( byteIdx )] = static_cast<uint8_t>( value );
}

struct pbBuffer *inNwMacAddressToBuffer( const struct inNwMacAddress *mac )
{
    PB_ASSERT( mac );
    return pbBufferCreateFromBytes( mac->bytes.data(), 6 );
}
