// inQosStack: a shared holder of QoS options, given to channels and listeners at creation.
// Threads:   any. Whoever has created a socket has read the options; later changes do not re-mark it.
// Ownership: getters return a new reference.
#ifndef IN_QOS_STACK_H
#define IN_QOS_STACK_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inQosOptions;
struct inQosStack;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inQosStackSort( void );
IN_API struct inQosStack *inQosStackRetain( const struct inQosStack *obj );
IN_API void inQosStackRelease( const struct inQosStack *obj );
IN_API struct pbObj *inQosStackObj( const struct inQosStack *obj );
IN_API struct inQosStack *inQosStackFrom( struct pbObj *obj );
IN_API struct pbString *inQosStackToString( const struct inQosStack *obj );
IN_API pbInt inQosStackCompare( const struct inQosStack *a, const struct inQosStack *b );
IN_API pbBool inQosStackEquals( const struct inQosStack *a, const struct inQosStack *b );

IN_API struct inQosStack *inQosStackCreate( const struct inQosOptions *options, struct trAnchor *optionalAnchor );
IN_API struct inQosOptions *inQosStackOptions( const struct inQosStack *stack );
// Equal options replace the reference and nothing else.
IN_API void inQosStackSetOptions( struct inQosStack *stack, const struct inQosOptions *options );
IN_API void inQosStackTraceCompleteAnchor( struct inQosStack *stack, struct trAnchor *anchor );

PB_DECLS_END

#endif
