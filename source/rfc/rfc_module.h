// The module of the RFC codec library.
#ifndef RFC_MODULE_H
#define RFC_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *rfcModule( void );

PB_DECLS_END

#endif
