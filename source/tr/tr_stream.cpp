// trStream: the trace of one active object. State is kept whether anybody listens or not; texts go to the listener
// alone.
#include "tr/tr_stream.h"

#include "pb/pb_buffer.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "tr/tr.hpp"
#include "tr/tr_link_internal.hpp"
#include "tr/tr_system_internal.h"

namespace {

pbInt nextIdentifier()
{
    static std::atomic<pbInt> last{ 0 };
    return last.fetch_add( 1, std::memory_order_relaxed ) + 1;
}

} // namespace

PB_SORT_DECLARE( tr___sort_TR_STREAM )
struct trStream final : pb::Object<struct trStream, tr___sort_TR_STREAM> {
    // fixed
    const pb::String name;
    const pbInt identifier = nextIdentifier();

    mutable tr::LinksOwner links;

    // Held while a change is handed to the listener, so that the events tell the states in their order. The system's
    // monitor is the inner one, and the listener does not come back.
    mutable pb::Monitor monitor;
    pb::String payloadType PB_GUARDED_BY( monitor );
    pb::Ref<struct pbStore> properties PB_GUARDED_BY( monitor ); // null: none so far
    pb::Ref<struct pbStore> configuration PB_GUARDED_BY( monitor );
    bool notable PB_GUARDED_BY( monitor ) = false;

    explicit trStream( pb::String streamName ) : name( std::move( streamName ) )
    {
        emit( { .kind = TR_EVENT_CREATED, .text = name.get() } );
    }
    ~trStream()
    {
        links.drop(); // first: a replay may be reading what follows
        emit( { .kind = TR_EVENT_RELEASED } );
    }

    pb::String toString() const { return name; }

    void emit( struct trEvent event ) const
    {
        if ( !tr::listening() )
            return;
        event.stream = identifier;
        event.name = name.get();
        tr___SystemEmit( &event );
    }

    void setNotable( bool value ) PB_EXCLUDES( monitor )
    {
        const pb::String text = pb::string( value ? "true" : "false" );
        pb::Guard guard( monitor );
        if ( std::exchange( notable, value ) == value )
            return;
        emit( { .kind = TR_EVENT_NOTABLE, .value = text.get() } );
    }

    // One of value and store is given, or neither to delete; a property is one or the other, whatever it was before.
    void setProperty( const char *key, pbInt keyLength, const struct pbString *value, const struct pbStore *store )
        PB_EXCLUDES( monitor )
    {
        const pb::String keyText = pb::adopt( pbStringCreateFromCstr( key, keyLength ) );
        pb::Guard guard( monitor );
        if ( !properties )
            properties = pb::adopt( pbStoreCreate() );
        if ( value )
            pbStoreSetValue( properties.address(), keyText.get(), value );
        else if ( store )
            pbStoreSetStore( properties.address(), keyText.get(), store );
        else {
            pbStoreDelValueCstr( properties.address(), key, keyLength );
            pbStoreDelStoreCstr( properties.address(), key, keyLength );
        }
        emit( { .kind = TR_EVENT_PROPERTY, .key = keyText.get(), .value = value, .store = store } );
    }
};
PB_OBJECT_DEFINE( trStream, tr___sort_TR_STREAM )

tr::LinksOwner &tr::linksOf( const struct trStream *stream ) { return stream->links; }

