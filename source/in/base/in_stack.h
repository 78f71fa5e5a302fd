// inStack: a network stack, on which channels, listeners and DNS queries are created. It turns its options into a local
// address, a primary interface and the interfaces that carry the address, and follows the host.
// Threads:   any. What it publishes changes in the scheduler's threads; inStackConfiguration reads it in one piece.
// Ownership: getters return a new reference or null. The last release ends the stack; it must happen before the
//            module's shut-down enters phase two.
#ifndef IN_STACK_H
#define IN_STACK_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct inAddress;
struct inNwInterface;
struct inOptions;
struct inStack;
struct pbSignalable;
struct pbStore;
struct pbString;
struct pbVector;
struct trAnchor;

IN_API const struct pbSort *inStackSort( void );
IN_API struct inStack *inStackRetain( const struct inStack *obj );
IN_API void inStackRelease( const struct inStack *obj );
IN_API struct pbObj *inStackObj( const struct inStack *obj );
IN_API struct inStack *inStackFrom( struct pbObj *obj );
IN_API struct pbString *inStackToString( const struct inStack *obj );
IN_API pbInt inStackCompare( const struct inStack *a, const struct inStack *b );
IN_API pbBool inStackEquals( const struct inStack *a, const struct inStack *b );

// Has its address and interfaces, if the host has any that fit, before it is returned.
IN_API struct inStack *inStackCreate( const struct inOptions *options, struct trAnchor *optionalAnchor );

// The configured options. Setting them only asks for a run: what follows from them is published later.
IN_API struct inOptions *inStackOptions( const struct inStack *stack );
IN_API void inStackSetOptions( struct inStack *stack, const struct inOptions *options );

IN_API struct inAddress *inStackAddress( const struct inStack *stack ); // or null
IN_API pbBool inStackHasAddress( const struct inStack *stack );
IN_API struct inNwInterface *inStackPrimaryInterface( const struct inStack *stack ); // or null
IN_API pbBool inStackHasPrimaryInterface( const struct inStack *stack );
// Of struct inNwInterface; may be empty.
IN_API struct pbVector *inStackInterfacesVector( const struct inStack *stack );
// At least one of the interfaces is up; the address plays no part.
IN_API pbBool inStackUp( const struct inStack *stack );
// All five of one moment. A null pointer leaves that one out; the references are new ones, or null where there is none.
IN_API void inStackConfiguration( const struct inStack *stack, struct inOptions **optionalOptions,
                                  struct inAddress **optionalAddress, struct inNwInterface **optionalPrimaryInterface,
                                  struct pbVector **optionalInterfaces, pbBool *optionalUp );
// Signalled once, when address, interfaces or up change next: register, then read, each time.
IN_API void inStackUpdateAddSignalable( struct inStack *stack, struct pbSignalable *signalable );
IN_API void inStackUpdateDelSignalable( struct inStack *stack, struct pbSignalable *signalable );

// What the stack is asking the resolver, and what it knows until it expires: "length", how many queries there are, and
// "queries", an array of the first limit of them, each with "kind" ("addresses", "domainNames", "srv"), "key" (the
// name, address or service), "state" ("running", "known", "failed"), "remaining" (milliseconds until it is forgotten;
// only of what has an expiry already) and "result" (an array of texts: the first 100 of them, and where there are more
// "resultLength", how many). By kind; what runs first, then by expiry.
IN_API struct pbStore *inStackDnsQueriesStore( const struct inStack *stack, pbInt limit );

// Up or down, with the item "inStackAddress" while there is an address.
IN_API struct csStatusReporter *inStackCsStatus( const struct inStack *stack );
IN_API void inStackTraceCompleteAnchor( struct inStack *stack, struct trAnchor *anchor );

PB_DECLS_END

#endif
