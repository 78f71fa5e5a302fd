// inRawAddress: a raw IP endpoint.
#include "in/raw/in_raw_address.h"

#include "in/base/in_address.h"
#include "in/raw/in_raw_address_internal.h"
#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( in___sort_IN_RAW_ADDRESS )

struct inRawAddress final : pb::Object<struct inRawAddress, in___sort_IN_RAW_ADDRESS> {
    pb::Ref<struct inAddress> address; // never null
    pbInt protocol = 0;                // 0..255

    auto operator<=>( const inRawAddress & ) const = default;

    pb::String toString() const
    {
        return pb::format( "%~s:%i", pb::adopt( inAddressToHost( address.get() ) ), protocol );
    }
};

PB_OBJECT_DEFINE( inRawAddress, in___sort_IN_RAW_ADDRESS )

struct inRawAddress *inRawAddressCreate( const struct inAddress *address, pbInt protocol )
{
    PB_ASSERT( address );
    PB_ASSERT( IN_RAW_PROTOCOL_OK( protocol ) );
    auto rawAddress = pb::make<struct inRawAddress>();
    rawAddress->address = pb::share( address );
    rawAddress->protocol = protocol;
    return rawAddress.release();
}

struct inRawAddress *inRawAddressCreateFrom( const struct inRawAddress *source )
{
    PB_ASSERT( source );
    return pb::make<struct inRawAddress>( *source ).release();
}

struct inAddress *inRawAddressAddress( const struct inRawAddress *rawAddress )
{
    PB_ASSERT( rawAddress );
    return rawAddress->address.share();
}

pbInt inRawAddressProtocol( const struct inRawAddress *rawAddress )
{
    PB_ASSERT( rawAddress );
    return rawAddress->protocol;
}

void in___RawAddressUpdate( struct inRawAddress **rawAddress, const struct inAddress *address, pbInt protocol )
{
    PB_ASSERT( rawAddress );
    PB_ASSERT( *rawAddress );
    PB_ASSERT( address );
    PB_ASSERT( IN_RAW_PROTOCOL_OK( protocol ) );
    const struct inRawAddress &current = **rawAddress;
    if ( current.protocol == protocol && inAddressEquals( current.address.get(), address ) )
        return;
    struct inRawAddress &edited = pb::edit( rawAddress );
    edited.address = pb::share( address );
    edited.protocol = protocol;
}

const struct inAddress *in___RawAddressAddressBorrowed( const struct inRawAddress *rawAddress )
{
    PB_ASSERT( rawAddress );
    return rawAddress->address.get();
}
