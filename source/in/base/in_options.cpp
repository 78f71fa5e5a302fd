// inOptions: the configuration of a stack.
#include "in/base/in_options.h"

#include "in/base/in_address.h"
#include "in/base/in_address_text.hpp"
#include "in/base/in_address_version.h"
#include "in/base/in_address_version_internal.h"
#include "in/base/in_flags.h"
#include "in/base/in_flags_internal.h"
#include "in/base/in_network.h"
#include "in/base/in_options_internal.h"
#include "in/base/in_store_form.hpp"
#include "in/dns/in_dns_options.h"
#include "in/dns/in_dns_options_internal.h"
#include "in/tcp/in_tcp_options.h"
#include "in/tcp/in_tcp_options_internal.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_options_internal.h"

PB_SORT_DECLARE( in___sort_IN_OPTIONS )

struct inOptions final : pb::Object<struct inOptions, in___sort_IN_OPTIONS> {
    uint64_t flags = 0; // normalised
    pb::String interface;
    pb::Ref<struct inNetwork> network;
    pbInt addressVersion = -1;
    pb::Ref<struct inAddress> address;
    // never null
    pb::Defaulted<pb::Ref<struct inDnsOptions>> dnsOptions{ pb::adopt( inDnsOptionsCreate() ) };
    pb::Defaulted<pb::Ref<struct inTcpOptions>> tcpOptions{ pb::adopt( inTcpOptionsCreate() ) };
    pb::Defaulted<pb::Ref<struct inUdpOptions>> udpOptions{ pb::adopt( inUdpOptionsCreate() ) };

    auto operator<=>( const inOptions & ) const = default;
};

PB_OBJECT_DEFINE( inOptions, in___sort_IN_OPTIONS )

namespace {

struct pbStore *storeUdpOptions( const struct inUdpOptions *options, pbBool )
{
    return inUdpOptionsStore( options ); // which has no defaults to store
}

using in::form::Row;
using in::form::Told;

constexpr auto form = std::tuple{
    Row{ "flags", &inOptions::flags,
         Told{ in::form::Flags{ inFlagsToString, inFlagsFromString, in___FlagsNames },
               "Flags of the stack; IN_FLAG_LOOPBACK_ONLY admits loopback addresses alone" },
         in::form::always },
    Row{ "interface", &inOptions::interface,
         Told{ in::form::Text{}, "The name of the network interface whose addresses are admitted" },
         in::form::whenPresent },
    Row{ "network", &inOptions::network,
         Told{ in::form::TextOf<struct inNetwork>{ inNetworkToString, inNetworkTryCreateFromString,
                                                   "an IP address, or one with a prefix length such as 10.0.0.0/8",
                                                   nullptr, in::text::networkPattern },
               "The network in which the stack's address must lie" },
         in::form::whenPresent },
    Row{ "addressVersion", &inOptions::addressVersion,
         Told{ in::form::Enumeration{ inAddressVersionToString, inAddressVersionFromString, in___AddressVersionNames },
               "The version of the stack's address" },
         in::form::whenPresent },
    Row{ "address", &inOptions::address,
         Told{ in::form::TextOf<struct inAddress>{ inAddressToString, inAddressTryCreateFromString, "an IP address",
                                                   nullptr, in::text::addressPattern },
               "The one address that the stack may have" },
         in::form::whenPresent },
    Row{ "dnsOptions", &inOptions::dnsOptions,
         Told{ in::form::StoreOf<struct inDnsOptions>{ inDnsOptionsStore, inDnsOptionsRestore, in___DnsOptionsKeys },
               "How the stack resolves names" },
         in::form::unlessDefault },
    Row{ "tcpOptions", &inOptions::tcpOptions,
         Told{ in::form::StoreOf<struct inTcpOptions>{ inTcpOptionsStore, inTcpOptionsRestore, in___TcpOptionsKeys },
               "How the stack opens TCP channels" },
         in::form::unlessDefault },
    Row{ "udpOptions", &inOptions::udpOptions,
         Told{ in::form::StoreOf<struct inUdpOptions>{ storeUdpOptions, inUdpOptionsRestore, in___UdpOptionsKeys },
               "How the stack opens UDP channels" },
         in::form::unlessDefault },
};

} // namespace

