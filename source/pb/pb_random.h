// Random numbers for port choice and the like; not for secrets.
#ifndef PB_RANDOM_H
#define PB_RANDOM_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

// Uniform over low..high, both inclusive; 0 <= low <= high.
PB_API pbInt pbRandomNonNegativeIntRange( pbInt low, pbInt high );

PB_DECLS_END

#endif
