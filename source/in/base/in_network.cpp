// inNetwork: an address with an optional prefix length.
#include "in/base/in_network.h"

#include "in/base/in_address.h"
#include "pb/pb_buffer.h"
#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

PB_SORT_DECLARE( in___sort_IN_NETWORK )

struct inNetwork final : pb::Object<struct inNetwork, in___sort_IN_NETWORK> {
    pb::Ref<struct inAddress> address; // never null; host bits are zero when there is a prefix
    pbInt prefixLength = -1;           // -1: none

    auto operator<=>( const inNetwork & ) const = default;

    pb::String toString() const
    {
        return prefixLength == -1 ? pb::format( "%o", address ) : pb::format( "%o/%i", address, prefixLength );
    }
    pbInt bitLength() const { return inAddressLength( address.get() ) * 8; }
    pbInt effectivePrefixLength() const { return prefixLength == -1 ? bitLength() : prefixLength; }
};

PB_OBJECT_DEFINE( inNetwork, in___sort_IN_NETWORK )

static pb::Ref<struct inAddress> masked( const struct inAddress *address, pbInt prefixLength )
{
    auto bits = pb::adopt( inAddressToBuffer( address ) );
    pbBufferBitDelOuter( bits.address(), 0, prefixLength );
    pbBufferBitAppendZero( bits.address(), inAddressLength( address ) * 8 - prefixLength );
    return pb::adopt( inAddressTryCreateFromBuffer( bits.get() ) );
}

struct inNetwork *inNetworkCreate( const struct inAddress *address, pbInt optionalPrefixLength )
{
    PB_ASSERT( address );
    PB_ASSERT( optionalPrefixLength >= -1 );
    auto net = pb::make<struct inNetwork>();
    inNetworkSetAddressAndPrefixLength( net.address(), address, optionalPrefixLength );
    return net.release();
}

struct inNetwork *inNetworkCreateFrom( const struct inNetwork *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNetwork>( *source ).release();
}

struct inNetwork *inNetworkTryCreateFromString( const struct pbString *source )
{
    PB_ASSERT( source );
    const auto pieces = pb::adopt( pbStringSplitChar( source, '/', 3 ) );
    const pbInt count = pbVectorLength( pieces.get() );
    if ( count > 2 )
        return nullptr;
    const auto first = pb::adopt( pbStringFrom( pbVectorObjAt( pieces.get(), 0 ) ) );
    const auto address = pb::adopt( inAddressTryCreateFromString( first.get() ) );
    if ( !address )
        return nullptr;
    pbInt prefixLength = -1;
    if ( count == 2 ) {
        const auto second = pb::adopt( pbStringFrom( pbVectorObjAt( pieces.get(), 1 ) ) );
        pbInt scanned = 0;
        if ( !pbStringScanInt( second.get(), 0, 10, &prefixLength, &scanned )
             || scanned != pbStringLength( second.get() ) || prefixLength < -1
             || prefixLength > inAddressLength( address.get() ) * 8 )
            return nullptr;
    }
    return inNetworkCreate( address.get(), prefixLength );
}

struct inAddress *inNetworkAddress( const struct inNetwork *net )
{
    PB_ASSERT( net );
    return net->address.share();
}

pbBool inNetworkHasPrefixLength( const struct inNetwork *net )
{
    PB_ASSERT( net );
    return net->prefixLength != -1;
}

pbInt inNetworkPrefixLength( const struct inNetwork *net )
{
    PB_ASSERT( net );
    return net->prefixLength;
}

void inNetworkSetAddressAndPrefixLength( struct inNetwork **net, const struct inAddress *address,
                                         pbInt optionalPrefixLength )
{
    PB_ASSERT( net );
    PB_ASSERT( *net );
    PB_ASSERT( address );
    PB_ASSERT( optionalPrefixLength >= -1 );
    const pbInt length = inAddressLength( address ) * 8;
    PB_ASSERT( optionalPrefixLength <= length );
    struct inNetwork &edited = pb::edit( net );
    edited.address = optionalPrefixLength == -1 ? pb::share( address ) : masked( address, optionalPrefixLength );
    edited.prefixLength = optionalPrefixLength;
}

pbBool inNetworkContainsAddress( const struct inNetwork *net, const struct inAddress *containedAddress )
{
    PB_ASSERT( net );
    PB_ASSERT( containedAddress );
    if ( net->prefixLength == -1 )
        return inAddressEquals( net->address.get(), containedAddress );
    return inAddressMatchingBits( net->address.get(), containedAddress ) >= net->prefixLength;
}

pbBool inNetworkContainsNetwork( const struct inNetwork *net, const struct inNetwork *containedNetwork )
{
    PB_ASSERT( net );
    PB_ASSERT( containedNetwork );
    return net->effectivePrefixLength() <= containedNetwork->effectivePrefixLength()
           && inNetworkContainsAddress( net, containedNetwork->address.get() );
}
