// inNwStack: the public interface configuration stack, over its imp. Its last release ends the imp.
#include "in/nw/in_nw_stack.h"

#include "in/nw/in_nw_stack_imp_internal.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_NW_STACK )

struct inNwStack final : pb::Object<struct inNwStack, in___sort_IN_NW_STACK> {
    const pb::Ref<struct in___NwStackImp> imp;

    explicit inNwStack( struct in___NwStackImp *imp ) : imp( pb::adopt( imp ) ) {}
    ~inNwStack() { in___NwStackImpHalt( imp.get() ); }
};

PB_OBJECT_DEFINE( inNwStack, in___sort_IN_NW_STACK )

struct inNwStack *inNwStackCreate( const struct inNwOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    return pb::make<struct inNwStack>( in___NwStackImpCreate( options, optionalAnchor ) ).release();
}

struct inNwOptions *inNwStackOptions( const struct inNwStack *stack )
{
    PB_ASSERT( stack );
    return in___NwStackImpOptions( stack->imp.get() );
}

void inNwStackSetOptions( struct inNwStack *stack, const struct inNwOptions *options )
{
    PB_ASSERT( stack );
    PB_ASSERT( options );
    in___NwStackImpSetOptions( stack->imp.get(), options );
}

struct inNwStackState *inNwStackState( const struct inNwStack *stack )
{
    PB_ASSERT( stack );
    return in___NwStackImpState( stack->imp.get() );
}

void inNwStackUpdateAddSignalable( struct inNwStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    in___NwStackImpUpdateAddSignalable( stack->imp.get(), signalable );
}

void inNwStackUpdateDelSignalable( struct inNwStack *stack, struct pbSignalable *signalable )
{
    PB_ASSERT( stack );
    PB_ASSERT( signalable );
    in___NwStackImpUpdateDelSignalable( stack->imp.get(), signalable );
}

struct csStatusReporter *inNwStackCsStatus( const struct inNwStack *stack )
{
    PB_ASSERT( stack );
    return in___NwStackImpCsStatus( stack->imp.get() );
}

void inNwStackTraceCompleteAnchor( struct inNwStack *stack, struct trAnchor *anchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( anchor );
    in___NwStackImpTraceCompleteAnchor( stack->imp.get(), anchor );
}
