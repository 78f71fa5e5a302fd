// Streams, anchors and the listener.
#include "support/death_table.hpp"
#include "support/trace_catcher.hpp"
#include "tr/tr.hpp"
#include "tr/tr_replay.h"

#include <thread>

using support::TraceCatcher;
using testing::ElementsAre;

namespace {

using Stream = pb::Ref<struct trStream>;
using Anchor = pb::Ref<struct trAnchor>;

Stream stream( const char *name ) { return pb::adopt( trStreamCreateCstr( name, -1 ) ); }

TEST( TrStream, TextsReachTheListenerInOrderAndOnlyWhileItIsThere )
{
    const Stream stack = stream( "STACK" ), other = stream( "OTHER" );
    tr::text( stack.get(), "[before()]" );
    std::vector<TraceCatcher::Event> events;
    {
        TraceCatcher catcher;
        tr::text( stack.get(), "[first()] port: %i up: %b name: %~s", 5060, true, pb::string( "a" ) );
        trStreamTextCstr( other.get(), "[other()]xyz", 9 );
        const pb::Ref<struct pbBuffer> payload = pb::adopt( pbBufferCreateFromBytes( "abc", 3 ) );
        trStreamSetPayloadTypeCstr( stack.get(), "PB_BUFFERS", 9 );
        tr::message( stack.get(), payload.get(), "[second()] %s", pb::String() );
        EXPECT_THAT( catcher.texts( "STACK" ),
                     ElementsAre( "[first()] port: 5060 up: true name: a", "[second()] null" ) );
        EXPECT_THAT( catcher.texts( "OTHER" ), ElementsAre( "[other()]" ) );
        ASSERT_EQ( catcher.payloads( "STACK" ).size(), 1u );
        EXPECT_TRUE( catcher.payloads( "STACK" )[0].is( payload ) );
        events = catcher.events();
    }
    tr::text( stack.get(), "[after()]" );
    ASSERT_EQ( events.size(), 3u );
    EXPECT_EQ( events[2].payloadType, "PB_BUFFER" );
    EXPECT_FALSE( events[0].payloadType );
    EXPECT_LE( events[0].time, events[1].time );
    EXPECT_GT( events[0].time, INT64_C( 1'600'000'000'000'000'000 ) ); // nanoseconds, not a smaller unit
}

TEST( TrStream, StateIsKeptAndReported )
{
    const auto store = pb::adopt( pbStoreCreate() );
    TraceCatcher catcher;
    {
        const Stream s = stream( "STATE" );
        trStreamSetPropertyCstrInt( s.get(), "number", -1, -7 );
        trStreamSetPropertyCstrBool( s.get(), "flag", -1, 2 );
        for ( const char *const text : { "one", "two" } )
            trStreamSetPropertyCstrString( s.get(), "text", -1, pb::string( text ).get() );
        trStreamSetPropertyCstrStore( s.get(), "store", -1, store.get() );
        for ( const char *const gone : { "number", "store" } )
            trStreamDelPropertyCstr( s.get(), gone, -1 );
        trStreamSetConfiguration( s.get(), store.get() );
        trStreamSetNotable( s.get() );
        const auto properties = pb::adopt( trStreamProperties( s.get() ) );
        EXPECT_EQ( pbStoreLength( properties.get() ), 2 );
        EXPECT_EQ( pb::utf8( pb::adopt( pbStoreValueCstr( properties.get(), "text", -1 ) ) ), "two" );
        EXPECT_TRUE( pb::adopt( trStreamConfiguration( s.get() ) ).is( store ) );
        EXPECT_TRUE( trStreamNotable( s.get() ) && catcher.notable( "STATE" ) );
        trStreamDelNotable( s.get() );
        EXPECT_FALSE( trStreamNotable( s.get() ) || catcher.notable( "STATE" ) );
    }
    EXPECT_EQ( catcher.property( "STATE", "number" ), std::nullopt );
    EXPECT_EQ( catcher.property( "STATE", "flag" ), "true" );
    EXPECT_EQ( catcher.property( "STATE", "text" ), "two" );
    EXPECT_TRUE( catcher.configuration( "STATE" ).is( store ) );
    EXPECT_EQ( catcher.events().front().kind, TR_EVENT_CREATED );
    EXPECT_EQ( catcher.events().back().kind, TR_EVENT_RELEASED );
}

TEST( TrAnchor, TheFirstCompletionMakesTheLink )
{
    TraceCatcher catcher;
    const Stream channel = stream( "CHANNEL" ), stack = stream( "STACK" ), late = stream( "LATE" );
    const Anchor plain = pb::adopt( trAnchorCreate( channel.get(), TR_ANCHOR_KIND_STACK ) );
    const Anchor annotated =
        pb::adopt( trAnchorCreateWithAnnotationCstr( channel.get(), TR_ANCHOR_KIND_USE, "inFilterInStack", -1 ) );
    trAnchorComplete( plain.get(), stack.get() );
    trAnchorComplete( plain.get(), late.get() );
    trAnchorComplete( annotated.get(), stack.get() );
    EXPECT_THAT( catcher.links(), ElementsAre( TraceCatcher::Link{ "CHANNEL", "STACK", 18, "" },
                                               TraceCatcher::Link{ "CHANNEL", "STACK", 9, "inFilterInStack" } ) );
}

TEST( TrSystem, HighVolumeNeedsTheWishAndAListener )
{
    trSystemSetAcceptsHighVolumeMessages( true );
    EXPECT_FALSE( trSystemAcceptsHighVolumeMessages() );
    {
        TraceCatcher catcher( true );
        EXPECT_TRUE( trSystemAcceptsHighVolumeMessages() );
        trSystemSetAcceptsHighVolumeMessages( false );
        EXPECT_FALSE( trSystemAcceptsHighVolumeMessages() );
        trSystemSetAcceptsHighVolumeMessages( true );
    }
    EXPECT_FALSE( trSystemAcceptsHighVolumeMessages() );
}

// The listener's context dies with the catcher: a call after the removal would be a use after free.
TEST( TrSystem, NoCallRunsAfterTheListenerWasRemoved )
{
    const Stream s = stream( "S" );
    std::atomic<bool> stop{ false };
    std::thread tracing( [&] {
        while ( !stop )
            tr::text( s.get(), "[f()] %i", 1 );
    } );
    for ( int i = 0; i < 50; ++i ) {
        const auto catcher = std::make_unique<TraceCatcher>();
        while ( catcher->events().empty() )
            std::this_thread::yield();
    }
    stop = true;
    tracing.join();
}

void link( const Stream &from, const Stream &to, pbInt kind = TR_ANCHOR_KIND_PLAIN )
{
    trAnchorComplete( pb::adopt( trAnchorCreate( from.get(), kind ) ).get(), to.get() );
}

// "A B A>B" for the streams told and then the links.
std::string replay( const Stream &from, pbInt depth )
{
    struct Told {
        std::string streams, links;
        std::map<pbInt, std::string> names;
    } told;
    trStreamReplay( from.get(), depth, []( const trEvent *event, void *context ) {
        Told &told = *static_cast<Told *>( context );
        const std::string name = pb::utf8( event->name );
        if ( event->kind == TR_EVENT_CREATED ) {
            told.streams += name + " ";
            told.names[event->stream] = name;
        }
        else if ( event->kind == TR_EVENT_LINKED )
            told.links += name + ">" + std::to_string( event->other ) + " ";
    }, &told );
    for ( const auto &[identifier, name] : told.names )
        for ( size_t at; ( at = told.links.find( ">" + std::to_string( identifier ) + " " ) ) != std::string::npos; )
            told.links.replace( at + 1, std::to_string( identifier ).size(), name );
    return told.streams + told.links;
}

// Nobody listens when the links are made.
TEST( TrReplay, TellsWhatIsReachedOverTheLinksThatStand )
{
    const Stream a = stream( "A" ), b = stream( "B" ), c = stream( "C" ), user = stream( "U" ), work = stream( "W" );
    Stream gone = stream( "G" );
    link( a, b );
    link( a, b ); // known
    link( a, a );
    link( b, c, TR_ANCHOR_KIND_STACK );
    link( c, a, TR_ANCHOR_KIND_USE );
    link( user, b );
    link( work, b, TR_ANCHOR_KIND_ORIGIN );
    link( b, gone );
    link( gone, c );
    EXPECT_EQ( replay( a, TR_REPLAY_WITHOUT_END ), "A B C G W A>B B>C B>G C>A G>C W>B " );
    gone.reset();
    EXPECT_EQ( replay( a, TR_REPLAY_WITHOUT_END ), "A B C W A>B B>C C>A W>B " );
    EXPECT_EQ( replay( user, 1 ), "U B U>B B>" + std::to_string( trStreamIdentifier( c.get() ) ) + " W>B " );
    EXPECT_EQ( replay( work, TR_REPLAY_WITHOUT_END ), "W W>" + std::to_string( trStreamIdentifier( b.get() ) ) + " " );

    trStreamSetPropertyCstrInt( c.get(), "number", -1, 5 );
    trStreamSetConfiguration( c.get(), pb::adopt( pbStoreCreate() ).get() );
    trStreamSetNotable( c.get() );
    std::vector<pbInt> kinds;
    trStreamReplay( c.get(), 0, []( const trEvent *event, void *context ) {
        static_cast<std::vector<pbInt> *>( context )->push_back( event->kind );
    }, &kinds );
    EXPECT_THAT( kinds, ElementsAre( TR_EVENT_CREATED, TR_EVENT_CONFIGURATION, TR_EVENT_PROPERTY, TR_EVENT_NOTABLE,
                                     TR_EVENT_LINKED ) );
}

TEST( TrReplay, StreamsComeAndGoMeanwhile )
{
    const Stream root = stream( "ROOT" );
    std::atomic<bool> stop{ false };
    std::vector<std::thread> threads;
    for ( int i = 0; i < 3; ++i )
        threads.emplace_back( [&] {
            while ( !stop ) {
                const Stream middle = stream( "MIDDLE" ), end = stream( "END" );
                link( root, middle );
                link( middle, end );
                link( end, root, TR_ANCHOR_KIND_ORIGIN );
            }
        } );
    for ( int i = 0; i < 2000; ++i )
        EXPECT_TRUE( replay( root, TR_REPLAY_WITHOUT_END ).starts_with( "ROOT " ) );
    stop = true;
    for ( std::thread &thread : threads )
        thread.join();
    EXPECT_EQ( replay( root, TR_REPLAY_WITHOUT_END ), "ROOT " );
}

// Two more listeners beside the catcher, of which one wishes for high volume.
TEST( TrSystem, EachListenerHearsWhatItWishesFor )
{
    const Stream s = stream( "S" );
    int quiet = 0, loud = 0;
    const auto count = []( const trEvent *, void *context ) { ++*static_cast<int *>( context ); };
    const auto payload = pb::adopt( pbBufferCreateFromBytes( "abc", 3 ) );
    const auto traceTwo = [&] {
        quiet = loud = 0;
        tr::text( s.get(), "[f()]" );
        tr::message( s.get(), payload.get(), "[g()]" );
        return std::pair( quiet, loud );
    };
    TraceCatcher catcher;
    trSystemAddListener( count, &quiet, false );
    EXPECT_EQ( traceTwo(), std::pair( 2, 0 ) );
    EXPECT_FALSE( trSystemAcceptsHighVolumeMessages() );
    trSystemAddListener( count, &loud, false );
    trSystemAddListener( count, &loud, true ); // once, with the new wish
    EXPECT_TRUE( trSystemAcceptsHighVolumeMessages() );
    catcher.clear();
    EXPECT_EQ( traceTwo(), std::pair( 1, 2 ) );
    EXPECT_THAT( catcher.texts( "S" ), ElementsAre( "[f()]" ) );
    trSystemDelListener( count, &loud );
    trSystemDelListener( count, &loud );
    EXPECT_EQ( traceTwo(), std::pair( 2, 0 ) );
    trSystemDelListener( count, &quiet );
    EXPECT_FALSE( trSystemAcceptsHighVolumeMessages() );
    EXPECT_EQ( traceTwo(), std::pair( 0, 0 ) );
}

TEST( TrDeathTest, Preconditions )
{
    support::expectDeaths( {
        { [] { trStreamCreateCstr( nullptr, -1 ); }, "name" },
        { [] { trStreamSetPropertyCstrString( stream( "S" ).get(), "k", -1, nullptr ); }, "value" },
        { [] { trStreamSetConfiguration( stream( "S" ).get(), nullptr ); }, "configuration" },
        { [] { trAnchorCreate( nullptr, 0 ); }, "stream" },
        { [] { trAnchorComplete( nullptr, stream( "S" ).get() ); }, "anchor" },
    } );
}

} // namespace
