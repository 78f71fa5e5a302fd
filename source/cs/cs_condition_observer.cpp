// csConditionObserver: a watch that follows a condition and its value.
#include "cs/cs_condition_observer.h"

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_records_internal.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"

PB_SORT_DECLARE( cs___sort_CS_CONDITION_OBSERVER )

struct csConditionObserver final : pb::Object<struct csConditionObserver, cs___sort_CS_CONDITION_OBSERVER> {
    explicit csConditionObserver( struct trAnchor *optionalAnchor )
        : stream( pb::adopt( trStreamCreateCstr( "CS_CONDITION_OBSERVER", -1 ) ) )
    {
        if ( optionalAnchor )
            trAnchorComplete( optionalAnchor, stream.get() );
    }

    const pb::Ref<struct trStream> stream;
    cs::Watch watch{ csConditionSort(), cs::Watch::Follows::Value };
};

PB_OBJECT_DEFINE( csConditionObserver, cs___sort_CS_CONDITION_OBSERVER )

extern "C" struct csConditionObserver *csConditionObserverCreate( struct trAnchor *optionalAnchor )
{
    return pb::make<struct csConditionObserver>( optionalAnchor ).release();
}

extern "C" void csConditionObserverConfigure( struct csConditionObserver *observer, const struct pbString *optionalName,
                                              struct csCondition *optionalCondition )
{
    PB_ASSERT( observer );
    PB_ASSERT( !optionalName || csObjectRecordNameOk( optionalName ) );
    tr::text( observer->stream.get(), "[csConditionObserverConfigure()] optionalName: %s, optionalCondition: %b",
              optionalName, optionalCondition != nullptr );
    observer->watch.configure( optionalName ? pb::utf8( optionalName ) : "",
                               pb::share( csConditionObj( optionalCondition ) ) );
}

extern "C" pbBool csConditionObserverValue( const struct csConditionObserver *observer, pbBool fallback )
{
    PB_ASSERT( observer );
    const auto [configured, object] = observer->watch.state();
    return !configured ? PB_BOOL_FROM( fallback ) : object && csConditionValue( csConditionFrom( object.get() ) );
}

extern "C" void csConditionObserverUpdateAddSignalable( struct csConditionObserver *observer,
                                                        struct pbSignalable *signalable )
{
    PB_ASSERT( observer );
    PB_ASSERT( signalable );
    observer->watch.addSignalable( signalable );
}

extern "C" void csConditionObserverUpdateDelSignalable( struct csConditionObserver *observer,
                                                        struct pbSignalable *signalable )
{
    PB_ASSERT( observer );
    PB_ASSERT( signalable );
    observer->watch.delSignalable( signalable );
}
