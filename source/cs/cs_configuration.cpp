// csConfiguration: a configuration file's records, and the live objects made of them.
#include "cs/cs_configuration.h"

#include "cs/cs_configuration_internal.h"
#include "cs/cs_json_reader_internal.h"
#include "cs/cs_status_reporter.h"
#include "cs/cs_text_file_internal.h"
#include "pb/pb_assert.hpp"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"
#include "tr/tr.hpp"

PB_SORT_DECLARE( cs___sort_CS_CONFIGURATION )

struct csConfiguration final : pb::Object<struct csConfiguration, cs___sort_CS_CONFIGURATION> {
    explicit csConfiguration( std::vector<cs::Record> parsed )
        : records( std::move( parsed ) ), stream( pb::adopt( trStreamCreateCstr( "CS_CONFIGURATION", -1 ) ) ),
          objects( records.size() )
    {
    }
    ~csConfiguration() { stop(); }

    pb::Ref<struct pbObj> create( const cs::Record &record ) const
    {
        const pb::String name = pb::string( record.name );
        const pb::String sortName = pb::string( pbSortName( record.sort->sort ) );
        const cs::Call call( record.sort );
        if ( !call ) {
            tr::text( stream.get(), "[csConfigurationStart()] name: %s, sort: %s, module not running", name, sortName );
            return nullptr;
        }
        const auto anchor = pb::adopt( trAnchorCreateWithAnnotationCstr(
            stream.get(), TR_ANCHOR_KIND_PLAIN, record.name.data(), static_cast<pbInt>( record.name.size() ) ) );
        auto obj = pb::adopt( record.sort->tryCreate( record.optionalStore.get(), anchor.get() ) );
        tr::text( stream.get(), "[csConfigurationStart()] name: %s, sort: %s, created: %b", name, sortName,
                  static_cast<bool>( obj ) );
        return obj;
    }
    void stop()
    {
        for ( size_t i = records.size(); i-- > 0; ) {
            pb::Ref<struct pbObj> obj; // released after leaving the monitor: that runs code of its sort
            pb::Guard guard( monitor );
            std::swap( obj, objects[i] );
        }
        pb::Guard guard( monitor );
        started = false;
    }
    const cs::Record &at( pbInt index ) const { return records[static_cast<size_t>( index )]; }
    pb::Ref<struct pbObj> objectAt( size_t index ) const
    {
        pb::Guard guard( monitor );
        return objects[index];
    }

    const std::vector<cs::Record> records; // in the order of the file
    const pb::Ref<struct trStream> stream;
    mutable pb::Monitor monitor;
    bool started PB_GUARDED_BY( monitor ) = false;
    std::vector<pb::Ref<struct pbObj>> objects PB_GUARDED_BY( monitor ); // of the records, or null
};

PB_OBJECT_DEFINE( csConfiguration, cs___sort_CS_CONFIGURATION )

namespace {

void setVector( struct pbVector **vector, pb::Ref<struct pbVector> value )
{
    pbVectorRelease( *vector );
    *vector = value.release();
}

struct csConfiguration *parse( std::string_view bytes, const struct pbString *name, struct pbVector **messages )
{
    cs::Problems problems;
    std::vector<cs::Record> records = cs::parseConfiguration( bytes, problems );
    setVector( messages, problems.messages( pb::utf8( name ), bytes ) );
    return problems.empty() ? pb::make<struct csConfiguration>( std::move( records ) ).release() : nullptr;
}

} // namespace

extern "C" struct csConfiguration *csConfigurationTryLoad( const struct pbString *path, struct pbVector **problems )
{
    PB_ASSERT( path );
    PB_ASSERT( problems );
    std::string bytes;
    const std::string reason = cs::readTextFile( path, bytes );
    if ( reason.empty() )
        return parse( bytes, path, problems );
    cs::Problems unreadable;
    unreadable.add( 0, {}, cs::unreadableFile( reason ) );
    setVector( problems, unreadable.messages( pb::utf8( path ), "" ) );
    return nullptr;
}

extern "C" struct csConfiguration *csConfigurationTryParse( const void *bytes, pbInt byteCount,
                                                            const struct pbString *name, struct pbVector **problems )
{
    PB_ASSERT( byteCount >= 0 );
    PB_ASSERT( bytes || byteCount == 0 );
    PB_ASSERT( name );
    PB_ASSERT( problems );
    return parse( { static_cast<const char *>( bytes ), static_cast<size_t>( byteCount ) }, name, problems );
}

extern "C" void csConfigurationStart( struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    {
        pb::Guard guard( configuration->monitor );
        if ( std::exchange( configuration->started, true ) )
            return;
    }
    for ( size_t i = 0; i < configuration->records.size(); ++i ) {
        pb::Ref<struct pbObj> obj = configuration->create( configuration->records[i] );
        pb::Guard guard( configuration->monitor );
        std::swap( configuration->objects[i], obj );
    }
}

extern "C" void csConfigurationStop( struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    configuration->stop();
}

extern "C" pbInt csConfigurationLength( const struct csConfiguration *configuration )
{
    PB_ASSERT( configuration );
    return static_cast<pbInt>( configuration->records.size() );
}

extern "C" struct pbString *csConfigurationNameAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    PB_ASSERT( index >= 0 && index < csConfigurationLength( configuration ) );
    return pb::string( configuration->at( index ).name ).release();
}

extern "C" struct pbString *csConfigurationSortNameAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    PB_ASSERT( index >= 0 && index < csConfigurationLength( configuration ) );
    return pb::string( pbSortName( configuration->at( index ).sort->sort ) ).release();
}

extern "C" struct pbStore *csConfigurationStoreAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    PB_ASSERT( index >= 0 && index < csConfigurationLength( configuration ) );
    const auto &store = configuration->at( index ).optionalStore;
    return store ? store.share() : pbStoreCreate();
}

extern "C" struct pbObj *csConfigurationObjectAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    PB_ASSERT( index >= 0 && index < csConfigurationLength( configuration ) );
    return configuration->objectAt( static_cast<size_t>( index ) ).release();
}

extern "C" struct csStatusReporter *csConfigurationStatusAt( const struct csConfiguration *configuration, pbInt index )
{
    PB_ASSERT( configuration );
    PB_ASSERT( index >= 0 && index < csConfigurationLength( configuration ) );
    const auto &sort = configuration->at( index ).sort;
    const auto obj = configuration->objectAt( static_cast<size_t>( index ) );
    const cs::Call call( sort );
    return obj && call && sort->status ? sort->status( obj.get() ) : nullptr;
}

extern "C" struct pbObj *csConfigurationObject( const struct csConfiguration *configuration,
                                                const struct pbString *name, const struct pbSort *sort )
{
    PB_ASSERT( configuration );
    PB_ASSERT( name );
    PB_ASSERT( sort );
    const std::string text = pb::utf8( name );
    for ( size_t i = 0; i < configuration->records.size(); ++i )
        if ( configuration->records[i].name == text )
            return configuration->records[i].sort->sort == sort ? configuration->objectAt( i ).release() : nullptr;
    return nullptr;
}

extern "C" pbBool csObjectRecordNameOk( const struct pbString *name )
{
    PB_ASSERT( name );
    return cs::recordNameOk( pb::utf8( name ) );
}
