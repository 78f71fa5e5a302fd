// The table of flag names behind inFilterEntryFlags. Start-up and shut-down are called by the module, once each.
#ifndef IN_FILTER_ENTRY_FLAGS_INTERNAL_H
#define IN_FILTER_ENTRY_FLAGS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___FilterEntryFlagsStartup( void );
void in___FilterEntryFlagsShutdown( void );

// Null-terminated names of the flags: names[i] is bit i.
extern const char *const in___FilterEntryFlagsNames[];

PB_DECLS_END

#endif
