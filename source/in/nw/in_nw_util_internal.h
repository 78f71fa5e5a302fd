// How a stack picks its local address and its interfaces from the host's.
#ifndef IN_NW_UTIL_INTERNAL_H
#define IN_NW_UTIL_INTERNAL_H

#include "in/nw/in_nw_interface.h"

PB_DECLS_BEGIN

struct inAddress;
struct inOptions;
struct pbVector;

// The references behind address, primaryInterface and interfaces are the caller's own, or null, and are replaced.
// Address and primary interface say on entry what was chosen before, so that a choice that still fits is kept; either
// may be null afterwards. The interfaces are a vector of struct inNwInterface.
void in___NwUtilFindAddressAndInterface( const struct inOptions *options, struct inAddress **address,
                                         struct inNwInterface **primaryInterface, struct pbVector **interfaces );
// Signalled once, when the set of interfaces or any current interface changes.
void in___NwUtilInterfacesUpdateAddSignalable( struct pbSignalable *signalable );
void in___NwUtilInterfacesUpdateDelSignalable( struct pbSignalable *signalable );

PB_DECLS_END

#endif
