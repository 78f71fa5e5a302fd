// inUdpOptions: the UDP part of a stack's options.
#include "in/udp/in_udp_options.h"

#include "in/base/in_store_form.hpp"
#include "in/udp/in_udp_options_internal.h"
#include "in/udp/in_udp_port_range.h"
#include "in/udp/in_udp_port_range_internal.h"

PB_SORT_DECLARE( in___sort_IN_UDP_OPTIONS )

struct inUdpOptions final : pb::Object<struct inUdpOptions, in___sort_IN_UDP_OPTIONS> {
    pb::Ref<struct inUdpPortRange> portRange; // or null

    auto operator<=>( const inUdpOptions & ) const = default;
};

PB_OBJECT_DEFINE( inUdpOptions, in___sort_IN_UDP_OPTIONS )

namespace {

struct pbStore *storePortRange( const struct inUdpPortRange *range, pbBool )
{
    return inUdpPortRangeStore( range );
}

constexpr auto form = std::tuple{
    in::form::Row{
        "portRange", &inUdpOptions::portRange,
        in::form::Told{ in::form::StoreOf<struct inUdpPortRange>{ storePortRange, inUdpPortRangeTryRestore,
                                                                  in___UdpPortRangeKeys, CS_KEY_FLAG_WHOLE },
                        "The local ports to choose from; without it the system chooses" },
        in::form::whenPresent },
};

} // namespace

const struct csKey *in___UdpOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inUdpOptions *inUdpOptionsCreate( void )
{
    return pb::make<struct inUdpOptions>().release();
}

struct inUdpOptions *inUdpOptionsCreateFrom( const struct inUdpOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inUdpOptions>( *source ).release();
}

struct inUdpPortRange *inUdpOptionsPortRange( const struct inUdpOptions *options )
{
    PB_ASSERT( options );
    return options->portRange.share();
}

pbBool inUdpOptionsHasPortRange( const struct inUdpOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->portRange );
}

void inUdpOptionsSetPortRange( struct inUdpOptions **options, const struct inUdpPortRange *portRange )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( portRange );
    pb::edit( options ).portRange = pb::share( portRange );
}

void inUdpOptionsDelPortRange( struct inUdpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).portRange.reset();
}

struct pbStore *inUdpOptionsStore( const struct inUdpOptions *options )
{
    PB_ASSERT( options );
    return in::form::store( *options, form ).release();
}

struct inUdpOptions *inUdpOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto options = pb::make<struct inUdpOptions>();
    in::form::restore( *options, form, store );
    return options.release();
}
