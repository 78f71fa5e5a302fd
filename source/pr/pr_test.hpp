// What tests ask of the scheduler. In-tree only.
#ifndef PR_TEST_HPP
#define PR_TEST_HPP

#include "pb/pb_base.h"

extern "C" {
// Blocks until no process of the default scheduler is pending or running.
PB_API void pr___Quiesce( void );
}

#endif
