// How a stack picks its local address and its interfaces from the host's.
#include "in/nw/in_nw_util.hpp"

#include "in/base/in_address.h"
#include "in/base/in_flags.h"
#include "in/base/in_network.h"
#include "in/base/in_options.h"
#include "in/nw/in_nw_address_choice.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interfaces.h"
#include "in/nw/in_nw_util_internal.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>

namespace {

using Address = pb::Ref<struct inAddress>;
using Interfaces = std::vector<pb::Ref<struct inNwInterface>>;

// What the options demand of a local address.
class Demand {
public:
    explicit Demand( const struct inOptions *options )
        : version_( inOptionsAddressVersion( options ) ), network_( pb::adopt( inOptionsNetwork( options ) ) ),
          address_( pb::adopt( inOptionsAddress( options ) ) ),
          loopbackOnly_( inOptionsFlags( options ) & IN_FLAG_LOOPBACK_ONLY ),
          hasVersion_( inOptionsHasAddressVersion( options ) )
    {
    }

    void collectExcluding( const struct inAddress *candidate, std::vector<const char *> &keys ) const
    {
        if ( hasVersion_ && inAddressVersion( candidate ) != version_ )
            keys.push_back( "addressVersion" );
        if ( network_ && !inNetworkContainsAddress( network_.get(), candidate ) )
            keys.push_back( "network" );
        if ( address_ && !inAddressEquals( address_.get(), candidate ) )
            keys.push_back( "address" );
        if ( loopbackOnly_ && !inAddressIsLoopback( candidate ) )
            keys.push_back( "flags" );
    }

private:
    pbInt version_;
    pb::Ref<struct inNetwork> network_;
    Address address_;
    bool loopbackOnly_;
    bool hasVersion_;
};

// The classes are two apart, so that the previous address wins inside its class only.
struct AddressClass {
    const char *kind;
    pbInt score;
};
AddressClass classOf( const struct inAddress *candidate )
{
    if ( inAddressIsLoopback( candidate ) )
        return { "loopback", 2 };
    return inAddressIsLinkLocalUnicast( candidate ) ? AddressClass{ "link-local", 4 } : AddressClass{ "other", 8 };
}

pb::Ref<struct pbVector> unicastAddresses( const in::InterfaceSnapshot &snapshot )
{
    return pb::adopt( inNwInterfaceStateLayer3UnicastAddressesVector( snapshot.state.get() ) );
}

Interfaces currentInterfaces()
{
    const auto vector = pb::adopt( inNwInterfacesVector() );
    Interfaces interfaces;
    for ( pbInt index = 0; index < pbVectorLength( vector.get() ); ++index )
        interfaces.push_back( pb::adopt( inNwInterfaceFrom( pbVectorObjAt( vector.get(), index ) ) ) );
    return interfaces;
}

std::vector<in::InterfaceSnapshot> snapshotsOf( const Interfaces &interfaces )
{
    std::vector<in::InterfaceSnapshot> snapshots;
    for ( const auto &iface : interfaces )
        snapshots.push_back(
            { pb::adopt( inNwInterfaceIdentifier( iface.get() ) ), pb::adopt( inNwInterfaceState( iface.get() ) ) } );
    return snapshots;
}

template <class T> void replace( T **reference, pb::Ref<T> value )
{
    const auto previous = pb::adopt( *reference );
    *reference = value.release();
}

pb::Ref<struct pbStore> storeOf( const in::AddressCandidate &candidate, const in::InterfaceSnapshot &snapshot )
{
    auto excludedBy = pb::adopt( pbStoreCreate() );
    for ( const char *key : candidate.excludedBy )
        pbStoreArrayAppendValue( excludedBy.address(), pb::string( key ).get() );
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( store.address(), "address", -1,
                         pb::adopt( inAddressToString( candidate.address.get() ) ).get() );
    pbStoreSetValueCstr( store.address(), "interface", -1, snapshot.identifier.get() );
    pbStoreSetStoreCstr( store.address(), "excludedBy", -1, excludedBy.get() );
    pbStoreSetValueCstr( store.address(), "class", -1, pb::string( candidate.kind ).get() );
    pbStoreSetValueIntCstr( store.address(), "score", -1, candidate.score );
    return store;
}

} // namespace

