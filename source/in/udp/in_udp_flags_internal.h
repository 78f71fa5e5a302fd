// The table of flag names behind inUdpFlags. Start-up and shut-down are called by the module, once each.
#ifndef IN_UDP_FLAGS_INTERNAL_H
#define IN_UDP_FLAGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___UdpFlagsStartup( void );
void in___UdpFlagsShutdown( void );

// Null-terminated names of the flags: names[i] is bit i.
extern const char *const in___UdpFlagsNames[];

PB_DECLS_END

#endif
