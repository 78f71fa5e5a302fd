// csStatusReporter: the state of a configured object as it reports it, and a signal for those who watch it.
#include "cs/cs_status_reporter.h"

#include "pb/pb_assert.hpp"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"

PB_SORT_DECLARE( cs___sort_CS_STATUS_REPORTER )

struct csStatusReporter final : pb::Object<struct csStatusReporter, cs___sort_CS_STATUS_REPORTER> {
    explicit csStatusReporter( struct trAnchor *optionalAnchor )
        : stream( pb::adopt( trStreamCreateCstr( "CS_STATUS_REPORTER", -1 ) ) )
    {
        if ( optionalAnchor )
            trAnchorComplete( optionalAnchor, stream.get() );
    }

    // A registration is for one change: whoever is woken registers with the next signal before he reads. Asserted under
    // the monitor, so that no notification starts after a Del. The signal that is over is left to the caller, to be
    // dropped after the monitor.
    [[nodiscard]] pb::Ref<struct pbSignal> changed() PB_REQUIRES( monitor )
    {
        pbSignalAssert( update.get() );
        return std::exchange( update, pb::adopt( pbSignalCreate() ) );
    }

    const pb::Ref<struct trStream> stream;
    mutable pb::Monitor monitor{ 95 }; // traces with it held
    bool up PB_GUARDED_BY( monitor ) = false;
    pb::Ref<struct pbStore> items PB_GUARDED_BY( monitor ) = pb::adopt( pbStoreCreate() );
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
};

PB_OBJECT_DEFINE( csStatusReporter, cs___sort_CS_STATUS_REPORTER )

extern "C" struct csStatusReporter *csStatusReporterCreate( struct trAnchor *optionalAnchor )
{
    return pb::make<struct csStatusReporter>( optionalAnchor ).release();
}

extern "C" void csStatusReporterSetUp( struct csStatusReporter *reporter, pbBool up )
{
    PB_ASSERT( reporter );
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( reporter->monitor );
    if ( reporter->up == static_cast<bool>( up ) )
        return;
    reporter->up = up;
    trStreamSetPropertyCstrBool( reporter->stream.get(), "csUp", -1, PB_BOOL_FROM( up ) );
    over = reporter->changed();
}

extern "C" pbBool csStatusReporterUp( const struct csStatusReporter *reporter )
{
    PB_ASSERT( reporter );
    pb::Guard guard( reporter->monitor );
    return reporter->up;
}

extern "C" void csStatusReporterSetItemCstr( struct csStatusReporter *reporter, const char *key, pbInt keyLength,
                                             const struct pbString *value )
{
    PB_ASSERT( reporter );
    PB_ASSERT( key );
    PB_ASSERT( value );
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( reporter->monitor );
    const auto old = pb::adopt( pbStoreValueCstr( reporter->items.get(), key, keyLength ) );
    if ( old && pbStringEquals( old.get(), value ) )
        return;
    pbStoreSetValueCstr( reporter->items.address(), key, keyLength, value );
    trStreamSetPropertyCstrString( reporter->stream.get(), key, keyLength, value );
    over = reporter->changed();
}

extern "C" void csStatusReporterDelItemCstr( struct csStatusReporter *reporter, const char *key, pbInt keyLength )
{
    PB_ASSERT( reporter );
    PB_ASSERT( key );
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( reporter->monitor );
    if ( !pbStoreHasValueCstr( reporter->items.get(), key, keyLength ) )
        return;
    pbStoreDelValueCstr( reporter->items.address(), key, keyLength );
    trStreamDelPropertyCstr( reporter->stream.get(), key, keyLength );
    over = reporter->changed();
}

extern "C" struct pbStore *csStatusReporterItems( const struct csStatusReporter *reporter )
{
    PB_ASSERT( reporter );
    pb::Guard guard( reporter->monitor );
    return reporter->items.share();
}

extern "C" void csStatusReporterUpdateAddSignalable( struct csStatusReporter *reporter,
                                                     struct pbSignalable *signalable )
{
    PB_ASSERT( reporter );
    PB_ASSERT( signalable );
    pb::Guard guard( reporter->monitor );
    pbSignalAddSignalable( reporter->update.get(), signalable );
}

extern "C" void csStatusReporterUpdateDelSignalable( struct csStatusReporter *reporter,
                                                     struct pbSignalable *signalable )
{
    PB_ASSERT( reporter );
    PB_ASSERT( signalable );
    pb::Guard guard( reporter->monitor );
    pbSignalDelSignalable( reporter->update.get(), signalable );
}
