// The module of the IRI library.
#ifndef IRI_MODULE_H
#define IRI_MODULE_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

PB_API const struct pbModule *iriModule( void );

PB_DECLS_END

#endif
