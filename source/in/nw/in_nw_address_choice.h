// Why a stack has the address that it has.
#ifndef IN_NW_ADDRESS_CHOICE_H
#define IN_NW_ADDRESS_CHOICE_H

#include "in/base/in_api.h"

PB_DECLS_BEGIN

struct inAddress;
struct inOptions;
struct pbStore;

// What a stack with these options would choose on this host at this moment, told by the choice itself:
// "candidates", an array with every unicast address of the host in the order in which they are looked at, each with
// "address", "interface", "excludedBy" (an array of the keys of options that do not admit it), "class" ("loopback",
// "link-local" or "other") and "score" (0 of one that is excluded; the highest wins, of equals the first);
// "address" and "primaryInterface", absent when there is none; "interfaces", an array of names. The previous address,
// if any, wins over others of its class. For people and programs that show it. Blocks for no longer than a lock.
IN_API struct pbStore *inNwExplainAddressChoice( const struct inOptions *options,
                                                 const struct inAddress *optionalPrevious );

PB_DECLS_END

#endif
