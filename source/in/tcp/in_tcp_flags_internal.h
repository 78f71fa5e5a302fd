// The table of flag names behind inTcpFlags. Start-up and shut-down are called by the module, once each.
#ifndef IN_TCP_FLAGS_INTERNAL_H
#define IN_TCP_FLAGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___TcpFlagsStartup( void );
void in___TcpFlagsShutdown( void );

// Null-terminated names of the flags: names[i] is bit i.
extern const char *const in___TcpFlagsNames[];

PB_DECLS_END

#endif
