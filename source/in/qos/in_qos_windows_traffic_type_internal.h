// The table of names behind inQosWindowsTrafficTypeToString. Start-up and shut-down are called by the module, once
// each.
#ifndef IN_QOS_WINDOWS_TRAFFIC_TYPE_INTERNAL_H
#define IN_QOS_WINDOWS_TRAFFIC_TYPE_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___QosWindowsTrafficTypeStartup( void );
void in___QosWindowsTrafficTypeShutdown( void );

// Null-terminated names: names[i] is the value i.
extern const char *const in___QosWindowsTrafficTypeNames[];

PB_DECLS_END

#endif
