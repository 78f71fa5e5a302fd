// The filter's place in the module's life. Called by the module, once each.
#ifndef IN_FILTER_INTERNAL_H
#define IN_FILTER_INTERNAL_H

#include "in/filter/in_filter.h"

PB_DECLS_BEGIN

// Registers and unregisters the sort at the configuration service.
void in___FilterCsStartup( void );
void in___FilterCsShutdown( void );

PB_DECLS_END

#endif
