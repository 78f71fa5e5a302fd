// Configurations that run in a test, and what they signal.
#ifndef TESTS_CS_LIVE_HPP
#define TESTS_CS_LIVE_HPP

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_json.h"
#include "cs/cs_module.h"
#include "cs/test_sort.hpp"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"

#include <gmock/gmock.h>

namespace test {

using Configuration = pb::Ref<struct csConfiguration>;

// The module with the sort of conditions, and the module TEST.
struct Modules {
    Modules()
    {
        csModule()->startup();
        test = std::make_unique<TestSort>();
    }
    ~Modules()
    {
        test.reset();
        csModule()->shutdown();
        csModule()->shutdownWait();
    }
    std::unique_ptr<TestSort> test;
};

inline std::vector<std::string> texts( struct pbVector *vector )
{
    const auto owned = pb::adopt( vector );
    std::vector<std::string> texts;
    for ( pbInt i = 0; owned && i < pbVectorLength( owned.get() ); ++i )
        texts.push_back( pb::utf8( pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( owned.get(), i ) ).get() ) ) ) );
    return texts;
}

// Null when there are problems.
inline Configuration parse( std::string_view text )
{
    struct pbVector *problems = nullptr;
    auto configuration = pb::adopt(
        csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ), pb::string( "F" ).get(), &problems ) );
    EXPECT_THAT( texts( problems ), testing::IsEmpty() );
    return configuration;
}
inline Configuration running( std::string_view text )
{
    Configuration configuration = parse( text );
    csConfigurationStart( configuration.get() );
    return configuration;
}
// "NAME SORT change" of every record that was touched.
inline std::vector<std::string> applied( const Configuration &configuration, std::string_view text )
{
    struct pbVector *changes = nullptr;
    csConfigurationApply( configuration.get(), parse( text ).get(), &changes );
    const auto owned = pb::adopt( changes );
    std::vector<std::string> lines;
    for ( pbInt i = 0; i < pbVectorLength( owned.get() ); ++i ) {
        const Store entry = pb::adopt( pbStoreFrom( pbVectorObjAt( owned.get(), i ) ) );
        lines.push_back( test::text( entry, "name" ) + " " + test::text( entry, "sort" ) + " " +
                         test::text( entry, "change" ) );
    }
    return lines;
}
inline pb::Ref<struct csCondition> condition( const Configuration &configuration, const char *name )
{
    return pb::adopt(
        csConditionFrom( csConfigurationObject( configuration.get(), pb::string( name ).get(), csConditionSort() ) ) );
}
inline std::string treeText( const Configuration &configuration )
{
    const auto tree = pb::adopt( csConfigurationTree( configuration.get() ) );
    const auto objects = pb::adopt( pbStoreStoreCstr( tree.get(), "objects", -1 ) );
    return pb::utf8( pb::adopt( csJsonFromStore( objects.get(), CS_JSON_SHORT ) ) );
}

// Whether the step signals what was registered before it. add and del are the type's UpdateAdd and DelSignalable.
template <class T>
bool signals( T *observed, void ( *add )( T *, struct pbSignalable * ), void ( *del )( T *, struct pbSignalable * ),
              const std::function<void()> &step )
{
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) ), quiet = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    const auto withdrawn = pb::adopt( pbSignalableCreateBarrier( quiet.get() ) );
    add( observed, signalable.get() );
    add( observed, withdrawn.get() );
    del( observed, withdrawn.get() );
    step();
    del( observed, signalable.get() );
    EXPECT_FALSE( pbBarrierPassTimed( quiet.get(), 0 ) );
    return pbBarrierPassTimed( barrier.get(), 0 );
}

} // namespace test

#endif
