// How the registry makes an interface of its imp, and how others change an interface.
#ifndef IN_NW_INTERFACE_INTERNAL_H
#define IN_NW_INTERFACE_INTERNAL_H

#include "in/nw/in_nw_interface.h"

PB_DECLS_BEGIN

struct in___NwInterfaceImp;
struct inAddress;
struct inNetwork;

struct inNwInterface *in___NwInterfaceCreate( struct in___NwInterfaceImp *imp );

// As the functions of the imp.
pbBool in___NwInterfaceTrySetStatus( struct inNwInterface *iface, pbInt status, pbInt *optionalError );
pbBool in___NwInterfaceTrySetLayer3UnicastAddress( struct inNwInterface *iface, const struct inAddress *inAddress,
                                                   const struct inNetwork *optionalInNetwork, pbInt *optionalError );
pbBool in___NwInterfaceTryDelLayer3UnicastAddress( struct inNwInterface *iface, const struct inAddress *inAddress,
                                                   pbInt *optionalError );

PB_DECLS_END

#endif
