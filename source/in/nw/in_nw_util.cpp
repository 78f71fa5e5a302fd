// How a stack picks its local address and its interfaces from the host's.
#include "in/nw/in_nw_util.hpp"

#include "in/base/in_address.h"
#include "in/base/in_flags.h"
#include "in/base/in_network.h"
#include "in/base/in_options.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interfaces.h"
#include "in/nw/in_nw_util_internal.h"
#include "pb/pb_string.h"
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

    bool admits( const struct inAddress *candidate ) const
    {
        return ( !hasVersion_ || inAddressVersion( candidate ) == version_ ) &&
               ( !network_ || inNetworkContainsAddress( network_.get(), candidate ) ) &&
               ( !address_ || inAddressEquals( address_.get(), candidate ) ) &&
               ( !loopbackOnly_ || inAddressIsLoopback( candidate ) );
    }

private:
    pbInt version_;
    pb::Ref<struct inNetwork> network_;
    Address address_;
    bool loopbackOnly_;
    bool hasVersion_;
};

// The classes are two apart, so that the previous address wins inside its class only.
pbInt score( const struct inAddress *candidate, const struct inAddress *previous )
{
    const pbInt ofClass = inAddressIsLoopback( candidate ) ? 2 : inAddressIsLinkLocalUnicast( candidate ) ? 4 : 8;
    return ofClass + ( previous && inAddressEquals( candidate, previous ) );
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

template <class T> void replace( T **reference, pb::Ref<T> value )
{
    const auto previous = pb::adopt( *reference );
    *reference = value.release();
}

} // namespace

namespace in {

AddressChoice chooseAddress( const struct inOptions *options, const struct inAddress *previousAddress,
                             std::optional<size_t> previousPrimaryInterface,
                             const std::vector<InterfaceSnapshot> &snapshots )
{
    const Demand demand( options );
    const auto wantedInterface = pb::adopt( inOptionsInterface( options ) );
    AddressChoice choice;
    std::optional<size_t> named;
    pbInt bestScore = 0;
    for ( size_t index = 0; index < snapshots.size(); ++index ) {
        if ( wantedInterface ) {
            if ( snapshots[index].identifier != wantedInterface )
                continue;
            named = index;
        }
        const auto addresses = unicastAddresses( snapshots[index] );
        for ( pbInt at = 0; at < pbVectorLength( addresses.get() ); ++at ) {
            auto candidate = pb::adopt( inAddressFrom( pbVectorObjAt( addresses.get(), at ) ) );
            if ( !demand.admits( candidate.get() ) )
                continue;
            // Only a higher score replaces the best: of equals the first one stays, repetitions change nothing.
            const pbInt candidateScore = score( candidate.get(), previousAddress );
            if ( candidateScore > bestScore ) {
                bestScore = candidateScore;
                choice.address = std::move( candidate );
            }
        }
    }

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
    std::vector<in::InterfaceSnapshot> snapshots;
    std::optional<size_t> previousPrimary;
    for ( const auto &iface : current ) {
        if ( iface.get() == *primaryInterface )
            previousPrimary = snapshots.size();
        snapshots.push_back(
            { pb::adopt( inNwInterfaceIdentifier( iface.get() ) ), pb::adopt( inNwInterfaceState( iface.get() ) ) } );
    }

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
