// Releases, configures and creates live objects so that they become what another configuration says.
#include "cs/cs_records_change_internal.h"

#include "cs/cs_configuration.h"
#include "cs/cs_records_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

namespace cs {
namespace {

pb::Ref<struct pbStore> storeOf( const struct csRecord &record )
{
    return pb::adopt( csRecordStore( &record ) );
}

// To the sort; order and explicit defaults make no difference.
bool saysTheSame( const Sort &sort, const pb::Ref<struct pbStore> &a, const pb::Ref<struct pbStore> &b )
{
    return a == b ||
           pb::adopt( sort.normalizeConfig( a.get(), false ) ) == pb::adopt( sort.normalizeConfig( b.get(), false ) );
}

} // namespace

void setVector( struct pbVector **optionalVector, const pb::Ref<struct pbVector> &value )
{
    if ( !optionalVector )
        return;
    pbVectorRelease( *optionalVector );
    *optionalVector = value.share();
}

RecordsChange::RecordsChange( struct trStream *stream, LiveRecords before, const LiveRecords &next )
    : stream_( stream ), before_( std::move( before ) ), next_( next ), changes_( pb::adopt( pbVectorCreate() ) )
{
    std::unordered_map<std::string, pb::Ref<struct csRecord>> byName;
    for ( const auto &record : before_ ) {
        beforeNames_.insert( record->name );
        byName.emplace( record->name, record );
    }
    for ( const auto &record : next_ ) {
        nextNames_.insert( record->name );
        // A sort that was registered anew is another one: its module was away.
        if ( const auto found = byName.find( record->name );
             found != byName.end() && found->second->sort == record->sort )
            kept_.insert( *found );
    }
}

LiveRecords RecordsChange::kept() const
{
    LiveRecords kept;
    for ( const auto &record : before_ )
        if ( kept_.contains( record->name ) )
            kept.push_back( record );
    return kept;
}

void RecordsChange::releaseOthers()
{
    for ( ; !before_.empty(); before_.pop_back() ) {
        const struct csRecord &record = *before_.back();
        if ( kept_.contains( record.name ) )
            continue;
        if ( !nextNames_.contains( record.name ) )
            tell( record, CS_CONFIGURATION_REMOVED );
        if ( record.optionalObject )
            Records::instance().go( record.name, record.optionalObject );
    }
}

LiveRecords RecordsChange::makeNext()
{
    LiveRecords made;
    for ( const auto &record : next_ ) {
        const auto before = kept_.find( record->name );
        made.push_back( before != kept_.end() && before->second->optionalObject ? configured( before->second, record )
                                                                                : created( *record ) );
    }
    return made;
}

pb::Ref<struct csRecord> RecordsChange::configured( const pb::Ref<struct csRecord> &before,
                                                    const pb::Ref<struct csRecord> &next )
{
    if ( before->optionalStore == next->optionalStore )
        return before;
    auto record = pb::make<struct csRecord>( *next );
    record->optionalObject = before->optionalObject;
    const Call call( record->sort );
    if ( call && !saysTheSame( *record->sort, storeOf( *before ), storeOf( *next ) ) ) {
        record->sort->setConfig( record->optionalObject.get(), storeOf( *next ).get() );
        tell( *record, CS_CONFIGURATION_CONFIGURED );
    }
    return record;
}

pb::Ref<struct csRecord> RecordsChange::created( const struct csRecord &next )
{
    auto record = pb::make<struct csRecord>( next );
    record->optionalObject.reset(); // of a configuration that is being copied while it runs
    if ( const Call call( record->sort ); call ) {
        const auto anchor = pb::adopt( trAnchorCreateWithAnnotationCstr(
            stream_, TR_ANCHOR_KIND_PLAIN, next.name.data(), static_cast<pbInt>( next.name.size() ) ) );
        record->optionalObject = pb::adopt( record->sort->tryCreate( next.optionalStore.get(), anchor.get() ) );
    }
    if ( record->optionalObject )
        Records::instance().appear( record->name, record->optionalObject );
    const bool replaced = beforeNames_.contains( next.name ) && !kept_.contains( next.name );
    tell( *record, !record->optionalObject ? CS_CONFIGURATION_FAILED
                   : replaced              ? CS_CONFIGURATION_REPLACED
                                           : CS_CONFIGURATION_CREATED );
    return record;
}

void RecordsChange::tell( const struct csRecord &record, const char *change )
{
    const auto name = pb::string( record.name ), sort = pb::string( pbSortName( record.sort->sort ) );
    const auto text = pb::string( change );
    tr::text( stream_, "[csConfigurationApply()] name: %s, sort: %s, change: %s", name, sort, text );
    auto entry = pb::adopt( pbStoreCreate() );
    pbStoreSetValueCstr( entry.address(), "name", -1, name.get() );
    pbStoreSetValueCstr( entry.address(), "sort", -1, sort.get() );
    pbStoreSetValueCstr( entry.address(), "change", -1, text.get() );
    pbVectorAppend( changes_.address(), pbStoreObj( entry.get() ) );
}

} // namespace cs