namespace in {

std::vector<const char *> excludingOptions( const struct inOptions *options, const struct inAddress *address )
{
    std::vector<const char *> keys;
    Demand( options ).collectExcluding( address, keys );
    return keys;
}

std::vector<AddressCandidate> examineAddresses( const struct inOptions *options,
                                                const struct inAddress *previousAddress,
                                                const std::vector<InterfaceSnapshot> &snapshots )
{
    const Demand demand( options );
    const auto wantedInterface = pb::adopt( inOptionsInterface( options ) );
    std::vector<AddressCandidate> candidates;
    for ( size_t index = 0; index < snapshots.size(); ++index ) {
        const auto addresses = unicastAddresses( snapshots[index] );
        for ( pbInt at = 0; at < pbVectorLength( addresses.get() ); ++at ) {
            auto address = pb::adopt( inAddressFrom( pbVectorObjAt( addresses.get(), at ) ) );
            const auto [kind, classScore] = classOf( address.get() );
            AddressCandidate &candidate = candidates.emplace_back( AddressCandidate{ address, index, {}, kind, 0 } );
            if ( wantedInterface && snapshots[index].identifier != wantedInterface )
                candidate.excludedBy.push_back( "interface" );
            demand.collectExcluding( address.get(), candidate.excludedBy );
            if ( candidate.excludedBy.empty() )
                candidate.score = classScore + ( previousAddress && inAddressEquals( address.get(), previousAddress ) );
        }
    }
    return candidates;
}

AddressChoice chooseAddress( const struct inOptions *options, const struct inAddress *previousAddress,
                             std::optional<size_t> previousPrimaryInterface,
                             const std::vector<InterfaceSnapshot> &snapshots )
{
    AddressChoice choice;
    // Only a higher score replaces the best: of equals the first one stays, repetitions change nothing.
    pbInt bestScore = 0;
    for ( AddressCandidate &candidate : examineAddresses( options, previousAddress, snapshots ) )
        if ( candidate.score > bestScore ) {
            bestScore = candidate.score;
            choice.address = std::move( candidate.address );
        }
    std::optional<size_t> named;
    if ( const auto wantedInterface = pb::adopt( inOptionsInterface( options ) ) )
        for ( size_t index = 0; index < snapshots.size(); ++index )
            if ( snapshots[index].identifier == wantedInterface )
                named = index;

    if ( choice.address )
        for ( size_t index = 0; index < snapshots.size(); ++index )
            if ( inNwInterfaceStateLayer3HasUnicastAddress( snapshots[index].state.get(), choice.address.get() ) )
                choice.interfaces.push_back( index );
    const auto chosen = [&choice]( size_t index ) {
        return std::find( choice.interfaces.begin(), choice.interfaces.end(), index ) != choice.interfaces.end();
    };
    if ( named ) {
        if ( !chosen( *named ) )
            choice.interfaces.push_back( *named );
        choice.primaryInterface = named;
    }
    else if ( previousPrimaryInterface && chosen( *previousPrimaryInterface ) )
        choice.primaryInterface = previousPrimaryInterface;
    else if ( !choice.interfaces.empty() )
        choice.primaryInterface = choice.interfaces.front();
    return choice;
}

} // namespace in

void in___NwUtilFindAddressAndInterface( const struct inOptions *options, struct inAddress **address,
                                         struct inNwInterface **primaryInterface, struct pbVector **interfaces )
{
    PB_ASSERT( options );
    PB_ASSERT( address );
    PB_ASSERT( primaryInterface );
    PB_ASSERT( interfaces );
    const Interfaces current = currentInterfaces();
    const std::vector<in::InterfaceSnapshot> snapshots = snapshotsOf( current );
    std::optional<size_t> previousPrimary;
    for ( size_t index = 0; index < current.size(); ++index )
        if ( current[index].get() == *primaryInterface )
            previousPrimary = index;

    auto choice = in::chooseAddress( options, *address, previousPrimary, snapshots );
    auto chosen = pb::adopt( pbVectorCreate() );
    for ( const size_t index : choice.interfaces )
        pbVectorAppend( chosen.address(), inNwInterfaceObj( current[index].get() ) );
    replace( address, std::move( choice.address ) );
    replace( primaryInterface, choice.primaryInterface ? current[*choice.primaryInterface] : nullptr );
    replace( interfaces, std::move( chosen ) );
}

// The registry signals additions and ends only; what happens to an interface in between comes from itself. The registry
// first: an interface that is added meanwhile then wakes.
void in___NwUtilInterfacesUpdateAddSignalable( struct pbSignalable *signalable )
{
    inNwInterfacesUpdateAddSignalable( signalable );
    for ( const auto &iface : currentInterfaces() )
        inNwInterfaceUpdateAddSignalable( iface.get(), signalable );
}

void in___NwUtilInterfacesUpdateDelSignalable( struct pbSignalable *signalable )
{
    inNwInterfacesUpdateDelSignalable( signalable );
    for ( const auto &iface : currentInterfaces() )
        inNwInterfaceUpdateDelSignalable( iface.get(), signalable );
}

struct pbStore *inNwExplainAddressChoice( const struct inOptions *options, const struct inAddress *optionalPrevious )
{
    PB_ASSERT( options );
    const std::vector<in::InterfaceSnapshot> snapshots = snapshotsOf( currentInterfaces() );
    auto candidates = pb::adopt( pbStoreCreate() );
    for ( const auto &candidate : in::examineAddresses( options, optionalPrevious, snapshots ) )
        pbStoreArrayAppendStore( candidates.address(), storeOf( candidate, snapshots[candidate.interface] ).get() );
    const auto choice = in::chooseAddress( options, optionalPrevious, std::nullopt, snapshots );
    auto interfaces = pb::adopt( pbStoreCreate() );
    for ( const size_t index : choice.interfaces )
        pbStoreArrayAppendValue( interfaces.address(), snapshots[index].identifier.get() );

    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetStoreCstr( store.address(), "candidates", -1, candidates.get() );
    if ( choice.address )
        pbStoreSetValueCstr( store.address(), "address", -1,
                             pb::adopt( inAddressToString( choice.address.get() ) ).get() );
    pbStoreSetStoreCstr( store.address(), "interfaces", -1, interfaces.get() );
    if ( choice.primaryInterface )
        pbStoreSetValueCstr( store.address(), "primaryInterface", -1,
                             snapshots[*choice.primaryInterface].identifier.get() );
    return store.release();
}
