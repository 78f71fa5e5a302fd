// Streams, anchors and the listener.
#include "support/death_table.hpp"
#include "support/trace_catcher.hpp"
#include "tr/tr.hpp"

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
