// What is to be done before the process ends on a programming error. In-tree only.
#ifndef PB_ABORT_HPP
#define PB_ABORT_HPP

#include "pb/pb_base.h"

extern "C" {
// Called before the text of pb___Abort is written, on the thread that fails; null: nothing.
PB_API void pb___SetAbortCall( void ( *call )( void ) );
}

#endif
