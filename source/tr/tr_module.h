// The module of the trace library.
#ifndef TR_MODULE_H
#define TR_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *trModule( void );

PB_DECLS_END

#endif
