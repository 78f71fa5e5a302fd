// The platform's part of QoS in the module's life.
#ifndef IN_IMP_QOS_INTERNAL_H
#define IN_IMP_QOS_INTERNAL_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

void in___ImpQosStartup( void );
void in___ImpQosShutdown( void );

PB_DECLS_END

#endif
