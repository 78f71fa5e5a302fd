// The platform's part of QoS. Linux marks a socket when it is created, so there is no service to start.
#include "in/imp/in_imp_qos_internal.h"

void in___ImpQosStartup( void ) {}

void in___ImpQosShutdown( void ) {}
