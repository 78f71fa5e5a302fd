// csRecord: what a configuration held at one moment under a name.
#include "cs/cs_record_internal.h"

#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_status_reporter.h"
#include "pb/pb_store.h"

PB_OBJECT_DEFINE( csRecord, cs___sort_CS_RECORD )

extern "C" struct pbString *csRecordName( const struct csRecord *record )
{
    PB_ASSERT( record );
    return pb::string( record->name ).release();
}

extern "C" struct pbString *csRecordSortName( const struct csRecord *record )
{
    PB_ASSERT( record );
    return pb::string( pbSortName( record->sort->sort ) ).release();
}

extern "C" struct pbStore *csRecordStore( const struct csRecord *record )
{
    PB_ASSERT( record );
    return record->optionalStore ? record->optionalStore.share() : pbStoreCreate();
}

extern "C" struct pbObj *csRecordObject( const struct csRecord *record )
{
    PB_ASSERT( record );
    return record->optionalObject.share();
}

extern "C" struct csStatusReporter *csRecordStatus( const struct csRecord *record )
{
    PB_ASSERT( record );
    const cs::Call call( record->sort );
    return record->optionalObject && call && record->sort->status ? record->sort->status( record->optionalObject.get() )
                                                                  : nullptr;
}

extern "C" pbBool csRecordTraceCompleteAnchor( const struct csRecord *record, struct trAnchor *anchor )
{
    PB_ASSERT( record );
    PB_ASSERT( anchor );
    const cs::Call call( record->sort );
    if ( !record->optionalObject || !call || !record->sort->traceCompleteAnchor )
        return 0;
    record->sort->traceCompleteAnchor( record->optionalObject.get(), anchor );
    return 1;
}