extern "C" {

struct trStream *trStreamCreateCstr( const char *name, pbInt nameLength )
{
    PB_ASSERT( name );
    return pb::make<struct trStream>( pb::adopt( pbStringCreateFromCstr( name, nameLength ) ) ).release();
}

struct pbString *trStreamName( const struct trStream *stream )
{
    PB_ASSERT( stream );
    return stream->name.share();
}

pbInt trStreamIdentifier( const struct trStream *stream )
{
    PB_ASSERT( stream );
    return stream->identifier;
}

void trStreamSetPayloadTypeCstr( struct trStream *stream, const char *type, pbInt typeLength )
{
    PB_ASSERT( stream );
    PB_ASSERT( type );
    pb::String text = pb::adopt( pbStringCreateFromCstr( type, typeLength ) );
    pb::Guard guard( stream->monitor );
    stream->payloadType = std::move( text );
}

void trStreamSetPropertyCstrString( struct trStream *stream, const char *key, pbInt keyLength,
                                    const struct pbString *value )
{
    PB_ASSERT( stream );
    PB_ASSERT( key );
    PB_ASSERT( value );
    stream->setProperty( key, keyLength, value, nullptr );
}

void trStreamSetPropertyCstrBool( struct trStream *stream, const char *key, pbInt keyLength, pbBool value )
{
    PB_ASSERT( stream );
    PB_ASSERT( key );
    stream->setProperty( key, keyLength, pb::string( value ? "true" : "false" ).get(), nullptr );
}

void trStreamSetPropertyCstrInt( struct trStream *stream, const char *key, pbInt keyLength, pbInt value )
{
    PB_ASSERT( stream );
    PB_ASSERT( key );
    stream->setProperty( key, keyLength, pb::format( "%i", value ).get(), nullptr );
}

void trStreamSetPropertyCstrStore( struct trStream *stream, const char *key, pbInt keyLength,
                                   const struct pbStore *value )
{
    PB_ASSERT( stream );
    PB_ASSERT( key );
    PB_ASSERT( value );
    stream->setProperty( key, keyLength, nullptr, value );
}

void trStreamDelPropertyCstr( struct trStream *stream, const char *key, pbInt keyLength )
{
    PB_ASSERT( stream );
    PB_ASSERT( key );
    stream->setProperty( key, keyLength, nullptr, nullptr );
}

struct pbStore *trStreamProperties( const struct trStream *stream )
{
    PB_ASSERT( stream );
    pb::Guard guard( stream->monitor );
    return stream->properties ? stream->properties.share() : pbStoreCreate();
}

void trStreamSetConfiguration( struct trStream *stream, const struct pbStore *configuration )
{
    PB_ASSERT( stream );
    PB_ASSERT( configuration );
    pb::Ref<struct pbStore> store = pb::share( configuration ); // leaves with the old one, outside the monitor
    pb::Guard guard( stream->monitor );
    std::swap( stream->configuration, store );
    stream->emit( { .kind = TR_EVENT_CONFIGURATION, .store = configuration } );
}

struct pbStore *trStreamConfiguration( const struct trStream *stream )
{
    PB_ASSERT( stream );
    pb::Guard guard( stream->monitor );
    return stream->configuration.share();
}

void trStreamSetNotable( struct trStream *stream )
{
    PB_ASSERT( stream );
    stream->setNotable( true );
}

void trStreamDelNotable( struct trStream *stream )
{
    PB_ASSERT( stream );
    stream->setNotable( false );
}

pbBool trStreamNotable( const struct trStream *stream )
{
    PB_ASSERT( stream );
    pb::Guard guard( stream->monitor );
    return stream->notable;
}

void trStreamTextCstr( struct trStream *stream, const char *text, pbInt textLength )
{
    PB_ASSERT( stream );
    PB_ASSERT( text );
    if ( !tr::listening() )
        return;
    const pb::String string = pb::adopt( pbStringCreateFromCstr( text, textLength ) );
    stream->emit( { .kind = TR_EVENT_TEXT, .text = string.get() } );
}

void trStreamTextFormatCstr( struct trStream *stream, const char *format, pbInt formatLength,
                             const struct pbFormatArgument *arguments, pbInt argumentCount )
{
    PB_ASSERT( stream );
    PB_ASSERT( format );
    if ( !tr::listening() )
        return;
    const pb::String text = pb::adopt( pbStringCreateFromFormatCstr( format, formatLength, arguments, argumentCount ) );
    stream->emit( { .kind = TR_EVENT_TEXT, .text = text.get() } );
}

void trStreamMessageFormatCstr( struct trStream *stream, const struct pbBuffer *payload, const char *format,
                                pbInt formatLength, const struct pbFormatArgument *arguments, pbInt argumentCount )
{
    PB_ASSERT( stream );
    PB_ASSERT( payload );
    PB_ASSERT( format );
    if ( !tr::listening() )
        return;
    const pb::String text = pb::adopt( pbStringCreateFromFormatCstr( format, formatLength, arguments, argumentCount ) );
    pb::String type;
    {
        pb::Guard guard( stream->monitor );
        type = stream->payloadType;
    }
    stream->emit( { .kind = TR_EVENT_MESSAGE, .text = text.get(), .payload = payload, .payloadType = type.get() } );
}

} // extern "C"
