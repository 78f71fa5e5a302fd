// The objects of a running configuration as clients are shown them.
#include "inctl/attach_view.hpp"

#include "inctl/items.hpp"
#include "inctl/records.hpp"

#include "in/base/in_address.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/filter/in_filter.h"
#include "in/nw/in_nw_interface.h"

#include <algorithm>

namespace inctl {
namespace {

constexpr pbInt queriesShown = 1000;
constexpr pbInt entriesShown = 1000;
constexpr pbInt addressesShown = 100; // of an entry

Record stackDetails( const struct inStack *stack )
{
    struct inOptions *options = nullptr;
    struct inAddress *address = nullptr;
    struct inNwInterface *primary = nullptr;
    struct pbVector *interfaces = nullptr;
    inStackConfiguration( stack, &options, &address, &primary, &interfaces, nullptr );
    const auto heldOptions = pb::adopt( options );
    const auto heldAddress = pb::adopt( address );
    const auto heldPrimary = pb::adopt( primary );
    Record names;
    for ( const auto &iface : items( pb::adopt( interfaces ), inNwInterfaceFrom ) )
        names.append( pb::adopt( inNwInterfaceIdentifier( iface.get() ) ) );
    Record record;
    record.set( "options", pb::adopt( inOptionsStore( options, 1 ) ) );
    if ( address )
        record.set( "address", pb::adopt( inAddressToString( address ) ) );
    if ( primary )
        record.set( "primaryInterface", pb::adopt( inNwInterfaceIdentifier( primary ) ) );
    return record.set( "interfaces", names ).set( "dns", pb::adopt( inStackDnsQueriesStore( stack, queriesShown ) ) );
}

// An entry that names a service may stand for as many addresses as name servers like.
pb::Ref<struct pbStore> beginningOf( pb::Ref<struct pbStore> entry )
{
    const auto addresses = pb::adopt( pbStoreStoreCstr( entry.get(), "addresses", -1 ) );
    const pbInt length = addresses ? pbStoreArrayLength( addresses.get() ) : 0;
    if ( length <= addressesShown )
        return entry;
    Record first;
    for ( pbInt i = 0; i < addressesShown; ++i )
        first.append( pb::adopt( pbStoreArrayStoreAt( addresses.get(), i ) ) );
    pbStoreSetStoreCstr( entry.address(), "addresses", -1, first.store() );
    pbStoreSetValueIntCstr( entry.address(), "addressesLength", -1, length );
    return entry;
}

// What is in force, of each entry where it comes from.
pb::Ref<struct pbStore> filterDetails( const struct inFilter *filter )
{
    auto details = pb::adopt( inFilterExplain( filter, nullptr ) );
    const auto entries = pb::adopt( pbStoreStoreCstr( details.get(), "entries", -1 ) );
    const pbInt length = entries ? pbStoreArrayLength( entries.get() ) : 0;
    pbStoreSetValueIntCstr( details.address(), "length", -1, length );
    Record first;
    for ( pbInt i = 0; i < std::min( length, entriesShown ); ++i )
        first.append( beginningOf( pb::adopt( pbStoreArrayStoreAt( entries.get(), i ) ) ) );
    pbStoreSetStoreCstr( details.address(), "entries", -1, first.store() );
    return details;
}

} // namespace

ObjectState stateOf( const struct csRecord *record )
{
    ObjectState state = objectState( Configuration::Object( record ) );
    if ( const auto condition = conditionOf( record ) )
        state.state = csConditionValue( condition.get() ) ? "true" : "false";
    return state;
}

Record recordOf( const ObjectState &state )
{
    return state.record( Record().set( "state", state.state ) );
}

Record detailsOf( const struct csRecord *record )
{
    Record details = recordOf( stateOf( record ) );
    details.set( "config", pb::adopt( csRecordStore( record ) ) );
    if ( const auto stack = objectOf<struct inStack>( record, inStackSort() ) )
        details.set( "stack", stackDetails( stack.get() ) );
    if ( const auto filter = objectOf<struct inFilter>( record, inFilterSort() ) )
        details.set( "filter", filterDetails( filter.get() ) );
    return details;
}

} // namespace inctl
