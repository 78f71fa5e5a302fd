// The table of names behind inQosLayer2PcpToString. Start-up and shut-down are called by the module, once each.
#ifndef IN_QOS_LAYER2_PCP_INTERNAL_H
#define IN_QOS_LAYER2_PCP_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___QosLayer2PcpStartup( void );
void in___QosLayer2PcpShutdown( void );

// Null-terminated names: names[i] is the value i.
extern const char *const in___QosLayer2PcpNames[];

PB_DECLS_END

#endif
