// What other files of the library ask of a QoS stack: its options as they change, and its place in the module's life.
#ifndef IN_QOS_STACK_INTERNAL_H
#define IN_QOS_STACK_INTERNAL_H

#include "in/qos/in_qos_stack.h"

PB_DECLS_BEGIN

struct pbSignalable;

// A new reference in *options; what was there is not released.
void in___QosStackConfiguration( const struct inQosStack *stack, struct inQosOptions **options );
// Signalled once, when the options change next: register, then read, each time.
void in___QosStackConfigurationAddSignalable( struct inQosStack *stack, struct pbSignalable *signalable );
void in___QosStackConfigurationDelSignalable( struct inQosStack *stack, struct pbSignalable *signalable );

// Registers and unregisters the sort at the configuration service.
void in___QosStackCsStartup( void );
void in___QosStackCsShutdown( void );

PB_DECLS_END

#endif
