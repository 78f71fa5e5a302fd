// TraceCatcher: keeps the first events that the library traces.
#include "inctl/trace_catcher.hpp"

#include "inctl/trace_sink.hpp"

#include "pb/pb_string.hpp"
#include "tr/tr_system.h"

#include <set>
#include <tuple>

namespace inctl {
namespace {

constexpr size_t kept = 1000;

} // namespace

TraceCatcher::TraceCatcher()
{
    trSystemSetListener( listen, this );
}

TraceCatcher::~TraceCatcher()
{
    trSystemSetListener( nullptr, nullptr );
}

void TraceCatcher::listen( const struct trEvent *event, void *context )
{
    TraceCatcher &catcher = *static_cast<TraceCatcher *>( context );
    const std::lock_guard lock( catcher.mutex_ );
    ++catcher.count_;
    if ( catcher.caught_.size() < kept )
        catcher.caught_.push_back( { pb::utf8( event->name ), event->stream, event->kind, traceText( *event ) } );
}

std::vector<TraceCatcher::Caught> TraceCatcher::handful( size_t number ) const
{
    const std::lock_guard lock( mutex_ );
    std::vector<Caught> result;
    std::set<std::tuple<std::string, int64_t, std::string>> seen;
    for ( const Caught &caught : caught_ ) {
        if ( caught.kind != TR_EVENT_TEXT && caught.kind != TR_EVENT_PROPERTY && caught.kind != TR_EVENT_CONFIGURATION )
            continue;
        // Of texts one per function, which stands in brackets first; of properties one per key.
        const std::string head = caught.text.substr( 0, caught.text.find( ' ' ) );
        if ( result.size() < number && seen.emplace( caught.name, caught.kind, head ).second )
            result.push_back( caught );
    }
    return result;
}

size_t TraceCatcher::count() const
{
    const std::lock_guard lock( mutex_ );
    return count_;
}

} // namespace inctl
