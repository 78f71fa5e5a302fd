// The module of the configuration service.
#ifndef CS_MODULE_H
#define CS_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *csModule( void );

PB_DECLS_END

#endif
