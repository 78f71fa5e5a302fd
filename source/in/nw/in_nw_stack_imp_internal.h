// in___NwStackImp: the object behind an inNwStack. A scheduled process re-evaluates the whole wish whenever its options,
// its condition, the interface or the set of interfaces change, and when a failed change is to be tried again.
// Lock order: its monitor (rank 30) is taken before the interface registry's and the interfaces', and held over the
// changes that they make.
#ifndef IN_NW_STACK_IMP_INTERNAL_H
#define IN_NW_STACK_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct in___NwStackImp;
struct inNwOptions;
struct inNwStackState;
struct pbSignalable;
struct pbString;
struct trAnchor;

const struct pbSort *in___NwStackImpSort( void );
struct in___NwStackImp *in___NwStackImpRetain( const struct in___NwStackImp *obj );
void in___NwStackImpRelease( const struct in___NwStackImp *obj );
struct pbObj *in___NwStackImpObj( const struct in___NwStackImp *obj );
struct in___NwStackImp *in___NwStackImpFrom( struct pbObj *obj );
struct pbString *in___NwStackImpToString( const struct in___NwStackImp *obj );
pbInt in___NwStackImpCompare( const struct in___NwStackImp *a, const struct in___NwStackImp *b );
pbBool in___NwStackImpEquals( const struct in___NwStackImp *a, const struct in___NwStackImp *b );

// Runs once before it returns.
struct in___NwStackImp *in___NwStackImpCreate( const struct inNwOptions *options, struct trAnchor *optionalAnchor );
// Asks the process for its last run, in which what was applied is taken back. Once only; does not wait.
void in___NwStackImpHalt( struct in___NwStackImp *imp );
// Blocks until every halted imp has had its last run and is gone.
void in___NwStackImpHaltWait( void );
// The process function; the argument is the imp.
void in___NwStackImpProcessFunc( struct pbObj *argument );

// As the functions of inNwStack.
struct inNwOptions *in___NwStackImpOptions( const struct in___NwStackImp *imp );
void in___NwStackImpSetOptions( struct in___NwStackImp *imp, const struct inNwOptions *options );
struct inNwStackState *in___NwStackImpState( const struct in___NwStackImp *imp );
void in___NwStackImpUpdateAddSignalable( struct in___NwStackImp *imp, struct pbSignalable *signalable );
void in___NwStackImpUpdateDelSignalable( struct in___NwStackImp *imp, struct pbSignalable *signalable );
struct csStatusReporter *in___NwStackImpCsStatus( const struct in___NwStackImp *imp );
void in___NwStackImpTraceCompleteAnchor( struct in___NwStackImp *imp, struct trAnchor *anchor );

PB_DECLS_END

#endif
