// inNwStack: a wish about one interface of the host, kept while a condition holds: that it is up, that it has an address.
// What it did is taken back when the options, the interface or the condition change, and at its end: an interface whose
// status it was to see to is then taken down, whether or not it was up before. What fails is tried again after a time
// that grows from 100 milliseconds to 5 minutes.
// Threads:   any. The changes are made in the scheduler's threads, the first ones before the stack is returned.
// Ownership: getters return a new reference. The last release ends the stack, and the changes are taken back after it;
//            it must happen before the module's shut-down, which waits for that.
// Needs:     CAP_NET_ADMIN to change an interface, CAP_NET_RAW to announce a new IPv4 address to the link.
#ifndef IN_NW_STACK_H
#define IN_NW_STACK_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct inNwOptions;
struct inNwStack;
struct inNwStackState;
struct pbSignalable;
struct pbString;
struct trAnchor;

IN_API const struct pbSort *inNwStackSort( void );
IN_API struct inNwStack *inNwStackRetain( const struct inNwStack *obj );
IN_API void inNwStackRelease( const struct inNwStack *obj );
IN_API struct pbObj *inNwStackObj( const struct inNwStack *obj );
IN_API struct inNwStack *inNwStackFrom( struct pbObj *obj );
IN_API struct pbString *inNwStackToString( const struct inNwStack *obj );
IN_API pbInt inNwStackCompare( const struct inNwStack *a, const struct inNwStack *b );
IN_API pbBool inNwStackEquals( const struct inNwStack *a, const struct inNwStack *b );

IN_API struct inNwStack *inNwStackCreate( const struct inNwOptions *options, struct trAnchor *optionalAnchor );

// The configured options. Setting them only asks for a run.
IN_API struct inNwOptions *inNwStackOptions( const struct inNwStack *stack );
IN_API void inNwStackSetOptions( struct inNwStack *stack, const struct inNwOptions *options );

IN_API struct inNwStackState *inNwStackState( const struct inNwStack *stack );
// Signalled once, when the options in effect or the interface change next: register, then read, each time.
IN_API void inNwStackUpdateAddSignalable( struct inNwStack *stack, struct pbSignalable *signalable );
IN_API void inNwStackUpdateDelSignalable( struct inNwStack *stack, struct pbSignalable *signalable );

// Up while everything is as wished. Items, each while there is something to say: "inNwStackInterface", the interface
// that the stack acts on; "inNwStackReason", why it is not up ("retry: next try in 400 ms: address not set, needs
// CAP_NET_ADMIN") and what was left behind; "inNwStackLeftBehind", the addresses that the kernel did not let it take
// away, with the reason.
IN_API struct csStatusReporter *inNwStackCsStatus( const struct inNwStack *stack );
IN_API void inNwStackTraceCompleteAnchor( struct inNwStack *stack, struct trAnchor *anchor );

PB_DECLS_END

#endif
