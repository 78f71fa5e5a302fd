// inTcpPortRange: a range of TCP ports.
#include "in/tcp/in_tcp_port_range.h"

#include "in/base/in_store_form.hpp"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_port_range_internal.h"
#include "pb/pb_format.hpp"

PB_SORT_DECLARE( in___sort_IN_TCP_PORT_RANGE )

struct inTcpPortRange final : pb::Object<struct inTcpPortRange, in___sort_IN_TCP_PORT_RANGE> {
    pbInt firstPort = 1; // 1..65535
    pbInt count = 0;     // 0..65535; what goes beyond port 65535 is not used

    auto operator<=>( const inTcpPortRange & ) const = default;

    pb::String toString() const { return pb::format( "firstPort=%i, count=%i", firstPort, count ); }
};

PB_OBJECT_DEFINE( inTcpPortRange, in___sort_IN_TCP_PORT_RANGE )

namespace {

constexpr auto form = std::tuple{
    in::form::Row{ "firstPort", &inTcpPortRange::firstPort,
                   in::form::Told{ in::form::Integer{ 1, 65535 }, "The lowest port" }, in::form::always },
    in::form::Row{ "count", &inTcpPortRange::count,
                   in::form::Told{ in::form::Integer{ 0, 65535 }, "How many ports, up to port 65535" },
                   in::form::always },
};

} // namespace

const struct csKey *in___TcpPortRangeKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inTcpPortRange *inTcpPortRangeCreate( pbInt firstPort, pbInt count )
{
    PB_ASSERT( IN_TCP_PORT_OK( firstPort ) );
    PB_ASSERT( count >= 0 && count <= 65535 );
    auto range = pb::make<struct inTcpPortRange>();
    range->firstPort = firstPort;
    range->count = count;
    return range.release();
}

struct inTcpPortRange *inTcpPortRangeCreateFrom( const struct inTcpPortRange *source )
{
    PB_ASSERT( source );
    return pb::make<struct inTcpPortRange>( *source ).release();
}

pbInt inTcpPortRangeFirstPort( const struct inTcpPortRange *range )
{
    PB_ASSERT( range );
    return range->firstPort;
}

void inTcpPortRangeSetFirstPort( struct inTcpPortRange **range, pbInt firstPort )
{
    PB_ASSERT( range );
    PB_ASSERT( *range );
    PB_ASSERT( IN_TCP_PORT_OK( firstPort ) );
    pb::edit( range ).firstPort = firstPort;
}

pbInt inTcpPortRangeCount( const struct inTcpPortRange *range )
{
    PB_ASSERT( range );
    return range->count;
}

void inTcpPortRangeSetCount( struct inTcpPortRange **range, pbInt count )
{
    PB_ASSERT( range );
    PB_ASSERT( *range );
    PB_ASSERT( count >= 0 && count <= 65535 );
    pb::edit( range ).count = count;
}

struct pbStore *inTcpPortRangeStore( const struct inTcpPortRange *range )
{
    PB_ASSERT( range );
    return in::form::store( *range, form ).release();
}

struct inTcpPortRange *inTcpPortRangeTryRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto range = pb::make<struct inTcpPortRange>();
    return in::form::restore( *range, form, store ) ? range.release() : nullptr;
}
