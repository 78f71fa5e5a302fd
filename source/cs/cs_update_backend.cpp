// csUpdateBackend: a step of the migration, registered with its date.
#include "cs/cs_update_backend.h"

#include "cs/cs_sort_backend_internal.h"
#include "cs/cs_update.h"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( cs___sort_CS_UPDATE_BACKEND )

struct csUpdateBackend final : pb::Object<struct csUpdateBackend, cs___sort_CS_UPDATE_BACKEND> {
    csUpdateBackend( std::string date, csUpdateFunc *func )
        : step( std::make_shared<cs::UpdateStep>( cs::UpdateStep{ std::move( date ), func, this } ) )
    {
        cs::Registry::instance().addStep( step );
    }
    ~csUpdateBackend() { cs::Registry::instance().removeStep( step ); }

    const std::shared_ptr<cs::UpdateStep> step;
};

PB_OBJECT_DEFINE( csUpdateBackend, cs___sort_CS_UPDATE_BACKEND )

namespace {

// In this form dates sort as text.
bool isDate( std::string_view text )
{
    constexpr std::string_view Pattern = "0000-00-00";
    bool ok = text.size() == Pattern.size();
    for ( size_t i = 0; ok && i < text.size(); ++i )
        ok = Pattern[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == Pattern[i];
    return ok;
}

} // namespace

extern "C" struct csUpdateBackend *csUpdateBackendCreateCstr( const char *date, pbInt dateLength, csUpdateFunc *func )
{
    PB_ASSERT( date );
    PB_ASSERT( dateLength >= -1 );
    PB_ASSERT( func );
    std::string text = dateLength < 0 ? std::string( date ) : std::string( date, static_cast<size_t>( dateLength ) );
    PB_ASSERT_TEXT( isDate( text ), "date is YYYY-MM-DD" );
    return pb::make<struct csUpdateBackend>( std::move( text ), func ).release();
}

namespace cs {

void runSteps( struct csUpdate **update, const std::function<void( const UpdateStep & )> &afterEach )
{
    for ( const auto &step : Registry::instance().steps() )
        if ( const Call call( step ); call ) {
            step->func( step->backend, update );
            afterEach( *step );
        }
}

} // namespace cs

extern "C" void csUpdateBackendsRun( struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    cs::runSteps( update, []( const cs::UpdateStep & ) {} );
}
