// prProcess: a function that the scheduler runs when something asks for it.
// It never runs in the caller of schedule and never beside itself. Schedules before a run collapse into one; one during a
// run causes one more. What was written before a schedule is visible to the run that it causes.
// A pending or running process is kept alive by the scheduler: releasing the last reference neither cancels a run nor
// waits for it. After the module's shut-down, or the domain's release, nothing runs any more.
#ifndef PR_PROCESS_H
#define PR_PROCESS_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct prProcess;
struct prDomain;
struct pbSignalable;
struct pbAlertable;
struct pbTimer;
struct pbString;

PB_API const struct pbSort *prProcessSort( void );
PB_API struct prProcess *prProcessRetain( const struct prProcess *obj );
PB_API void prProcessRelease( const struct prProcess *obj );
PB_API struct pbObj *prProcessObj( const struct prProcess *obj );
PB_API struct prProcess *prProcessFrom( struct pbObj *obj );
PB_API struct pbString *prProcessToString( const struct prProcess *obj );
PB_API pbInt prProcessCompare( const struct prProcess *a, const struct prProcess *b );
PB_API pbBool prProcessEquals( const struct prProcess *a, const struct prProcess *b );

// The argument is retained until the process has halted and its last run has returned, or nobody has the process any
// more; a scheduler thread then releases it, unless the scheduler has stopped. priority 0..9, higher runs first.
PB_API struct prProcess *prProcessCreateWithPriorityCstr( pbInt priority, void ( *function )( struct pbObj *optionalArgument ),
                                                          struct pbObj *optionalArgument, const char *name, pbInt nameLength );
// Runs in the threads of the domain, in which it may block.
PB_API struct prProcess *prProcessCreateInDomainCstr( struct prDomain *domain, pbInt priority,
                                                      void ( *function )( struct pbObj *optionalArgument ),
                                                      struct pbObj *optionalArgument, const char *name, pbInt nameLength );
PB_API struct pbString *prProcessName( const struct prProcess *process );
// Callable with any monitor held. After a halt nothing happens.
PB_API void prProcessSchedule( struct prProcess *process );
// No run starts afterwards, a pending one included; a run under way goes on. Callable from inside the function; twice is
// harmless. Does not wait.
PB_API void prProcessHalt( struct prProcess *process );
PB_API pbBool prProcessHalted( const struct prProcess *process );
// Signalled once the process has halted and no run of it is under way; at once when that is so already.
PB_API void prProcessEndAddSignalable( struct prProcess *process, struct pbSignalable *signalable );
PB_API void prProcessEndDelSignalable( struct prProcess *process, struct pbSignalable *signalable );
// Blocks until then; not from inside the function.
PB_API void prProcessEndWait( struct prProcess *process );
PB_API struct pbSignalable *prProcessCreateSignalable( struct prProcess *process );
PB_API struct pbAlertable *prProcessCreateAlertable( struct prProcess *process );
PB_API struct pbTimer *prProcessCreateTimer( struct prProcess *process );

PB_DECLS_END

#endif
