// The condition as a sort of the configuration service: registered by the module's start-up.
#ifndef CS_CONDITION_INTERNAL_H
#define CS_CONDITION_INTERNAL_H

#include "cs/cs_condition.h"

void cs___ConditionCsStartup( void );
void cs___ConditionCsShutdown( void );

#endif
