// QoS stacks: what a change of options tells, and what it does not.
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack_internal.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "support/in_tables.hpp"
#include "support/trace_catcher.hpp"

#include <gmock/gmock.h>

namespace {

TEST( QosStack, TellsOfOptionsThatDiffer )
{
    const support::InTables tables;
    support::TraceCatcher catcher;
    const auto first = pb::adopt( inQosOptionsCreate() );
    const auto stack = pb::adopt( inQosStackCreate( first.get(), nullptr ) );
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    in___QosStackConfigurationAddSignalable( stack.get(), signalable.get() );
    catcher.clear();

    const auto equal = pb::adopt( inQosOptionsCreateFrom( first.get() ) );
    inQosStackSetOptions( stack.get(), equal.get() );
    EXPECT_EQ( pb::adopt( inQosStackOptions( stack.get() ) ).get(), equal.get() );
    EXPECT_FALSE( pbBarrierPassTimed( barrier.get(), 0 ) );
    EXPECT_THAT( catcher.events(), testing::IsEmpty() );

    auto other = equal;
    inQosOptionsSetLayer3Tos( other.address(), 46 );
    inQosStackSetOptions( stack.get(), other.get() );
    EXPECT_TRUE( pbBarrierPassTimed( barrier.get(), 0 ) );
    const auto tos = pb::adopt( pbStoreValueCstr( catcher.configuration( "IN_QOS_STACK" ).get(), "layer3Tos", -1 ) );
    EXPECT_EQ( pb::utf8( tos ), "0x2E" );

    // The registration was for one change.
    pbBarrierBlock( barrier.get() );
    inQosStackSetOptions( stack.get(), first.get() );
    EXPECT_FALSE( pbBarrierPassTimed( barrier.get(), 0 ) );
}

} // namespace
