// How the registry makes an interface of its imp.
#ifndef IN_NW_INTERFACE_INTERNAL_H
#define IN_NW_INTERFACE_INTERNAL_H

#include "in/nw/in_nw_interface.h"

PB_DECLS_BEGIN

struct in___NwInterfaceImp;

struct inNwInterface *in___NwInterfaceCreate( struct in___NwInterfaceImp *imp );

PB_DECLS_END

#endif
