// C++ over the trace library: texts that cost one test while nobody listens, and the link made by an anchor. In-tree only.
#ifndef TR_HPP
#define TR_HPP

#include "pb/pb_format.hpp"
#include "tr/tr_anchor.h"
#include "tr/tr_stream.h"
#include "tr/tr_system.h"

extern "C" {
// Set while a listener is there.
PB_API extern std::atomic<bool> tr___Listening;
}

namespace tr {

inline bool listening() noexcept { return tr___Listening.load( std::memory_order_relaxed ); }

// Arguments given as Ref rvalues are released in any case.
template <class... Arguments> void text( struct trStream *stream, const char *format, const Arguments &...arguments )
{
    if ( !listening() )
        return;
    const pbFormatArgument list[] = { pb::detail::formatArgument( arguments )..., {} };
    trStreamTextFormatCstr( stream, format, -1, list, sizeof...( arguments ) );
}

template <class... Arguments>
void message( struct trStream *stream, const struct pbBuffer *payload, const char *format, const Arguments &...arguments )
{
    if ( !listening() )
        return;
    const pbFormatArgument list[] = { pb::detail::formatArgument( arguments )..., {} };
    trStreamMessageFormatCstr( stream, payload, format, -1, list, sizeof...( arguments ) );
}

} // namespace tr

#endif
