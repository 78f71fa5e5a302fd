// The table of flag names behind inFlags. Start-up and shut-down are called by the module, once each.
#ifndef IN_FLAGS_INTERNAL_H
#define IN_FLAGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___FlagsStartup( void );
void in___FlagsShutdown( void );

// Null-terminated names of the flags: names[i] is bit i.
extern const char *const in___FlagsNames[];

PB_DECLS_END

#endif
