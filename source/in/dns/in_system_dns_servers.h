// The DNS servers that the host's resolver is configured with.
#ifndef IN_SYSTEM_DNS_SERVERS_H
#define IN_SYSTEM_DNS_SERVERS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbVector;

// Of struct inAddress, ascending and without duplicates; empty when there are none or the configuration
// (resolv.conf(5)) cannot be read. Reads the file at every call; module start-up is not needed.
IN_API struct pbVector *inSystemEnumerateDnsServers( void );

PB_DECLS_END

#endif
