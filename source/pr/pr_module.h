// The module of the process library. Shut-down phase two joins the scheduler's threads.
#ifndef PR_MODULE_H
#define PR_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *prModule( void );

PB_DECLS_END

#endif
