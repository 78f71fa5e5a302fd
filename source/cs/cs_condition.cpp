// csCondition: a boolean with a signal, and how the configuration service makes, reads and changes it.
#include "cs/cs_condition_internal.h"

#include "cs/cs_key.h"
#include "cs/cs_records_internal.h"
#include "cs/cs_sort_backend.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"
#include "tr/tr.hpp"

PB_SORT_DECLARE( cs___sort_CS_CONDITION )

struct csCondition final : pb::Object<struct csCondition, cs___sort_CS_CONDITION> {
    explicit csCondition( bool initial )
        : stream( pb::adopt( trStreamCreateCstr( "CS_CONDITION", -1 ) ) ), value( initial )
    {
        trStreamSetPropertyCstrBool( stream.get(), "csValue", -1, initial );
    }

    const pb::Ref<struct trStream> stream;
    mutable pb::Monitor monitor{ 95 }; // traces with it held
    bool value PB_GUARDED_BY( monitor );
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
};

PB_OBJECT_DEFINE( csCondition, cs___sort_CS_CONDITION )

extern "C" struct csCondition *csConditionCreate( pbBool value )
{
    return pb::make<struct csCondition>( value != 0 ).release();
}

extern "C" pbBool csConditionValue( const struct csCondition *condition )
{
    PB_ASSERT( condition );
    pb::Guard guard( condition->monitor );
    return condition->value;
}

extern "C" void csConditionSetValue( struct csCondition *condition, pbBool value )
{
    PB_ASSERT( condition );
    pb::Ref<struct pbSignal> over; // dropped after the monitor: with it goes what it woke
    {
        pb::Guard guard( condition->monitor );
        if ( condition->value == ( value != 0 ) )
            return;
        condition->value = value != 0;
        trStreamSetPropertyCstrBool( condition->stream.get(), "csValue", -1, PB_BOOL_FROM( value ) );
        pbSignalAssert( condition->update.get() );
        over = std::exchange( condition->update, pb::adopt( pbSignalCreate() ) );
    }
    // An observer that looks in between reads the new value already and is signalled once for nothing.
    cs::Records::instance().valueChanged( condition );
}

extern "C" void csConditionTraceCompleteAnchor( struct csCondition *condition, struct trAnchor *anchor )
{
    PB_ASSERT( condition );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, condition->stream.get() );
}

extern "C" void csConditionUpdateAddSignalable( struct csCondition *condition, struct pbSignalable *signalable )
{
    PB_ASSERT( condition );
    PB_ASSERT( signalable );
    pb::Guard guard( condition->monitor );
    pbSignalAddSignalable( condition->update.get(), signalable );
}

extern "C" void csConditionUpdateDelSignalable( struct csCondition *condition, struct pbSignalable *signalable )
{
    PB_ASSERT( condition );
    PB_ASSERT( signalable );
    pb::Guard guard( condition->monitor );
    pbSignalDelSignalable( condition->update.get(), signalable );
}

namespace {

constinit pb::Global<struct csSortBackend> backend;
constexpr csKey keys[] = { { .key = "value", .kind = CS_KEY_BOOL, .description = "Whether the condition holds" } };

bool valueOf( const struct pbStore *optionalStore )
{
    pbBool value = false;
    if ( optionalStore )
        (void)pbStoreValueBoolCstr( optionalStore, &value, "value", -1 ); // false stays when it is absent or no boolean
    return value;
}

struct pbStore *storeOf( bool value, bool storeDefaults )
{
    auto store = pb::adopt( pbStoreCreate() );
    if ( value || storeDefaults )
        pbStoreSetValueBoolCstr( store.address(), "value", -1, value );
    return store.release();
}

} // namespace

void cs___ConditionCsStartup( void )
{
    backend.set( pb::adopt( csSortBackendCreate(
        csConditionSort(),
        []( struct pbStore *optionalStore, struct trAnchor *optionalAnchor ) {
            auto condition = pb::adopt( csConditionCreate( valueOf( optionalStore ) ) );
            if ( optionalAnchor )
                csConditionTraceCompleteAnchor( condition.get(), optionalAnchor );
            return csConditionObj( condition.release() );
        },
        []( struct pbObj *obj, pbBool storeDefaults ) {
            return storeOf( csConditionValue( csConditionFrom( obj ) ), storeDefaults );
        },
        []( struct pbObj *obj, struct pbStore *store ) {
            csConditionSetValue( csConditionFrom( obj ), valueOf( store ) );
        },
        []( struct pbStore *store, pbBool storeDefaults ) { return storeOf( valueOf( store ), storeDefaults ); },
        nullptr,
        []( struct pbObj *obj, struct trAnchor *anchor ) {
            csConditionTraceCompleteAnchor( csConditionFrom( obj ), anchor );
        } ) ) );
    csSortBackendSetKeys( backend.get(), keys, PB_SIZEOF_ARRAY( keys ) );
}

void cs___ConditionCsShutdown( void )
{
    backend.invalidate();
}
