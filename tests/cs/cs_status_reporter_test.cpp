// Status: each change signals those who registered since the last one, once.
#include "cs/cs_status_reporter.h"

#include "cs/live.hpp"

namespace {

class CsStatusReporter : public testing::Test {
protected:
    bool signals( const std::function<void()> &step )
    {
        return test::signals( reporter.get(), csStatusReporterUpdateAddSignalable, csStatusReporterUpdateDelSignalable,
                              step );
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
    EXPECT_TRUE( signals( [&] { csStatusReporterSetUp( reporter.get(), false ); } ) );
    EXPECT_TRUE( signals( [&] { del( "inStackAddress" ); } ) );
    EXPECT_EQ( item(), "" );
}

} // namespace
