// trAnchor: one end of a link between two streams, which the first completion makes.
#include "tr/tr_anchor.h"

#include "pb/pb_string.hpp"
#include "tr/tr.hpp"
#include "tr/tr_link_internal.hpp"
#include "tr/tr_system_internal.h"

PB_SORT_DECLARE( tr___sort_TR_ANCHOR )
struct trAnchor final : pb::Object<struct trAnchor, tr___sort_TR_ANCHOR> {
    const pb::Ref<struct trStream> stream;
    const pbInt kind;
    const pb::String annotation; // or null
    std::atomic<bool> completed{ false };

    trAnchor( struct trStream *origin, pbInt linkKind, pb::String text )
        : stream( pb::share( origin ) ), kind( linkKind ), annotation( std::move( text ) )
    {
    }
};
PB_OBJECT_DEFINE( trAnchor, tr___sort_TR_ANCHOR )

extern "C" {

struct trAnchor *trAnchorCreate( struct trStream *stream, pbInt kind )
{
    PB_ASSERT( stream );
    PB_ASSERT( kind >= 0 );
    return pb::make<struct trAnchor>( stream, kind, pb::String() ).release();
}

struct trAnchor *trAnchorCreateWithAnnotationCstr( struct trStream *stream, pbInt kind, const char *annotation,
                                                   pbInt annotationLength )
{
    PB_ASSERT( stream );
    PB_ASSERT( kind >= 0 );
    PB_ASSERT( annotation );
    pb::String text = pb::adopt( pbStringCreateFromCstr( annotation, annotationLength ) );
    return pb::make<struct trAnchor>( stream, kind, std::move( text ) ).release();
}

void trAnchorComplete( struct trAnchor *anchor, struct trStream *stream )
{
    PB_ASSERT( anchor );
    PB_ASSERT( stream );
    // The mark orders nothing: whoever sets it makes the link.
    if ( anchor->completed.exchange( true, std::memory_order_relaxed ) )
        return;
    tr::addLink( anchor->stream.get(), stream, anchor->kind, anchor->annotation );
    if ( !tr::listening() )
        return;
    const pb::String name = pb::adopt( trStreamName( anchor->stream.get() ) );
    struct trEvent event = { .kind = TR_EVENT_LINKED,
                             .stream = trStreamIdentifier( anchor->stream.get() ),
                             .name = name.get(),
                             .text = anchor->annotation.get(),
                             .anchorKind = anchor->kind,
                             .other = trStreamIdentifier( stream ) };
    tr___SystemEmit( &event );
}

} // extern "C"
