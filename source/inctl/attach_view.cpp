// AttachView: the objects of a running configuration as clients are shown them.
#include "inctl/attach_view.hpp"

#include "inctl/items.hpp"

#include "in/base/in_address.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/filter/in_filter.h"
#include "in/nw/in_nw_interface.h"

#include <unordered_set>

namespace inctl {
namespace {

constexpr pbInt queriesShown = 1000;
constexpr pbInt entriesShown = 1000;

template <class T> pb::Ref<T> objectOf( const struct csRecord *record, const struct pbSort *sort )
{
    struct pbObj *object = csRecordObject( record );
    if ( object && pbObjSort( object ) == sort )
        return pb::adopt( reinterpret_cast<T *>( object ) );
    pbObjRelease( object );
    return nullptr;
}

pb::Ref<struct csCondition> conditionOf( const struct csRecord *record )
{
    return objectOf<struct csCondition>( record, csConditionSort() );
}

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

// What is in force, of each entry where it comes from.
pb::Ref<struct pbStore> filterDetails( const struct inFilter *filter )
{
    auto details = pb::adopt( inFilterExplain( filter, nullptr ) );
    const auto entries = pb::adopt( pbStoreStoreCstr( details.get(), "entries", -1 ) );
    const pbInt length = entries ? pbStoreArrayLength( entries.get() ) : 0;
    pbStoreSetValueIntCstr( details.address(), "length", -1, length );
    if ( length <= entriesShown )
        return details;
    Record first;
    for ( pbInt i = 0; i < entriesShown; ++i )
        first.append( pb::adopt( pbStoreArrayStoreAt( entries.get(), i ) ) );
    pbStoreSetStoreCstr( details.address(), "entries", -1, first.store() );
    return details;
}

} // namespace

ObjectState stateOf( const struct csRecord *record )
{
    ObjectState state = objectState( { pb::utf8( pb::adopt( csRecordName( record ) ) ),
                                       pb::utf8( pb::adopt( csRecordSortName( record ) ) ),
                                       pb::adopt( csRecordObject( record ) ), pb::adopt( csRecordStatus( record ) ) } );
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

std::vector<pb::Ref<struct csRecord>> recordsOf( const struct csConfiguration *configuration )
{
    return items( pb::adopt( csConfigurationRecords( configuration ) ), csRecordFrom );
}

AttachView::AttachView( struct csConfiguration *configuration, struct pbSignalable *objects,
                        struct pbSignalable *states )
    : configuration_( pb::share( configuration ) ), objects_( pb::share( objects ) ), states_( pb::share( states ) )
{
}

AttachView::~AttachView()
{
    close();
}

bool AttachView::watch( Watched &watched, const struct csRecord *record )
{
    Watched now{ {}, pb::adopt( csRecordStatus( record ) ), conditionOf( record ) };
    // What the record had before may live on, and its changes are no longer the record's.
    if ( !now.status.is( watched.status ) || !now.condition.is( watched.condition ) )
        withdraw( watched );
    if ( now.status )
        csStatusReporterUpdateAddSignalable( now.status.get(), states_.get() );
    if ( now.condition )
        csConditionUpdateAddSignalable( now.condition.get(), states_.get() );
    now.state = stateOf( record );
    const bool changed = now.state != watched.state;
    watched = std::move( now );
    return changed;
}

void AttachView::withdraw( const Watched &watched ) const
{
    if ( watched.status )
        csStatusReporterUpdateDelSignalable( watched.status.get(), states_.get() );
    if ( watched.condition )
        csConditionUpdateDelSignalable( watched.condition.get(), states_.get() );
}

std::vector<std::string> AttachView::look()
{
    open_ = true;
    csConfigurationUpdateAddSignalable( configuration_.get(), objects_.get() );
    std::vector<std::string> changed;
    std::unordered_set<std::string> there;
    order_.clear();
    for ( const auto &record : recordsOf( configuration_.get() ) ) {
        std::string name = pb::utf8( pb::adopt( csRecordName( record.get() ) ) );
        if ( watch( watched_[name], record.get() ) )
            changed.push_back( name );
        there.insert( name );
        order_.push_back( std::move( name ) );
    }
    std::erase_if( watched_, [&]( const auto &entry ) {
        if ( there.contains( entry.first ) )
            return false;
        withdraw( entry.second );
        changed.push_back( entry.first );
        return true;
    } );
    return changed;
}

void AttachView::close()
{
    if ( !std::exchange( open_, false ) )
        return;
    csConfigurationUpdateDelSignalable( configuration_.get(), objects_.get() );
    for ( const auto &[name, watched] : watched_ )
        withdraw( watched );
    watched_.clear();
    order_.clear();
}

const ObjectState *AttachView::find( const std::string &name ) const
{
    const auto found = watched_.find( name );
    return found == watched_.end() ? nullptr : &found->second.state;
}

std::vector<std::string> AttachView::names() const
{
    return order_;
}

} // namespace inctl
