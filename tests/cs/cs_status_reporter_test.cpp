// Status: each change signals those who registered since the last one, once.
#include "cs/cs_status_reporter.h"

#include "cs/test_sort.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"

#include <gmock/gmock.h>

namespace {

class CsStatusReporter : public testing::Test {
protected:
    // Whether the step signalled what was registered before it.
    bool signals( const std::function<void()> &step, bool withdrawn = false )
    {
        const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
        const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
        csStatusReporterUpdateAddSignalable( reporter.get(), signalable.get() );
        if ( withdrawn )
            csStatusReporterUpdateDelSignalable( reporter.get(), signalable.get() );
        step();
        return pbBarrierPassTimed( barrier.get(), 0 );
    }
    void set( const char *value )
    {
        csStatusReporterSetItemCstr( reporter.get(), "inStackAddress", -1, pb::string( value ).get() );
    }
    void del( const char *key ) { csStatusReporterDelItemCstr( reporter.get(), key, -1 ); }
    std::string item() { return test::text( pb::adopt( csStatusReporterItems( reporter.get() ) ), "inStackAddress" ); }

    const pb::Ref<struct csStatusReporter> reporter = pb::adopt( csStatusReporterCreate( nullptr ) );
};

TEST_F( CsStatusReporter, SignalsEachChangeAndNothingElse )
{
    EXPECT_FALSE( csStatusReporterUp( reporter.get() ) );
    const std::pair<std::function<void()>, bool> steps[] = {
        { [&] { csStatusReporterSetUp( reporter.get(), false ); }, false },
        { [&] { csStatusReporterSetUp( reporter.get(), true ); }, true },
        { [&] { csStatusReporterSetUp( reporter.get(), 2 ); }, false }, // any true is true
        { [&] { del( "inStackAddress" ); }, false },
        { [&] { set( "10.0.0.1" ); }, true },
        { [&] { set( "10.0.0.1" ); }, false },
        { [&] { set( "10.0.0.2" ); }, true },
        { [&] { del( "other" ); }, false },
    };
    for ( size_t i = 0; i < std::size( steps ); ++i )
        EXPECT_EQ( signals( steps[i].first ), steps[i].second ) << i;
    EXPECT_EQ( item(), "10.0.0.2" );
    EXPECT_EQ( csStatusReporterUp( reporter.get() ), 1 );
    EXPECT_FALSE( signals( [&] { csStatusReporterSetUp( reporter.get(), false ); }, true ) );
    EXPECT_TRUE( signals( [&] { del( "inStackAddress" ); } ) );
    EXPECT_EQ( item(), "" );
}

} // namespace
