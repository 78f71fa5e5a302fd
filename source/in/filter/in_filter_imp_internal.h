// in___FilterImp: the object behind an inFilter. A scheduled process re-evaluates it whenever its options, its stack or
// one of its DNS queries change, and when the list is to be made anew.
// Lock order: its region (rank 10) is taken before the stack's monitor and the queries'. A check takes neither; no filter
// is called with the monitor of a stack or of an interface held.
#ifndef IN_FILTER_IMP_INTERNAL_H
#define IN_FILTER_IMP_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csStatusReporter;
struct in___FilterImp;
struct inAddress;
struct inFilterOptions;
struct pbStore;
struct pbString;
struct trAnchor;

const struct pbSort *in___FilterImpSort( void );
struct in___FilterImp *in___FilterImpRetain( const struct in___FilterImp *obj );
void in___FilterImpRelease( const struct in___FilterImp *obj );
struct pbObj *in___FilterImpObj( const struct in___FilterImp *obj );
struct in___FilterImp *in___FilterImpFrom( struct pbObj *obj );
struct pbString *in___FilterImpToString( const struct in___FilterImp *obj );
pbInt in___FilterImpCompare( const struct in___FilterImp *a, const struct in___FilterImp *b );
pbBool in___FilterImpEquals( const struct in___FilterImp *a, const struct in___FilterImp *b );

// Runs once before it returns.
struct in___FilterImp *in___FilterImpCreate( const struct inFilterOptions *options, struct trAnchor *optionalAnchor );
// Ends the process, once only. Does not wait: the imp goes when a run under way has returned.
void in___FilterImpHalt( struct in___FilterImp *imp );
// Blocks until every halted imp is gone, so that what they use can be released.
void in___FilterImpHaltWait( void );
// The process function; the argument is the imp.
void in___FilterImpProcessFunc( struct pbObj *argument );

// As the functions of inFilter.
struct inFilterOptions *in___FilterImpOptions( const struct in___FilterImp *imp );
void in___FilterImpSetOptions( struct in___FilterImp *imp, const struct inFilterOptions *options );
pbBool in___FilterImpCheck( const struct in___FilterImp *imp, const struct inAddress *address );
struct pbStore *in___FilterImpExplain( const struct in___FilterImp *imp, const struct inAddress *optionalAddress );
struct csStatusReporter *in___FilterImpCsStatus( const struct in___FilterImp *imp );
void in___FilterImpTraceCompleteAnchor( struct in___FilterImp *imp, struct trAnchor *anchor );

PB_DECLS_END

#endif
