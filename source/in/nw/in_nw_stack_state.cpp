// inNwStackState: what an interface configuration stack acts on.
#include "in/nw/in_nw_stack_state.h"

#include "in/nw/in_nw_interface.h"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_NW_STACK_STATE )

struct inNwStackState final : pb::Object<struct inNwStackState, in___sort_IN_NW_STACK_STATE> {
    pb::Ref<struct inNwInterface> interface;

    auto operator<=>( const inNwStackState & ) const = default;
};

PB_OBJECT_DEFINE( inNwStackState, in___sort_IN_NW_STACK_STATE )

struct inNwStackState *inNwStackStateCreate( void )
{
    return pb::make<struct inNwStackState>().release();
}

struct inNwStackState *inNwStackStateCreateFrom( const struct inNwStackState *source )
{
    PB_ASSERT( source );
    return pb::make<struct inNwStackState>( *source ).release();
}

struct inNwInterface *inNwStackStateInterface( const struct inNwStackState *state )
{
    PB_ASSERT( state );
    return state->interface.share();
}

pbBool inNwStackStateHasInterface( const struct inNwStackState *state )
{
    PB_ASSERT( state );
    return PB_BOOL_FROM( state->interface );
}

void inNwStackStateSetInterface( struct inNwStackState **state, const struct inNwInterface *iface )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    PB_ASSERT( iface );
    pb::edit( state ).interface = pb::share( iface );
}

void inNwStackStateDelInterface( struct inNwStackState **state )
{
    PB_ASSERT( state );
    PB_ASSERT( *state );
    pb::edit( state ).interface.reset();
}
