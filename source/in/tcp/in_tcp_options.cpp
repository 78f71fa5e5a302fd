// inTcpOptions: the TCP part of a stack's options.
#include "in/tcp/in_tcp_options.h"

#include "in/base/in_store_form.hpp"
#include "in/tcp/in_tcp_options_internal.h"
#include "in/tcp/in_tcp_port_range.h"
#include "in/tcp/in_tcp_port_range_internal.h"

PB_SORT_DECLARE( in___sort_IN_TCP_OPTIONS )

namespace {

constexpr pbBool defaultBlacklistEnabled = 1;
constexpr pbInt defaultBlacklistTimeout = 120000;
constexpr pbInt defaultBlacklistGranularity = 15000;
constexpr pbBool defaultKeepAliveEnabled = 0;
constexpr pbInt defaultKeepAliveTime = 30000;

} // namespace

struct inTcpOptions final : pb::Object<struct inTcpOptions, in___sort_IN_TCP_OPTIONS> {
    pb::Ref<struct inTcpPortRange> portRange; // or null
    pb::Defaulted<pbBool> blacklistEnabled{ defaultBlacklistEnabled };
    pb::Defaulted<pbInt> blacklistTimeout{ defaultBlacklistTimeout };         // milliseconds, > 0
    pb::Defaulted<pbInt> blacklistGranularity{ defaultBlacklistGranularity }; // milliseconds, > 0
    pb::Defaulted<pbBool> keepAliveEnabled{ defaultKeepAliveEnabled };
    pb::Defaulted<pbInt> keepAliveTime{ defaultKeepAliveTime }; // milliseconds, > 0

    auto operator<=>( const inTcpOptions & ) const = default;
};

PB_OBJECT_DEFINE( inTcpOptions, in___sort_IN_TCP_OPTIONS )

namespace {

struct pbStore *storePortRange( const struct inTcpPortRange *range, pbBool )
{
    return inTcpPortRangeStore( range );
}

using in::form::Boolean;
using in::form::Row;
using in::form::Told;
using in::form::unlessDefault;

constexpr in::form::Integer milliseconds{ 1, PB_INT_MAX, "milliseconds, greater than 0" };

constexpr auto form = std::tuple{
    Row{ "portRange", &inTcpOptions::portRange,
         Told{ in::form::StoreOf<struct inTcpPortRange>{ storePortRange, inTcpPortRangeTryRestore,
                                                         in___TcpPortRangeKeys, CS_KEY_FLAG_WHOLE },
               "The local ports to choose from; without it the system chooses" },
         in::form::whenPresent },
    Row{ "blacklistEnabled", &inTcpOptions::blacklistEnabled,
         Told{ Boolean{}, "Passes over peers for a while that could not be reached" }, unlessDefault },
    Row{ "blacklistTimeout", &inTcpOptions::blacklistTimeout,
         Told{ milliseconds, "How long such a peer is passed over" }, unlessDefault },
    Row{ "blacklistGranularity", &inTcpOptions::blacklistGranularity,
         Told{ milliseconds, "How exact that time is; kept for systems that read it" }, unlessDefault },
    Row{ "keepAliveEnabled", &inTcpOptions::keepAliveEnabled,
         Told{ Boolean{}, "Probes connections on which nothing happens" }, unlessDefault },
    Row{ "keepAliveTime", &inTcpOptions::keepAliveTime,
         Told{ milliseconds, "How long nothing happens before a connection is probed" }, unlessDefault },
};

} // namespace

const struct csKey *in___TcpOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inTcpOptions *inTcpOptionsCreate( void )
{
    return pb::make<struct inTcpOptions>().release();
}

struct inTcpOptions *inTcpOptionsCreateFrom( const struct inTcpOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inTcpOptions>( *source ).release();
}

struct inTcpPortRange *inTcpOptionsPortRange( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->portRange.share();
}

pbBool inTcpOptionsHasPortRange( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->portRange );
}

void inTcpOptionsSetPortRange( struct inTcpOptions **options, const struct inTcpPortRange *portRange )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( portRange );
    pb::edit( options ).portRange = pb::share( portRange );
}

void inTcpOptionsDelPortRange( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).portRange.reset();
}

pbBool inTcpOptionsBlacklistEnabled( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistEnabled.value;
}

void inTcpOptionsSetBlacklistEnabled( struct inTcpOptions **options, pbBool enabled )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).blacklistEnabled.set( PB_BOOL_FROM( enabled ) );
}

pbBool inTcpOptionsBlacklistEnabledDefault( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistEnabled.isDefault;
}

void inTcpOptionsSetBlacklistEnabledDefault( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).blacklistEnabled.setDefault( defaultBlacklistEnabled );
}

pbInt inTcpOptionsBlacklistTimeout( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistTimeout.value;
}

void inTcpOptionsSetBlacklistTimeout( struct inTcpOptions **options, pbInt timeout )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( timeout > 0 );
    pb::edit( options ).blacklistTimeout.set( timeout );
}

pbBool inTcpOptionsBlacklistTimeoutDefault( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistTimeout.isDefault;
}

void inTcpOptionsSetBlacklistTimeoutDefault( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).blacklistTimeout.setDefault( defaultBlacklistTimeout );
}

pbInt inTcpOptionsBlacklistGranularity( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistGranularity.value;
}

void inTcpOptionsSetBlacklistGranularity( struct inTcpOptions **options, pbInt granularity )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( granularity > 0 );
    pb::edit( options ).blacklistGranularity.set( granularity );
}

pbBool inTcpOptionsBlacklistGranularityDefault( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->blacklistGranularity.isDefault;
}

void inTcpOptionsSetBlacklistGranularityDefault( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).blacklistGranularity.setDefault( defaultBlacklistGranularity );
}

pbBool inTcpOptionsKeepAliveEnabled( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->keepAliveEnabled.value;
}

void inTcpOptionsSetKeepAliveEnabled( struct inTcpOptions **options, pbBool enabled )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).keepAliveEnabled.set( PB_BOOL_FROM( enabled ) );
}

pbBool inTcpOptionsKeepAliveEnabledDefault( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->keepAliveEnabled.isDefault;
}

void inTcpOptionsSetKeepAliveEnabledDefault( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).keepAliveEnabled.setDefault( defaultKeepAliveEnabled );
}

pbInt inTcpOptionsKeepAliveTime( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->keepAliveTime.value;
}

void inTcpOptionsSetKeepAliveTime( struct inTcpOptions **options, pbInt milliseconds )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( milliseconds > 0 );
    pb::edit( options ).keepAliveTime.set( milliseconds );
}

pbBool inTcpOptionsKeepAliveTimeDefault( const struct inTcpOptions *options )
{
    PB_ASSERT( options );
    return options->keepAliveTime.isDefault;
}

void inTcpOptionsSetKeepAliveTimeDefault( struct inTcpOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).keepAliveTime.setDefault( defaultKeepAliveTime );
}

struct pbStore *inTcpOptionsStore( const struct inTcpOptions *options, pbBool storeDefaults )
{
    PB_ASSERT( options );
    return in::form::store( *options, form, storeDefaults ).release();
}

struct inTcpOptions *inTcpOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto options = pb::make<struct inTcpOptions>();
    in::form::restore( *options, form, store );
    return options.release();
}
