// The module as its host sees it: what it says of itself, and that it leaves nothing behind.
#include "in/base/in_module_internal.h"
#include "in/nw/in_nw_interfaces.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"
#include "support/net_namespace.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <thread>

namespace {

using testing::StrEq;

TEST( Module, Describes )
{
    const struct pbModuleRecord &record = *inModule()->record;
    EXPECT_THAT( record.name, StrEq( "in" ) );
    EXPECT_THAT( record.description, StrEq( "Internetworking" ) );
    EXPECT_THAT( record.version, StrEq( "17.1" ) );
    EXPECT_THAT( record.requiredModules, StrEq( "cs iri pb pr rfc tr unix" ) );
}

std::ptrdiff_t entries( const char *directory )
{
    return std::distance( std::filesystem::directory_iterator( directory ), std::filesystem::directory_iterator() );
}

TEST( Module, StartsAndStopsWithoutAResidue )
{
    const char *const soak = std::getenv( "IN_SOAK" );
    for ( int cycle = 0; cycle < ( soak ? 200 : 2 ); ++cycle ) {
        // The start is for once in a process, and the leak check runs at the end of this one.
        support::Child child( [] {
            std::thread( [] {} ).join(); // a sanitizer starts its own thread with the first one
            const auto threads = entries( "/proc/self/task" ), descriptors = entries( "/proc/self/fd" );
            {
                support::ModuleHost host;
                const auto info = pb::adopt( in___CsModuleInfoFunc() );
                const auto listed = pb::adopt( pbStoreStoreCstr( info.get(), "interfaces", -1 ) );
                const auto interfaces = pb::adopt( inNwInterfacesVector() );
                ASSERT_EQ( pbStoreArrayLength( listed.get() ), pbVectorLength( interfaces.get() ) );
                const auto first = pb::adopt( pbStoreArrayStoreAt( listed.get(), 0 ) );
                EXPECT_TRUE( pbStoreHasValueCstr( first.get(), "identifier", -1 ) );
                EXPECT_TRUE( pbStoreHasStoreCstr( first.get(), "state", -1 ) );
            }
            // A joined thread leaves this directory a little later; one that was not joined meets the time limit.
            while ( entries( "/proc/self/task" ) > threads )
                std::this_thread::yield();
            EXPECT_EQ( entries( "/proc/self/fd" ), descriptors );
        } );
        EXPECT_TRUE( child.wait() );
    }
}

} // namespace
