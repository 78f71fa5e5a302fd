// inNwOptions: the configuration of an interface configuration stack.
#include "in/nw/in_nw_options.h"

#include "cs/cs_condition.h"
#include "in/base/in_address.h"
#include "in/base/in_address_text.hpp"
#include "in/base/in_network.h"
#include "in/base/in_store_form_vector.hpp"
#include "in/nw/in_nw_options_internal.h"

PB_SORT_DECLARE( in___sort_IN_NW_OPTIONS )

struct inNwOptions final : pb::Object<struct inNwOptions, in___sort_IN_NW_OPTIONS> {
    pb::String interfaceIdentifier;
    pb::Ref<struct csCondition> csCondition; // compares by identity
    pb::String csConditionName;
    pbBool status = false;
    pb::Ref<struct inAddress> layer3UnicastAddress;
    pb::Ref<struct inNetwork> layer3Network; // contains the address when there is one

    auto operator<=>( const inNwOptions & ) const = default;

    bool networkFits() const
    {
        return !layer3UnicastAddress || !layer3Network ||
               inNetworkContainsAddress( layer3Network.get(), layer3UnicastAddress.get() );
    }
};

PB_OBJECT_DEFINE( inNwOptions, in___sort_IN_NW_OPTIONS )

namespace {

using in::form::Row;
using in::form::Told;

constexpr auto form = std::tuple{
    Row{ "interfaceIdentifier", &inNwOptions::interfaceIdentifier,
         Told{ in::form::Text{}, "The name of the network interface to configure" }, in::form::whenPresent },
    Row{ "csConditionName", &inNwOptions::csConditionName,
         Told{ in::form::RecordName{ "CS_CONDITION" },
               "The condition that must be true; while it is not the interface is let go" },
         in::form::whenPresent },
    Row{ "status", &inNwOptions::status,
         Told{ in::form::Boolean{}, "Brings the interface up, and down again when it is let go" }, in::form::always },
    Row{ "layer3UnicastAddress", &inNwOptions::layer3UnicastAddress,
         Told{ in::form::TextOf<struct inAddress>{ inAddressToString, inAddressTryCreateFromString, "an IP address",
                                                   nullptr, in::text::addressPattern },
               "The address to put on the interface", CS_KEY_FLAG_UNIQUE },
         in::form::whenPresent },
    Row{ "layer3Network", &inNwOptions::layer3Network,
         Told{ in::form::TextOf<struct inNetwork>{ inNetworkToString, inNetworkTryCreateFromString,
                                                   "the network of the address, such as 10.0.0.0/8", nullptr,
                                                   in::text::networkPattern },
               "The network of that address, which gives it its prefix length" },
         in::form::whenPresent },
};

} // namespace

const struct csKey *in___NwOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inNwOptions *inNwOptionsCreate( void )
{
    return pb::make<struct inNwOptions>().release();
}

struct inNwOptions *inNwOptionsCreateFrom( const struct inNwOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNwOptions>( *source ).release();
}

struct pbString *inNwOptionsInterfaceIdentifier( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->interfaceIdentifier.share();
}

pbBool inNwOptionsHasInterfaceIdentifier( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->interfaceIdentifier );
}

void inNwOptionsSetInterfaceIdentifier( struct inNwOptions **options, const struct pbString *identifier )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( identifier );
    pb::edit( options ).interfaceIdentifier = pb::share( identifier );
}

void inNwOptionsDelInterfaceIdentifier( struct inNwOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).interfaceIdentifier.reset();
}

struct csCondition *inNwOptionsCsCondition( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->csCondition.share();
}

pbBool inNwOptionsHasCsCondition( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->csCondition );
}

void inNwOptionsSetCsCondition( struct inNwOptions **options, const struct csCondition *condition )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( condition );
    pb::edit( options ).csCondition = pb::share( condition );
}

void inNwOptionsDelCsCondition( struct inNwOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).csCondition.reset();
}

struct pbString *inNwOptionsCsConditionName( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->csConditionName.share();
}

pbBool inNwOptionsHasCsConditionName( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->csConditionName );
}

void inNwOptionsSetCsConditionName( struct inNwOptions **options, const struct pbString *conditionName )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( conditionName );
    PB_ASSERT( csObjectRecordNameOk( conditionName ) );
    pb::edit( options ).csConditionName = pb::share( conditionName );
}

void inNwOptionsDelCsConditionName( struct inNwOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).csConditionName.reset();
}

pbBool inNwOptionsStatus( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->status;
}

void inNwOptionsSetStatus( struct inNwOptions **options, pbBool status )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).status = PB_BOOL_FROM( status );
}

struct inAddress *inNwOptionsLayer3UnicastAddress( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->layer3UnicastAddress.share();
}

pbBool inNwOptionsHasLayer3UnicastAddress( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->layer3UnicastAddress );
}

void inNwOptionsSetLayer3UnicastAddress( struct inNwOptions **options, const struct inAddress *address )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( address );
    const auto network = ( *options )->layer3Network;
    PB_ASSERT( !network || inNetworkContainsAddress( network.get(), address ) );
    pb::edit( options ).layer3UnicastAddress = pb::share( address );
}

void inNwOptionsDelLayer3UnicastAddress( struct inNwOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).layer3UnicastAddress.reset();
}

struct inNetwork *inNwOptionsLayer3Network( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return options->layer3Network.share();
}

pbBool inNwOptionsHasLayer3Network( const struct inNwOptions *options )
{
    PB_ASSERT( options );
    return PB_BOOL_FROM( options->layer3Network );
}

void inNwOptionsSetLayer3Network( struct inNwOptions **options, const struct inNetwork *network )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    PB_ASSERT( network );
    const auto address = ( *options )->layer3UnicastAddress;
    PB_ASSERT( !address || inNetworkContainsAddress( network, address.get() ) );
    pb::edit( options ).layer3Network = pb::share( network );
}

void inNwOptionsDelLayer3Network( struct inNwOptions **options )
{
    PB_ASSERT( options );
    PB_ASSERT( *options );
    pb::edit( options ).layer3Network.reset();
}

struct pbStore *inNwOptionsStore( const struct inNwOptions *options, pbBool storeDefaults )
{
    PB_ASSERT( options );
    return in::form::store( *options, form, storeDefaults ).release();
}

struct inNwOptions *inNwOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto options = pb::make<struct inNwOptions>();
    in::form::restore( *options, form, store );
    if ( !options->networkFits() )
        options->layer3Network.reset();
    return options.release();
}
