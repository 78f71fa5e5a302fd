// AttachTrace: the library's traces, for clients that may be slow.
#include "inctl/attach_trace.hpp"

#include "inctl/exit_code.hpp"
#include "inctl/record_keys.hpp"
#include "inctl/records.hpp"
#include "inctl/trace_sink.hpp"

#include "tr/tr_anchor.h"
#include "tr/tr_replay.h"
#include "tr/tr_stream.h"

#include <fmt/format.h>

#include <deque>
#include <unordered_set>

namespace inctl {
namespace {

constexpr size_t queuedBytes = 1 << 20; // of each client
constexpr size_t rememberedLinks = 100'000;
constexpr std::string_view ownName = "INCTL_ATTACH";

bool isOwn( const struct trEvent &event )
{
    const std::u32string_view name = pb::view( event.name );
    return std::equal( name.begin(), name.end(), ownName.begin(), ownName.end(),
                       []( char32_t a, char b ) { return a == static_cast<char32_t>( b ); } );
}

pb::Ref<struct trStream> ownStream()
{
    return pb::adopt( trStreamCreateCstr( ownName.data(), static_cast<pbInt>( ownName.size() ) ) );
}

// False without a trace.
bool linkTo( struct trStream *stream, const struct csRecord *record )
{
    const std::string name = pb::utf8( pb::adopt( csRecordName( record ) ) );
    const auto anchor = pb::adopt( trAnchorCreateWithAnnotationCstr( stream, TR_ANCHOR_KIND_PLAIN, name.data(),
                                                                     static_cast<pbInt>( name.size() ) ) );
    return csRecordTraceCompleteAnchor( record, anchor.get() );
}

void replay( const struct trStream *stream, pbInt depth, const std::function<void( const struct trEvent & )> &hear )
{
    trStreamReplay(
        stream, depth,
        []( const struct trEvent *event, void *context ) {
            ( *static_cast<const std::function<void( const struct trEvent & )> *>( context ) )( *event );
        },
        const_cast<std::function<void( const struct trEvent & )> *>( &hear ) );
}

struct LinkMade {
    pbInt from, to; // in the direction in which it is followed
};

LinkMade linkOf( const struct trEvent &event )
{
    return trAnchorKindLeadsBack( event.anchorKind ) ? LinkMade{ event.other, event.stream }
                                                     : LinkMade{ event.stream, event.other };
}

} // namespace

// Guarded by the monitor of AttachTrace, but for wish.
class AttachTrace::Subscription {
  public:
    explicit Subscription( TraceWish wished ) : wish( std::move( wished ) ) {}

    const TraceWish wish;

    // Whether the event is of what is followed, which it may extend.
    bool wants( const struct trEvent &event )
    {
        if ( event.kind == TR_EVENT_MESSAGE && !wish.packets )
            return false;
        if ( wish.object.empty() )
            return true;
        if ( event.kind == TR_EVENT_LINKED ) {
            const LinkMade link = linkOf( event );
            if ( replaying ) {
                if ( linksMeanwhile.size() < rememberedLinks )
                    linksMeanwhile.push_back( link );
                return false;
            }
            if ( !streams.contains( link.from ) )
                return false;
            if ( wish.tree )
                streams.insert( link.to );
            return true;
        }
        return event.kind == TR_EVENT_RELEASED ? streams.erase( event.stream ) > 0 : streams.contains( event.stream );
    }
    // Links that were made while it was collected what stands.
    void followMeanwhile()
    {
        for ( bool more = wish.tree; std::exchange( more, false ); )
            for ( const LinkMade &link : linksMeanwhile )
                more |= streams.contains( link.from ) && streams.insert( link.to ).second;
        linksMeanwhile.clear();
    }

    std::deque<std::shared_ptr<const std::string>> lines;
    size_t bytes = 0;
    pbInt lost = 0; // since the last line