const struct csKey *in___OptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inOptions *inOptionsCreate( void )
{
    return pb::make<struct inOptions>().release();
}

struct inOptions *inOptionsCreateFrom( const struct inOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inOptions>( *source ).release();
}

uint64_t inOptionsFlags( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->flags;
}

void inOptionsSetFlags( struct inOptions **options, uint64_t flags )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).flags = inFlagsNormalize( flags );
}

struct pbString *inOptionsInterface( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->interface.share();
}

pbBool inOptionsHasInterface( const struct inOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->interface );
}

void inOptionsSetInterface( struct inOptions **options, const struct pbString *iface )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( iface );
    pb::edit( options ).interface = pb::share( iface );
}

void inOptionsDelInterface( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).interface.reset();
}

struct inNetwork *inOptionsNetwork( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->network.share();
}

pbBool inOptionsHasNetwork( const struct inOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->network );
}

void inOptionsSetNetwork( struct inOptions **options, const struct inNetwork *network )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( network );
    pb::edit( options ).network = pb::share( network );
}

void inOptionsDelNetwork( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).network.reset();
}

pbInt inOptionsAddressVersion( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->addressVersion;
}

pbBool inOptionsHasAddressVersion( const struct inOptions *options )
{
    PB_ASSERT( options );
    return IN_ADDRESS_VERSION_OK( options->addressVersion );
}

void inOptionsSetAddressVersion( struct inOptions **options, pbInt version )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( IN_ADDRESS_VERSION_OK( version ) );
    pb::edit( options ).addressVersion = version;
}

void inOptionsDelAddressVersion( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).addressVersion = -1;
}

struct inAddress *inOptionsAddress( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->address.share();
}

pbBool inOptionsHasAddress( const struct inOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->address );
}

void inOptionsSetAddress( struct inOptions **options, const struct inAddress *address )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( address );
    pb::edit( options ).address = pb::share( address );
}

void inOptionsDelAddress( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).address.reset();
}

struct inDnsOptions *inOptionsDnsOptions( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->dnsOptions.value.share();
}

void inOptionsSetDnsOptions( struct inOptions **options, const struct inDnsOptions *dnsOptions )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( dnsOptions );
    pb::edit( options ).dnsOptions.set( pb::share( dnsOptions ) );
}

pbBool inOptionsDnsOptionsDefault( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->dnsOptions.isDefault;
}

void inOptionsSetDnsOptionsDefault( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).dnsOptions.setDefault( pb::adopt( inDnsOptionsCreate() ) );
}

struct inTcpOptions *inOptionsTcpOptions( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->tcpOptions.value.share();
}

void inOptionsSetTcpOptions( struct inOptions **options, const struct inTcpOptions *tcpOptions )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( tcpOptions );
    pb::edit( options ).tcpOptions.set( pb::share( tcpOptions ) );
}

pbBool inOptionsTcpOptionsDefault( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->tcpOptions.isDefault;
}

void inOptionsSetTcpOptionsDefault( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).tcpOptions.setDefault( pb::adopt( inTcpOptionsCreate() ) );
}

struct inUdpOptions *inOptionsUdpOptions( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->udpOptions.value.share();
}

void inOptionsSetUdpOptions( struct inOptions **options, const struct inUdpOptions *udpOptions )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( udpOptions );
    pb::edit( options ).udpOptions.set( pb::share( udpOptions ) );
}

pbBool inOptionsUdpOptionsDefault( const struct inOptions *options )
{
    PB_ASSERT( options );
    return options->udpOptions.isDefault;
}

void inOptionsSetUdpOptionsDefault( struct inOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).udpOptions.setDefault( pb::adopt( inUdpOptionsCreate() ) );
}

struct pbStore *inOptionsStore( const struct inOptions *options, pbBool storeDefaults )
{
    PB_ASSERT( options );
    return in::form::store( *options, form, storeDefaults ).release();
}

struct inOptions *inOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto options = pb::make<struct inOptions>();
    in::form::restore( *options, form, store );
    return options.release();
}
