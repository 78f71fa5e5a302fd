// inUdpPortRange: a range of UDP ports.
#include "in/udp/in_udp_port_range.h"

#include "in/base/in_store_form.hpp"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_port_range_internal.h"
#include "pb/pb_format.hpp"

PB_SORT_DECLARE( in___sort_IN_UDP_PORT_RANGE )

struct inUdpPortRange final : pb::Object<struct inUdpPortRange, in___sort_IN_UDP_PORT_RANGE> {
    pbInt firstPort = 1; // 1..65535
    pbInt count = 0;     // 0..65535; what goes beyond port 65535 is not used

    auto operator<=>( const inUdpPortRange & ) const = default;

    pb::String toString() const { return pb::format( "firstPort=%i, count=%i", firstPort, count ); }
};

PB_OBJECT_DEFINE( inUdpPortRange, in___sort_IN_UDP_PORT_RANGE )

namespace {

constexpr auto form = std::tuple{
    in::form::Row{ "firstPort", &inUdpPortRange::firstPort,
                   in::form::Told{ in::form::Integer{ 1, 65535 }, "The lowest port" }, in::form::always },
    in::form::Row{ "count", &inUdpPortRange::count,
                   in::form::Told{ in::form::Integer{ 0, 65535 }, "How many ports, up to port 65535" },
                   in::form::always },
};

} // namespace

const struct csKey *in___UdpPortRangeKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inUdpPortRange *inUdpPortRangeCreate( pbInt firstPort, pbInt count )
{
    PB_ASSERT( IN_UDP_PORT_OK( firstPort ) );
    PB_ASSERT( count >= 0 && count <= 65535 );
    auto range = pb::make<struct inUdpPortRange>();
    range->firstPort = firstPort;
    range->count = count;
    return range.release();
}

struct inUdpPortRange *inUdpPortRangeCreateFrom( const struct inUdpPortRange *source )
{
    PB_ASSERT( source );
    return pb::make<struct inUdpPortRange>( *source ).release();
}

pbInt inUdpPortRangeFirstPort( const struct inUdpPortRange *range )
{
    PB_ASSERT( range );
    return range->firstPort;
}

void inUdpPortRangeSetFirstPort( struct inUdpPortRange **range, pbInt firstPort )
{
    PB_ASSERT( range );
    PB_ASSERT( *range );
    PB_ASSERT( IN_UDP_PORT_OK( firstPort ) );
    pb::edit( range ).firstPort = firstPort;
}

pbInt inUdpPortRangeCount( const struct inUdpPortRange *range )
{
    PB_ASSERT( range );
    return range->count;
}

void inUdpPortRangeSetCount( struct inUdpPortRange **range, pbInt count )
{
    PB_ASSERT( range );
    PB_ASSERT( *range );
    PB_ASSERT( count >= 0 && count <= 65535 );
    pb::edit( range ).count = count;
}

struct pbStore *inUdpPortRangeStore( const struct inUdpPortRange *range )
{
    PB_ASSERT( range );
    return in::form::store( *range, form ).release();
}

struct inUdpPortRange *inUdpPortRangeTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto range = pb::make<struct inUdpPortRange>();
    return in::form::restore( *range, form, store ) ? range.release() : nullptr;
}
