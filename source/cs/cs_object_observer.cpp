// csObjectObserver: a watch that follows an object.
#include "cs/cs_object_observer.h"

#include "cs/cs_configuration.h"
#include "cs/cs_records_internal.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"

PB_SORT_DECLARE( cs___sort_CS_OBJECT_OBSERVER )

struct csObjectObserver final : pb::Object<struct csObjectObserver, cs___sort_CS_OBJECT_OBSERVER> {
    csObjectObserver( const struct pbSort *sort, struct trAnchor *optionalAnchor )
        : stream( pb::adopt( trStreamCreateCstr( "CS_OBJECT_OBSERVER", -1 ) ) ),
          watch( sort, cs::Watch::Follows::Object )
    {
        if ( optionalAnchor )
            trAnchorComplete( optionalAnchor, stream.get() );
    }

    const pb::Ref<struct trStream> stream;
    cs::Watch watch;
};

PB_OBJECT_DEFINE( csObjectObserver, cs___sort_CS_OBJECT_OBSERVER )

extern "C" struct csObjectObserver *csObjectObserverCreate( const struct pbSort *sort, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( sort );
    return pb::make<struct csObjectObserver>( sort, optionalAnchor ).release();
}

extern "C" void csObjectObserverConfigure( struct csObjectObserver *observer, const struct pbString *optionalName,
                                           struct pbObj *optionalObject )
{
    PB_ASSERT( observer );
    PB_ASSERT( !optionalName || csObjectRecordNameOk( optionalName ) );
    PB_ASSERT( !optionalObject || pbObjSort( optionalObject ) == observer->watch.sort() );
    tr::text( observer->stream.get(), "[csObjectObserverConfigure()] optionalName: %s, optionalObject: %b",
              optionalName, optionalObject != nullptr );
    observer->watch.configure( optionalName ? pb::utf8( optionalName ) : "", pb::share( optionalObject ) );
}

extern "C" struct pbObj *csObjectObserverObject( const struct csObjectObserver *observer )
{
    PB_ASSERT( observer );
    return observer->watch.state().object.release();
}

extern "C" void csObjectObserverUpdateAddSignalable( struct csObjectObserver *observer,
                                                     struct pbSignalable *signalable )
{
    PB_ASSERT( observer );
    PB_ASSERT( signalable );
    observer->watch.addSignalable( signalable );
}

extern "C" void csObjectObserverUpdateDelSignalable( struct csObjectObserver *observer,
                                                     struct pbSignalable *signalable )
{
    PB_ASSERT( observer );
    PB_ASSERT( signalable );
    observer->watch.delSignalable( signalable );
}
