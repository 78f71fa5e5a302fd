// TraceCatcher: listens to all trace streams while it lives and answers what a stream of a given name has traced.
#ifndef SUPPORT_TRACE_CATCHER_HPP
#define SUPPORT_TRACE_CATCHER_HPP

#include "pb/pb_buffer.h"
#include "pb/pb_object.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "tr/tr_system.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace support {

class TraceCatcher {
public:
    struct Event {
        pbInt kind;
        pbInt time;
        pbInt stream;
        std::string name;
        std::optional<std::string> text, key, value;
        pb::Ref<struct pbStore> store;
        pb::Ref<struct pbBuffer> payload;
        pbInt anchorKind;
        pbInt other;
        std::optional<std::string> payloadType;
    };
    struct Link {
        std::string from, to; // "to" is empty when that stream traced nothing while the catcher lived
        pbInt kind;
        std::string annotation;
        bool operator==( const Link & ) const = default;
    };

    explicit TraceCatcher( bool highVolume = false )
    {
        trSystemSetAcceptsHighVolumeMessages( highVolume );
        trSystemSetListener(
            []( const trEvent *event, void *self ) { static_cast<TraceCatcher *>( self )->take( *event ); }, this );
    }
    ~TraceCatcher()
    {
        trSystemSetListener( nullptr, nullptr );
        trSystemSetAcceptsHighVolumeMessages( false );
    }
    TraceCatcher( const TraceCatcher & ) = delete;
    TraceCatcher &operator=( const TraceCatcher & ) = delete;

    std::vector<Event> events() const
    {
        std::lock_guard lock( mutex_ );
        return events_;
    }
    void clear()
    {
        std::lock_guard lock( mutex_ );
        events_.clear();
    }

    // Texts of all streams of that name, those of messages included, in order.
    std::vector<std::string> texts( const std::string &name ) const
    {
        std::lock_guard lock( mutex_ );
        std::vector<std::string> found;
        for ( const Event &event : events_ )
            if ( event.name == name && ( event.kind == TR_EVENT_TEXT || event.kind == TR_EVENT_MESSAGE ) )
                found.push_back( event.text.value_or( "" ) );
        return found;
    }
    std::vector<pb::Ref<struct pbBuffer>> payloads( const std::string &name ) const
    {
        std::lock_guard lock( mutex_ );
        std::vector<pb::Ref<struct pbBuffer>> found;
        for ( const Event &event : events_ )
            if ( event.name == name && event.payload )
                found.push_back( event.payload );
        return found;
    }
    // The latest state; a property that was deleted or never set is absent.
    std::optional<std::string> property( const std::string &name, const std::string &key ) const
    {
        const std::optional<Event> event = last( name, TR_EVENT_PROPERTY, key );
        return event ? event->value : std::nullopt;
    }
    pb::Ref<struct pbStore> configuration( const std::string &name ) const
    {
        const std::optional<Event> event = last( name, TR_EVENT_CONFIGURATION );
        return event ? event->store : nullptr;
    }
    bool notable( const std::string &name ) const
    {
        const std::optional<Event> event = last( name, TR_EVENT_NOTABLE );
        return event && event->value == "true";
    }
    std::vector<Link> links() const
    {
        std::lock_guard lock( mutex_ );
        std::vector<Link> found;
        for ( const Event &event : events_ )
            if ( event.kind == TR_EVENT_LINKED ) {
                const auto to = names_.find( event.other );
                found.push_back( { event.name, to == names_.end() ? "" : to->second, event.anchorKind,
                                   event.text.value_or( "" ) } );
            }
        return found;
    }

private:
    static std::optional<std::string> copy( const struct pbString *text )
    {
        return text ? std::optional( pb::utf8( text ) ) : std::nullopt;
    }

    void take( const trEvent &event )
    {
        std::lock_guard lock( mutex_ );
        events_.push_back( { event.kind, event.time, event.stream, pb::utf8( event.name ), copy( event.text ),
                             copy( event.key ), copy( event.value ), pb::share( event.store ),
                             pb::share( event.payload ), event.anchorKind, event.other,
                             copy( event.payloadType ) } );
        names_[event.stream] = events_.back().name;
    }

    std::optional<Event> last( const std::string &name, pbInt kind,
                               const std::optional<std::string> &key = std::nullopt ) const
    {
        std::lock_guard lock( mutex_ );
        for ( auto event = events_.rbegin(); event != events_.rend(); ++event )
            if ( event->name == name && event->kind == kind && event->key == key )
                return *event;
        return std::nullopt;
    }

    mutable std::mutex mutex_;
    std::vector<Event> events_;
    std::map<pbInt, std::string> names_;
};

} // namespace support

#endif
