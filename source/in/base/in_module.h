// The module of the library.
#ifndef IN_MODULE_H
#define IN_MODULE_H

#include "in/base/in_api.h"
#include "pb/pb_module.h"

PB_DECLS_BEGIN

IN_API const struct pbModule *inModule( void );

PB_DECLS_END

#endif
