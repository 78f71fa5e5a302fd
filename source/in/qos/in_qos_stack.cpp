// inQosStack: the shared holder of QoS options.
#include "in/qos/in_qos_options.h"
#include "in/qos/in_qos_stack_internal.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_store.h"
#include "tr/tr.hpp"

PB_SORT_DECLARE( in___sort_IN_QOS_STACK )

struct inQosStack final : pb::Object<struct inQosStack, in___sort_IN_QOS_STACK> {
    explicit inQosStack( const struct inQosOptions *initialOptions ) : options( pb::share( initialOptions ) ) {}
    void traceConfiguration( const struct inQosOptions *inEffect )
    {
        trStreamSetConfiguration( trace.get(), pb::adopt( inQosOptionsStore( inEffect, false ) ).get() );
    }

    // Fixed after construction.
    const pb::Ref<struct trStream> trace = pb::adopt( trStreamCreateCstr( "IN_QOS_STACK", -1 ) );

    mutable pb::Monitor monitor{ 95 }; // traces with it held
    // Guarded by the monitor.
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
    pb::Ref<struct inQosOptions> options PB_GUARDED_BY( monitor );
};

PB_OBJECT_DEFINE( inQosStack, in___sort_IN_QOS_STACK )

struct inQosStack *inQosStackCreate( const struct inQosOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    auto stack = pb::make<struct inQosStack>( options );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, stack->trace.get() );
    stack->traceConfiguration( options );
    return stack.release();
}

struct inQosOptions *inQosStackOptions( const struct inQosStack *stack )
{
    PB_ASSERT( stack );
    pb::Guard guard( stack->monitor );
    return stack->options.share();
}

void inQosStackSetOptions( struct inQosStack *stack, const struct inQosOptions *options )
{
    PB_ASSERT( stack );
    PB_ASSERT( options );
    pb::Ref<struct pbSignal> over; // is dropped after the monitor
    pb::Guard guard( stack->monitor );
    if ( !inQosOptionsEquals( options, stack->options.get() ) ) {
        stack->traceConfiguration( options );
        pbSignalAssert( stack->update.get() );
        over = std::exchange( stack->update, pb::adopt( pbSignalCreate() ) );
    }
    stack->options = pb::share( options );
}

void inQosStackTraceCompleteAnchor( struct inQosStack *stack, struct trAnchor *anchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, stack->trace.get() );
}

void in___QosStackConfiguration( const struct inQosStack *stack, struct inQosOptions **options )
{
    PB_ASSERT( options );
    *options = inQosStackOptions( stack );
}

void in___QosStackConfigurationAddSignalable( struct inQosStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    pb::Guard guard( stack->monitor );
    pbSignalAddSignalable( stack->update.get(), signalable );
}

void in___QosStackConfigurationDelSignalable( struct inQosStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    pb::Guard guard( stack->monitor );
    pbSignalDelSignalable( stack->update.get(), signalable );
}
