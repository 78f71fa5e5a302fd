// inNwStackState: what an interface configuration stack acts on at one moment, a value.
#ifndef IN_NW_STACK_STATE_H
#define IN_NW_STACK_STATE_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inNwInterface;
struct inNwStackState;
struct pbString;

IN_API const struct pbSort *inNwStackStateSort( void );
IN_API struct inNwStackState *inNwStackStateRetain( const struct inNwStackState *obj );
IN_API void inNwStackStateRelease( const struct inNwStackState *obj );
IN_API struct pbObj *inNwStackStateObj( const struct inNwStackState *obj );
IN_API struct inNwStackState *inNwStackStateFrom( struct pbObj *obj );
IN_API struct pbString *inNwStackStateToString( const struct inNwStackState *obj );
IN_API pbInt inNwStackStateCompare( const struct inNwStackState *a, const struct inNwStackState *b );
IN_API pbBool inNwStackStateEquals( const struct inNwStackState *a, const struct inNwStackState *b );

// Without an interface.
IN_API struct inNwStackState *inNwStackStateCreate( void );
IN_API struct inNwStackState *inNwStackStateCreateFrom( const struct inNwStackState *source );

// Null when absent.
IN_API struct inNwInterface *inNwStackStateInterface( const struct inNwStackState *state );
IN_API pbBool inNwStackStateHasInterface( const struct inNwStackState *state );
IN_API void inNwStackStateSetInterface( struct inNwStackState **state, const struct inNwInterface *iface );
IN_API void inNwStackStateDelInterface( struct inNwStackState **state );

PB_DECLS_END

#endif
