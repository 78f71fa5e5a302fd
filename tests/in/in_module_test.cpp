// The module as its host sees it: what it says of itself.
#include "in/base/in_module_internal.h"
#include "in/nw/in_nw_interfaces.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/module_host.hpp"

#include <gmock/gmock.h>

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

TEST( Module, TellsTheInterfaces )
{
    const support::ModuleHost host;
    const auto info = pb::adopt( in___CsModuleInfoFunc() );
    const auto listed = pb::adopt( pbStoreStoreCstr( info.get(), "interfaces", -1 ) );
    const auto interfaces = pb::adopt( inNwInterfacesVector() );
    ASSERT_EQ( pbStoreArrayLength( listed.get() ), pbVectorLength( interfaces.get() ) );
    const auto first = pb::adopt( pbStoreArrayStoreAt( listed.get(), 0 ) );
    EXPECT_TRUE( pbStoreHasValueCstr( first.get(), "identifier", -1 ) );
    EXPECT_TRUE( pbStoreHasStoreCstr( first.get(), "state", -1 ) );
}

} // namespace
