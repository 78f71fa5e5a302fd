// What stands of streams: collected under the monitor of the links, told outside it.
#include "tr/tr_replay.h"

#include "pb/pb_store.h"
#include "tr/tr_anchor.h"
#include "tr/tr_link_internal.hpp"
#include "tr/tr_stream.h"
#include "tr/tr_system_internal.h"

#include <unordered_set>
#include <vector>

namespace {

struct StandingLink {
    pbInt from, to;
    pb::String fromName;
    pbInt kind;
    pb::String annotation;
};
struct Standing {
    pbInt stream;
    pb::String name;
    pb::Ref<struct pbStore> configuration; // or null
    pb::Ref<struct pbStore> properties;
    bool notable;
    std::vector<StandingLink> links;
};

class Collector {
  public:
    // The streams may be about to go, but not past the monitor.
    std::vector<Standing> collect( const struct trStream *first, pbInt depth ) PB_EXCLUDES( tr::linksMonitor )
    {
        pb::Guard guard( tr::linksMonitor );
        reach( first );
        size_t begin = 0;
        for ( pbInt step = 0; begin < reached_.size() && step != depth; ++step ) {
            const size_t end = reached_.size();
            for ( ; begin < end; ++begin )
                reachNext( reached_[begin] );
        }
        std::vector<Standing> result;
        for ( const struct trStream *stream : reached_ )
            result.push_back( standing( stream ) );
        return result;
    }

  private:
    void reach( const struct trStream *stream )
    {
        if ( known_.insert( stream ).second )
            reached_.push_back( stream );
    }
    void reachNext( const struct trStream *stream ) PB_REQUIRES( tr::linksMonitor )
    {
        const tr::Links *links = tr::linksOf( stream ).links();
        if ( !links )
            return;
        for ( const tr::Link &link : links->out )
            if ( !trAnchorKindLeadsBack( link.kind ) )
                reach( link.to );
        for ( const tr::Link *link : links->in )
            if ( trAnchorKindLeadsBack( link->kind ) )
                reach( link->from );
    }
    Standing standing( const struct trStream *stream ) const PB_REQUIRES( tr::linksMonitor )
    {
        Standing result{ trStreamIdentifier( stream ),
                         pb::adopt( trStreamName( stream ) ),
                         pb::adopt( trStreamConfiguration( stream ) ),
                         pb::adopt( trStreamProperties( stream ) ),
                         trStreamNotable( stream ) != 0,
                         {} };
        const tr::Links *links = tr::linksOf( stream ).links();
        if ( !links )
            return result;
        const auto add = [&]( const tr::Link &link ) {
            result.links.push_back( { trStreamIdentifier( link.from ), trStreamIdentifier( link.to ),
                                      pb::adopt( trStreamName( link.from ) ), link.kind, link.annotation } );
        };
        for ( const tr::Link &link : links->out )
            add( link );
        for ( const tr::Link *link : links->in )
            if ( trAnchorKindLeadsBack( link->kind ) && !known_.contains( link->from ) )
                add( *link );
        return result;
    }

    std::vector<const struct trStream *> reached_; // in the order of their distance
    std::unordered_set<const struct trStream *> known_;
};

template <class Tell> void tellOne( const Standing &standing, const Tell &tell )
{
    const struct trEvent blank = { .stream = standing.stream, .name = standing.name.get() };
    const auto with = [&]( pbInt kind, auto change ) {
        struct trEvent event = blank;
        event.kind = kind;
        change( event );
        tell( event );
    };
    with( TR_EVENT_CREATED, [&]( auto &event ) { event.text = standing.name.get(); } );
    if ( standing.configuration )
        with( TR_EVENT_CONFIGURATION, [&]( auto &event ) { event.store = standing.configuration.get(); } );
    const struct pbStore *properties = standing.properties.get();
    for ( pbInt i = 0; i < pbStoreLength( properties ); ++i ) {
        const auto key = pb::adopt( pbStoreKeyAt( properties, i ) );
        const auto value = pb::adopt( pbStoreValueAt( properties, i ) );
        const auto store = pb::adopt( pbStoreStoreAt( properties, i ) );
        with( TR_EVENT_PROPERTY, [&]( auto &event ) {
            event.key = key.get();
            event.value = value.get();
            event.store = store.get();
        } );
    }
    const pb::String yes = pb::string( "true" );
    if ( standing.notable )
        with( TR_EVENT_NOTABLE, [&]( auto &event ) { event.value = yes.get(); } );
    for ( const StandingLink &link : standing.links )
        with( TR_EVENT_LINKED, [&]( auto &event ) {
            event.stream = link.from;
            event.name = link.fromName.get();
            event.text = link.annotation.get();
            event.anchorKind = link.kind;
            event.other = link.to;
        } );
}

} // namespace

extern "C" pbBool trAnchorKindLeadsBack( pbInt kind )
{
    return kind == TR_ANCHOR_KIND_ORIGIN;
}

extern "C" void trStreamReplay( const struct trStream *stream, pbInt depth,
                                void ( *listener )( const struct trEvent *event, void *context ), void *context )
{
    PB_ASSERT( stream );
    PB_ASSERT( depth >= TR_REPLAY_WITHOUT_END );
    PB_ASSERT( listener );
    const pbInt time = tr___SystemNow();
    for ( const Standing &standing : Collector().collect( stream, depth ) )
        tellOne( standing, [&]( struct trEvent event ) {
            event.time = time;
            listener( &event, context );
        } );
}
