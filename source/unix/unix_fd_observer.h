// unixFdObserver: waits until one of many file descriptors is ready. Level-triggered.
// One thread waits; any thread sets conditions. Between a true Wait and Unblock a report is outstanding: setting
// conditions from another thread waits for its end, so that whoever deregistered a descriptor knows that the waiting
// thread has either not seen it or has already taken hold of what belongs to it. The waiting thread itself must not set
// conditions while its report is outstanding.
#ifndef UNIX_FD_OBSERVER_H
#define UNIX_FD_OBSERVER_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct unixFdObserver;
struct pbSignal;

#define UNIX_FD_CONDITION_READABLE INT64_C( 1 )
#define UNIX_FD_CONDITION_WRITABLE INT64_C( 2 )
#define UNIX_FD_CONDITION_ERROR INT64_C( 4 )

PB_API const struct pbSort *unixFdObserverSort( void );
PB_API struct unixFdObserver *unixFdObserverRetain( const struct unixFdObserver *obj );
PB_API void unixFdObserverRelease( const struct unixFdObserver *obj );
PB_API struct pbObj *unixFdObserverObj( const struct unixFdObserver *obj );
PB_API struct unixFdObserver *unixFdObserverFrom( struct pbObj *obj );
PB_API struct pbString *unixFdObserverToString( const struct unixFdObserver *obj );
PB_API pbInt unixFdObserverCompare( const struct unixFdObserver *a, const struct unixFdObserver *b );
PB_API pbBool unixFdObserverEquals( const struct unixFdObserver *a, const struct unixFdObserver *b );

// Null when the system refuses a descriptor.
PB_API struct unixFdObserver *unixFdObserverTryCreate( void );
// conditions: the set to watch; 0 removes the descriptor, and one that is not registered or was closed counts as removed.
// False when the system refuses (a bad descriptor, no memory). Remove a descriptor before closing it.
PB_API pbBool unixFdObserverTrySetConditions( struct unixFdObserver *observer, pbInt fd, pbInt conditions );
// Blocks until a watched descriptor is ready: true, with the descriptor and those of its watched conditions that hold.
// False once the signal is asserted, also when it already was. Never reports a descriptor whose conditions were removed,
// nor an event of a former owner of the same number. A hang-up counts as readable when that is watched and is not
// reported otherwise; it never counts as an error. False also when the observer is broken.
PB_API pbBool unixFdObserverWait( struct unixFdObserver *observer, struct pbSignal *abortSignal, pbInt *fd, pbInt *conditions );
// By the waiting thread: whether the next Wait may find an event without asking the system, and so without sleeping.
PB_API pbBool unixFdObserverPending( const struct unixFdObserver *observer );
// Ends the outstanding report.
PB_API void unixFdObserverUnblock( struct unixFdObserver *observer );
// The observer itself is broken.
PB_API pbBool unixFdObserverError( const struct unixFdObserver *observer );

PB_DECLS_END

#endif
