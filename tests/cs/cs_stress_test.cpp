// Threads that re-load, save, flip conditions, observe and read one configuration at the same time; the last state is
// right. For ThreadSanitizer.
#include "cs/cs_condition_observer.h"
#include "cs/live.hpp"

#include <fstream>
#include <thread>

using namespace test;

namespace {

std::string withConditions( bool value, bool other )
{
    return std::string( R"({ "objects": { "c": { "sort": "CS_CONDITION", "config": { "value": )" ) +
           ( value ? "true" : "false" ) + " } }" +
           ( other ? R"(, "d": { "sort": "CS_CONDITION" })" : R"(, "d": { "sort": "TEST_PHONE" })" ) + " } }";
}

TEST( CsStress, ReloadFlipObserveSave )
{
    const Modules modules;
    const std::string path = testing::TempDir() + "cs_stress_test.json", copy = path + ".copy";
    std::ofstream( path ) << withConditions( true, true );
    const Configuration configuration = running( withConditions( false, true ) );
    std::atomic<bool> done = false;
    // Ends when it has seen the last state: it misses no change.
    const auto observe = [&] {
        const auto observer = pb::adopt( csConditionObserverCreate( nullptr ) );
        const auto name = pb::string( "c" );
        csConditionObserverConfigure( observer.get(), name.get(), nullptr );
        for ( bool seen = false; !seen; ) {
            const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
            const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
            csConditionObserverUpdateAddSignalable( observer.get(), signalable.get() );
            const bool last = done; // before the value: what is last by then is seen
            const bool value = csConditionObserverValue( observer.get(), false );
            seen = last && value;
            if ( !last || !value )
                pbBarrierPass( barrier.get() );
            csConditionObserverUpdateDelSignalable( observer.get(), signalable.get() );
        }
    };
    const auto reload = [&] {
        for ( int i = 0; i < 100; ++i ) {
            struct pbVector *problems = nullptr;
            if ( i % 3 )
                applied( configuration, withConditions( i % 2, i % 5 ) );
            else
                EXPECT_TRUE(
                    csConfigurationTryReload( configuration.get(), pb::string( path ).get(), &problems, nullptr ) );
            pbVectorRelease( problems );
        }
    };
    const auto save = [&] {
        for ( int i = 0; i < 20; ++i ) {
            struct pbString *problem = nullptr;
            csConfigurationTrySave( configuration.get(), pb::string( copy ).get(), &problem );
            EXPECT_FALSE( problem ) << pb::utf8( problem );
            pbStringRelease( problem );
        }
    };
    const auto flip = [&] {
        for ( int i = 0; i < 2'000; ++i, (void)pb::adopt( csConfigurationRecords( configuration.get() ) ) )
            if ( const auto c = condition( configuration, "c" ) )
                csConditionSetValue( c.get(), i % 2 );
    };
    std::vector<std::thread> workers, observers;
    for ( int i = 0; i < 2; ++i )
        observers.emplace_back( observe );
    for ( const std::function<void()> &work : std::vector<std::function<void()>>{ reload, reload, save, flip } )
        workers.emplace_back( work );
    for ( auto &worker : workers )
        worker.join();
    applied( configuration, withConditions( false, true ) );
    done = true;
    csConditionSetValue( condition( configuration, "c" ).get(), false );
    csConditionSetValue( condition( configuration, "c" ).get(), true );
    for ( auto &observer : observers )
        observer.join();
    testPhone::events.clear();
}

} // namespace
