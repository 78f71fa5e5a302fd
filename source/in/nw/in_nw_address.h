// inNwAddress: a layer-2 address of a network interface, a value. Orders by type, then by MAC address.
#ifndef IN_NW_ADDRESS_H
#define IN_NW_ADDRESS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inNwAddress;
struct inNwMacAddress;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inNwAddressSort( void );
IN_API struct inNwAddress *inNwAddressRetain( const struct inNwAddress *obj );
IN_API void inNwAddressRelease( const struct inNwAddress *obj );
IN_API struct pbObj *inNwAddressObj( const struct inNwAddress *obj );
IN_API struct inNwAddress *inNwAddressFrom( struct pbObj *obj );
IN_API struct pbString *inNwAddressToString( const struct inNwAddress *obj );
IN_API pbInt inNwAddressCompare( const struct inNwAddress *a, const struct inNwAddress *b );
IN_API pbBool inNwAddressEquals( const struct inNwAddress *a, const struct inNwAddress *b );

IN_API struct inNwAddress *inNwAddressCreateMac( const struct inNwMacAddress *mac );
IN_API struct inNwAddress *inNwAddressCreateFrom( const struct inNwAddress *source );

IN_API pbInt inNwAddressType( const struct inNwAddress *address );                 // IN_NW_ADDRESS_TYPE_...
IN_API struct inNwMacAddress *inNwAddressMac( const struct inNwAddress *address ); // null when of another type
IN_API pbBool inNwAddressHasMac( const struct inNwAddress *address );

// Keys "type" and "mac".
IN_API struct pbStore *inNwAddressStore( const struct inNwAddress *address );
// Null unless both keys are present and valid.
IN_API struct inNwAddress *inNwAddressTryRestore( const struct pbStore *store );

PB_DECLS_END

#endif
