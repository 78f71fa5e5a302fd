// csConfiguration: what programs call of a configuration.
#include "cs/cs_configuration.h"

#include "cs/cs_configuration_imp_internal.h"
#include "cs/cs_diagnosis_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_text_file_internal.h"
#include "pb/pb_vector.h"

#include <optional>

namespace {

using Tell = pb::Ref<struct pbVector>( const cs::Problems &problems, const std::string &file, std::string_view bytes );

pb::Ref<struct pbVector> messages( const cs::Problems &problems, const std::string &file, std::string_view bytes )
{
    return problems.messages( file, bytes );
}

// Null and the problems, or what the text says and no problems.
std::optional<cs::Loaded> parse( std::string text, const struct pbString *name, const std::string &path, Tell tell,
                                 struct pbVector **told )
{
    cs::Problems problems;
    cs::ParsedConfiguration parsed = cs::parseConfiguration( text, problems );
    cs::setVector( told, tell( problems, pb::utf8( name ), text ) );
    if ( !problems.empty() )
        return std::nullopt;
    return cs::loadedFrom( std::move( parsed ), path, std::move( text ) );
}

std::optional<cs::Loaded> load( const struct pbString *path, Tell tell, struct pbVector **told )
{
    std::string text;
    const cs::Unreadable unreadable = cs::readTextFile( path, text );
    if ( unreadable.reason.empty() )
        return parse( std::move( text ), path, pb::utf8( path ), tell, told );
    cs::Problems problems;
    problems.add( 0, {}, cs::unreadableFile( unreadable ) );
    cs::setVector( told, tell( problems, pb::utf8( path ), "" ) );
    return std::nullopt;
}

struct csConfiguration *made( std::optional<cs::Loaded> loaded )
{
    return loaded ? pb::make<struct csConfiguration>( std::move( *loaded ) ).release() : nullptr;
}

pb::Ref<struct csRecord> recordAt( const struct csConfiguration *configuration, pbInt index )
{
    pb::Guard guard( configuration->monitor );
    PB_ASSERT( index >= 0 && static_cast<size_t>( index ) < configuration->records.size() );
    return configuration->records[static_cast<size_t>( index )];
}

} // namespace

extern "C" struct csConfiguration *csConfigurationTryLoad( const struct pbString *path, struct pbVector **problems )
{
    PB_ASSERT( path );
    PB_ASSERT( problems );
    return made( load( path, messages, problems ) );
}

extern "C" struct csConfiguration *csConfigurationTryLoadDiagnosed( const struct pbString *path,
                                                                    struct pbVector **diagnoses )
{
    PB_ASSERT( path );
    PB_ASSERT( diagnoses );
    return made( load( path, cs::diagnosesOf, diagnoses ) );
}

extern "C" struct csConfiguration *csConfigurationTryParse( const void *bytes, pbInt byteCount,
                                                            const struct pbString *name, struct pbVector **problems )
{
    PB_ASSERT( byteCount >= 0 );
    PB_ASSERT( bytes || byteCount == 0 );
    PB_ASSERT( name );
    PB_ASSERT( problems );
    const std::string_view text( static_cast<const char *>( bytes ), static_cast<size_t>( byteCount ) );
    return made( parse( std::string( text ), name, "", messages, problems ) );
}

extern "C" void csConfigurationStart( struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    configuration->start();
}

extern "C" void csConfigurationStop( struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    configuration->stop();
}

extern "C" void csConfigurationApply( struct csConfiguration *configuration, const struct csConfiguration *next,
                                      struct pbVector **optionalChanges )
{
    PB_ASSERT( configuration );
    PB_ASSERT( next );
    configuration->apply( next->current(), optionalChanges );
}

extern "C" pbBool csConfigurationTryReload( struct csConfiguration *configuration, const struct pbString *path,
                                            struct pbVector **problems, struct pbVector **optionalChanges )
{
    PB_ASSERT( configuration );
    PB_ASSERT( path );
    PB_ASSERT( problems );
    const cs::TurnTaken taken( configuration->turn ); // read under it: what was read last is applied last
    const std::optional<cs::Loaded> next = load( path, messages, problems );
    if ( next )
        configuration->applyNow( *next, optionalChanges );
    return next.has_value();
}

extern "C" struct pbStore *csConfigurationTree( struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    return configuration->tree().release();
}

extern "C" pbBool csConfigurationTrySave( struct csConfiguration *configuration, const struct pbString *path,
                                          struct pbString **problem )
{
    PB_ASSERT( configuration );
    PB_ASSERT( path );
    PB_ASSERT( problem );
    const std::string what = configuration->trySave( path );
    if ( what.empty() )
        return true;
    pbStringRelease( *problem );
    *problem = pb::string( pb::utf8( path ) + ": " + what ).release();
    return false;
}

extern "C" void csConfigurationUpdateAddSignalable( struct csConfiguration *configuration,
                                                    struct pbSignalable *signalable )
{
    PB_ASSERT( configuration );
    PB_ASSERT( signalable );
    pb::Guard guard( configuration->monitor );
    pbSignalAddSignalable( configuration->update.get(), signalable );
}

extern "C" void csConfigurationUpdateDelSignalable( struct csConfiguration *configuration,
                                                    struct pbSignalable *signalable )
{
    PB_ASSERT( configuration );
    PB_ASSERT( signalable );
    pb::Guard guard( configuration->monitor );
    pbSignalDelSignalable( configuration->update.get(), signalable );
}

extern "C" struct pbVector *csConfigurationRecords( const struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    auto records = pb::adopt( pbVectorCreate() );
    for ( const auto &record : configuration->currentRecords() )
        pbVectorAppend( records.address(), csRecordObj( record.get() ) );
    return records.release();
}

extern "C" pbInt csConfigurationLength( const struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    pb::Guard guard( configuration->monitor );
    return static_cast<pbInt>( configuration->records.size() );
}

extern "C" struct pbString *csConfigurationNameAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    return csRecordName( recordAt( configuration, index ).get() );
}

extern "C" struct pbString *csConfigurationSortNameAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    return csRecordSortName( recordAt( configuration, index ).get() );
}

extern "C" struct pbStore *csConfigurationStoreAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    return csRecordStore( recordAt( configuration, index ).get() );
}

extern "C" struct pbObj *csConfigurationObjectAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    return csRecordObject( recordAt( configuration, index ).get() );
}

extern "C" struct csStatusReporter *csConfigurationStatusAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    return csRecordStatus( recordAt( configuration, index ).get() );
}

extern "C" struct pbObj *csConfigurationObject( const struct csConfiguration *configuration,
                                                const struct pbString *name, const struct pbSort *sort )
{
    PB_ASSERT( configuration );
    PB_ASSERT( name );
    PB_ASSERT( sort );
    const std::string text = pb::utf8( name );
    pb::Guard guard( configuration->monitor );
    for ( const auto &record : configuration->records )
        if ( record->name == text && record->sort->sort == sort )
            return record->optionalObject.share();
    return nullptr;
}

extern "C" pbBool csObjectRecordNameOk( const struct pbString *name )
{
    PB_ASSERT( name );
    return cs::recordNameOk( pb::utf8( name ) );
}
