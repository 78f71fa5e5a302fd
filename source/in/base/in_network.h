// inNetwork: an address with an optional prefix length, a value. Host bits are zero when there is a prefix.
// Orders by address, then by prefix length with none (-1) first.
#ifndef IN_NETWORK_H
#define IN_NETWORK_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inNetwork;
struct pbString;

IN_API const struct pbSort *inNetworkSort( void );
IN_API struct inNetwork *inNetworkRetain( const struct inNetwork *obj );
IN_API void inNetworkRelease( const struct inNetwork *obj );
IN_API struct pbObj *inNetworkObj( const struct inNetwork *obj );
IN_API struct inNetwork *inNetworkFrom( struct pbObj *obj );
IN_API struct pbString *inNetworkToString( const struct inNetwork *obj );
IN_API pbInt inNetworkCompare( const struct inNetwork *a, const struct inNetwork *b );
IN_API pbBool inNetworkEquals( const struct inNetwork *a, const struct inNetwork *b );

// optionalPrefixLength -1 (none: a single host), 0..32 or 0..128.
IN_API struct inNetwork *inNetworkCreate( const struct inAddress *address, pbInt optionalPrefixLength );
IN_API struct inNetwork *inNetworkCreateFrom( const struct inNetwork *source );
// "10.0.0.0/8", "::1"; "/-1" means no prefix.
IN_API struct inNetwork *inNetworkTryCreateFromString( const struct pbString *source );

IN_API struct inAddress *inNetworkAddress( const struct inNetwork *net );
IN_API pbBool inNetworkHasPrefixLength( const struct inNetwork *net );
IN_API pbInt inNetworkPrefixLength( const struct inNetwork *net ); // -1 without prefix
IN_API void inNetworkSetAddressAndPrefixLength( struct inNetwork **net, const struct inAddress *address,
                                                pbInt optionalPrefixLength );

// With a prefix: so many leading bits agree. Prefix 0 contains every address of either version.
IN_API pbBool inNetworkContainsAddress( const struct inNetwork *net, const struct inAddress *containedAddress );
IN_API pbBool inNetworkContainsNetwork( const struct inNetwork *net, const struct inNetwork *containedNetwork );

PB_DECLS_END

#endif
