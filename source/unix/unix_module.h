// The module of the Unix support library.
#ifndef UNIX_MODULE_H
#define UNIX_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *unixModule( void );

PB_DECLS_END

#endif