    pbInt objectStream = 0; // 0: none so far
    std::unordered_set<pbInt> streams;
    bool replaying = false;
    std::vector<LinkMade> linksMeanwhile;
};

AttachTrace::AttachTrace( struct csConfiguration *configuration, std::function<void()> wake )
    : configuration_( pb::share( configuration ) ), wake_( std::move( wake ) ), stream_( ownStream() )
{
}

AttachTrace::~AttachTrace()
{
    trSystemDelListener( listen, this );
}

std::shared_ptr<AttachTrace::Subscription> AttachTrace::subscribe( const TraceWish &wish )
{
    auto subscription = std::make_shared<Subscription>( wish );
    pb::Ref<struct csRecord> record;
    if ( !wish.object.empty() ) {
        record = recordNamed( configuration_.get(), wish.object );
        if ( !record || !linkTo( stream_.get(), record.get() ) )
            throw Failure{ Exit::No, fmt::format( "the object {} has no trace", wish.object ) };
        subscription->replaying = true;
    }
    {
        pb::Guard guard( monitor_ );
        subscriptions_.push_back( subscription );
    }
    listenAsWished();
    learnObjects();
    if ( record )
        follow( *subscription, record.get() );
    return subscription;
}

void AttachTrace::unsubscribe( const std::shared_ptr<Subscription> &subscription )
{
    {
        pb::Guard guard( monitor_ );
        std::erase( subscriptions_, subscription );
    }
    listenAsWished();
}

void AttachTrace::followObjects()
{
    Subscriptions subscriptions;
    {
        pb::Guard guard( monitor_ );
        subscriptions = subscriptions_;
    }
    if ( subscriptions.empty() )
        return;
    learnObjects();
    for ( const auto &subscription : subscriptions )
        if ( !subscription->wish.object.empty() )
            if ( const auto record = recordNamed( configuration_.get(), subscription->wish.object ) )
                follow( *subscription, record.get() );
}

// Links made while this collects what stands are remembered by the subscription, so that none is missed in between.
void AttachTrace::follow( Subscription &subscription, const struct csRecord *record )
{
    const auto root = ownStream();
    if ( !linkTo( root.get(), record ) )
        return;
    pbInt object = 0;
    replay( root.get(), 0, [&object]( const struct trEvent &event ) {
        if ( event.kind == TR_EVENT_LINKED )
            object = event.other;
    } );
    {
        pb::Guard guard( monitor_ );
        if ( std::exchange( subscription.objectStream, object ) == object )
            return;
        subscription.replaying = true;
        subscription.streams = { object };
    }
    std::vector<std::string> lines;
    std::vector<pbInt> streams;
    replay( root.get(), subscription.wish.tree ? TR_REPLAY_WITHOUT_END : 1, [&]( const struct trEvent &event ) {
        if ( isOwn( event ) )
            return;
        if ( event.kind == TR_EVENT_CREATED )
            streams.push_back( event.stream );
        pb::Guard guard( monitor_ );
        lines.push_back( line( event ) );
    } );
    pb::Guard guard( monitor_ );
    for ( std::string &text : lines )
        push( subscription, std::make_shared<const std::string>( std::move( text ) ) );
    subscription.streams.insert( streams.begin(), streams.end() );
    subscription.followMeanwhile();
    subscription.replaying = false;
}

void AttachTrace::learnObjects()
{
    {
        pb::Guard guard( monitor_ );
        releasedMeanwhile_.emplace();
    }
    for ( const auto &record : recordsOf( configuration_.get() ) )
        (void)linkTo( stream_.get(), record.get() ); // some sorts have no trace
    std::unordered_map<pbInt, std::string> objects;
    replay( stream_.get(), 0, [&objects]( const struct trEvent &event ) {
        if ( event.kind == TR_EVENT_LINKED )
            objects[event.other] = pb::utf8( event.text );
    } );
    pb::Guard guard( monitor_ );
    for ( const pbInt stream : *releasedMeanwhile_ )
        objects.erase( stream );
    releasedMeanwhile_.reset();
    objects_.merge( objects ); // what has lost its links still has its release to tell
}

void AttachTrace::listenAsWished()
{
    bool anyone = false, packets = false;
    {
        pb::Guard guard( monitor_ );
        for ( const auto &subscription : subscriptions_ ) {
            anyone = true;
            packets |= subscription->wish.packets;
        }
    }
    // Without the monitor, which the listener takes.
    if ( anyone ) {
        trSystemAddListener( listen, this, packets );
        return;
    }
    trSystemDelListener( listen, this );
    std::unordered_map<pbInt, std::string> unheard; // of their releases
    pb::Guard guard( monitor_ );
    std::swap( objects_, unheard );
}

void AttachTrace::listen( const struct trEvent *event, void *context )
{
    static_cast<AttachTrace *>( context )->hear( *event );
}

void AttachTrace::hear( const struct trEvent &event )
{
    if ( isOwn( event ) )
        return;
    pb::Guard guard( monitor_ );
    std::shared_ptr<const std::string> text; // made once, and only when somebody has room for it
    for ( const auto &subscription : subscriptions_ ) {
        if ( !subscription->wants( event ) )
            continue;
        if ( !text && subscription->bytes < queuedBytes )
            text = std::make_shared<const std::string>( line( event ) );
        push( *subscription, text );
    }
    if ( event.kind != TR_EVENT_RELEASED )
        return;
    objects_.erase( event.stream );
    if ( releasedMeanwhile_ )
        releasedMeanwhile_->push_back( event.stream );
}

void AttachTrace::push( Subscription &subscription, const std::shared_ptr<const std::string> &line )
{
    if ( subscription.bytes >= queuedBytes ) {
        ++subscription.lost;
        return;
    }
    const auto add = [&]( const std::shared_ptr<const std::string> &text ) {
        if ( subscription.lines.empty() )
            wake_();
        subscription.bytes += text->size();
        subscription.lines.push_back( text );
    };
    if ( const pbInt lost = std::exchange( subscription.lost, 0 ) )
        add( std::make_shared<const std::string>( fmt::format( "{{\"event\": \"lost\", \"count\": {}}}\n", lost ) ) );
    add( line );
}

std::string AttachTrace::line( const struct trEvent &event ) const
{
    const auto found = objects_.find( event.stream );
    const Record record = traceRecord( event, found == objects_.end() ? "" : found->second );
    return jsonText( record, CS_JSON_SHORT ) + "\n";
}

void AttachTrace::take( Subscription &subscription, std::string &text, size_t bytes )
{
    std::vector<std::shared_ptr<const std::string>> taken; // dropped and copied outside the monitor
    pbInt lost = 0;
    {
        pb::Guard guard( monitor_ );
        for ( size_t size = text.size(); size < bytes && !subscription.lines.empty(); ) {
            taken.push_back( std::move( subscription.lines.front() ) );
            subscription.lines.pop_front();
            size += taken.back()->size();
            subscription.bytes -= taken.back()->size();
        }
        if ( subscription.lines.empty() )
            lost = std::exchange( subscription.lost, 0 );
    }
    for ( const auto &line : taken )
        text += *line;
    if ( lost > 0 )
        text += fmt::format( "{{\"event\": \"lost\", \"count\": {}}}\n", lost );
}

} // namespace inctl
