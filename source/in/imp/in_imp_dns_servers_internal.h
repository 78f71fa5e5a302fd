// The DNS servers that the system's resolver is configured with.
#ifndef IN_IMP_DNS_SERVERS_INTERNAL_H
#define IN_IMP_DNS_SERVERS_INTERNAL_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBuffer;
struct pbVector;

// Of struct inAddress, ascending and without duplicates; empty when the configuration cannot be read.
struct pbVector *in___ImpSystemEnumerateDnsServers( void );
// The same from the text of a resolver configuration, resolv.conf(5).
struct pbVector *in___ImpDnsServersFromResolvConf( const struct pbBuffer *text );

PB_DECLS_END

#endif
