// inOptions: the configuration of a stack, a value: where it takes its address from, its flags, and the options of DNS,
// TCP and UDP. Settings are not checked against each other. Orders field by field in the order below, absent first.
#ifndef IN_OPTIONS_H
#define IN_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inAddress;
struct inDnsOptions;
struct inNetwork;
struct inOptions;
struct inTcpOptions;
struct inUdpOptions;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inOptionsSort( void );
IN_API struct inOptions *inOptionsRetain( const struct inOptions *obj );
IN_API void inOptionsRelease( const struct inOptions *obj );
IN_API struct pbObj *inOptionsObj( const struct inOptions *obj );
IN_API struct inOptions *inOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inOptionsToString( const struct inOptions *obj );
IN_API pbInt inOptionsCompare( const struct inOptions *a, const struct inOptions *b );
IN_API pbBool inOptionsEquals( const struct inOptions *a, const struct inOptions *b );

// No flags, nothing fixed, the three option sets at their defaults.
IN_API struct inOptions *inOptionsCreate( void );
IN_API struct inOptions *inOptionsCreateFrom( const struct inOptions *source );

// IN_FLAG_...; unknown bits are dropped.
IN_API uint64_t inOptionsFlags( const struct inOptions *options );
IN_API void inOptionsSetFlags( struct inOptions **options, uint64_t flags );

// Identifier of the network interface to use; null when absent.
IN_API struct pbString *inOptionsInterface( const struct inOptions *options );
IN_API pbBool inOptionsHasInterface( const struct inOptions *options );
IN_API void inOptionsSetInterface( struct inOptions **options, const struct pbString *iface );
IN_API void inOptionsDelInterface( struct inOptions **options );

// Network from which the address must be taken; null when absent.
IN_API struct inNetwork *inOptionsNetwork( const struct inOptions *options );
IN_API pbBool inOptionsHasNetwork( const struct inOptions *options );
IN_API void inOptionsSetNetwork( struct inOptions **options, const struct inNetwork *network );
IN_API void inOptionsDelNetwork( struct inOptions **options );

// IN_ADDRESS_VERSION_..., -1 when absent.
IN_API pbInt inOptionsAddressVersion( const struct inOptions *options );
IN_API pbBool inOptionsHasAddressVersion( const struct inOptions *options );
IN_API void inOptionsSetAddressVersion( struct inOptions **options, pbInt version );
IN_API void inOptionsDelAddressVersion( struct inOptions **options );

// Fixed local address; null when absent.
IN_API struct inAddress *inOptionsAddress( const struct inOptions *options );
IN_API pbBool inOptionsHasAddress( const struct inOptions *options );
IN_API void inOptionsSetAddress( struct inOptions **options, const struct inAddress *address );
IN_API void inOptionsDelAddress( struct inOptions **options );

// Never null. The setter clears the is-default mark; the default setter puts inDnsOptionsCreate() in place and sets it.
IN_API struct inDnsOptions *inOptionsDnsOptions( const struct inOptions *options );
IN_API void inOptionsSetDnsOptions( struct inOptions **options, const struct inDnsOptions *dnsOptions );
IN_API pbBool inOptionsDnsOptionsDefault( const struct inOptions *options );
IN_API void inOptionsSetDnsOptionsDefault( struct inOptions **options );

// Never null. The setter clears the is-default mark; the default setter puts inTcpOptionsCreate() in place and sets it.
IN_API struct inTcpOptions *inOptionsTcpOptions( const struct inOptions *options );
IN_API void inOptionsSetTcpOptions( struct inOptions **options, const struct inTcpOptions *tcpOptions );
IN_API pbBool inOptionsTcpOptionsDefault( const struct inOptions *options );
IN_API void inOptionsSetTcpOptionsDefault( struct inOptions **options );

// Never null. The setter clears the is-default mark; the default setter puts inUdpOptionsCreate() in place and sets it.
IN_API struct inUdpOptions *inOptionsUdpOptions( const struct inOptions *options );
IN_API void inOptionsSetUdpOptions( struct inOptions **options, const struct inUdpOptions *udpOptions );
IN_API pbBool inOptionsUdpOptionsDefault( const struct inOptions *options );
IN_API void inOptionsSetUdpOptionsDefault( struct inOptions **options );

// Keys in the order above. "flags" always, "interface", "network", "addressVersion" and "address" when present,
// "dnsOptions", "tcpOptions" and "udpOptions" when not default or with storeDefaults.
IN_API struct pbStore *inOptionsStore( const struct inOptions *options, pbBool storeDefaults );
// Bad values are ignored.
IN_API struct inOptions *inOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
