// TraceStreams: which stream belongs to which record, and which are notable.
#include "inctl/trace_streams.hpp"

#include "pb/pb_string.hpp"
#include "tr/tr_anchor.h"
#include "tr/tr_system.h"

namespace inctl {

void TraceStreams::follow( const struct trEvent &event )
{
    switch ( event.kind ) {
    case TR_EVENT_LINKED:
        // A configuration leads to each of its objects by the name of the record.
        if ( event.text && event.name && pb::utf8( event.name ) == "CS_CONFIGURATION" )
            streams_[event.other].object = pb::utf8( event.text );
        break;
    case TR_EVENT_NOTABLE:
        streams_[event.stream].notable = event.value && pb::utf8( event.value ) == "true";
        break;
    default:
        break;
    }
}

void TraceStreams::forget( const struct trEvent &event )
{
    if ( event.kind == TR_EVENT_RELEASED )
        streams_.erase( event.stream );
}

const TraceStreams::Stream &TraceStreams::of( const struct trEvent &event ) const
{
    static const Stream unknown;
    const auto known = streams_.find( event.stream );
    return known == streams_.end() ? unknown : known->second;
}

} // namespace inctl
