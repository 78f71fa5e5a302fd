// The layout of inAddress, for the code on the path of every packet. In-tree only.
#ifndef IN_ADDRESS_HPP
#define IN_ADDRESS_HPP

#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( in___sort_IN_ADDRESS )

struct inAddress final : pb::Object<struct inAddress, in___sort_IN_ADDRESS> {
    pbInt version = IN_ADDRESS_VERSION_4;
    uint8_t bytes[16] = {}; // network order; IPv4 uses the first four and keeps the others zero

    static pb::Ref<struct inAddress> fromV4( const void *source )
    {
        auto address = pb::make<struct inAddress>();
        memcpy( address->bytes, source, 4 );
        return address;
    }
    static pb::Ref<struct inAddress> fromV6( const void *source )
    {
        auto address = pb::make<struct inAddress>();
        address->version = IN_ADDRESS_VERSION_6;
        memcpy( address->bytes, source, 16 );
        return address;
    }

    pbInt length() const
    {
        PB_ASSERT_TEXT( IN_ADDRESS_VERSION_OK( version ), "invalid address version" );
        return version == IN_ADDRESS_VERSION_4 ? 4 : 16;
    }
    bool isV4() const { return length() == 4; }

    std::strong_ordering operator<=>( const inAddress &other ) const
    {
        if ( version != other.version )
            return version <=> other.version;
        return memcmp( bytes, other.bytes, static_cast<size_t>( length() ) ) <=> 0;
    }
    bool operator==( const inAddress &other ) const { return ( *this <=> other ) == 0; }

    pb::String toString() const;
};

#endif
