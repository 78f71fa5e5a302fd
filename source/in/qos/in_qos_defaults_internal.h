// The table of names behind inQosDefaultsToString. Start-up and shut-down are called by the module, once each.
#ifndef IN_QOS_DEFAULTS_INTERNAL_H
#define IN_QOS_DEFAULTS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___QosDefaultsStartup( void );
void in___QosDefaultsShutdown( void );

// Null-terminated names: names[i] is the value i.
extern const char *const in___QosDefaultsNames[];

PB_DECLS_END

#endif
