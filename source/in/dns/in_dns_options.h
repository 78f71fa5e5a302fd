// inDnsOptions: the DNS part of a stack's options, a value. Each setting has an is-default mark, which its setter
// clears and its default setter sets; the comment beside a setting ends with its default. Orders setting by setting in
// the order below, an explicit setting before a default one, then by value.
#ifndef IN_DNS_OPTIONS_H
#define IN_DNS_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsOptions;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inDnsOptionsSort( void );
IN_API struct inDnsOptions *inDnsOptionsRetain( const struct inDnsOptions *obj );
IN_API void inDnsOptionsRelease( const struct inDnsOptions *obj );
IN_API struct pbObj *inDnsOptionsObj( const struct inDnsOptions *obj );
IN_API struct inDnsOptions *inDnsOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inDnsOptionsToString( const struct inDnsOptions *obj );
IN_API pbInt inDnsOptionsCompare( const struct inDnsOptions *a, const struct inDnsOptions *b );
IN_API pbBool inDnsOptionsEquals( const struct inDnsOptions *a, const struct inDnsOptions *b );

IN_API struct inDnsOptions *inDnsOptionsCreate( void );
IN_API struct inDnsOptions *inDnsOptionsCreateFrom( const struct inDnsOptions *source );

// Longest wait of a blocking query function in milliseconds; 0 or greater; 60000.
IN_API pbInt inDnsOptionsMaxBlockDuration( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetMaxBlockDuration( struct inDnsOptions **opt, pbInt maxBlockDuration );
IN_API pbBool inDnsOptionsMaxBlockDurationDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetMaxBlockDurationDefault( struct inDnsOptions **opt );

// Whether the stack refuses name-to-address queries; 0.
IN_API pbBool inDnsOptionsDisableQueryAddresses( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQueryAddresses( struct inDnsOptions **opt, pbBool disableQueryAddresses );
IN_API pbBool inDnsOptionsDisableQueryAddressesDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQueryAddressesDefault( struct inDnsOptions **opt );

// Whether the stack refuses address-to-name queries; 0.
IN_API pbBool inDnsOptionsDisableQueryDomainNames( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQueryDomainNames( struct inDnsOptions **opt, pbBool disableQueryDomainNames );
IN_API pbBool inDnsOptionsDisableQueryDomainNamesDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQueryDomainNamesDefault( struct inDnsOptions **opt );

// Whether the stack refuses SRV queries; 0.
IN_API pbBool inDnsOptionsDisableQuerySrv( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQuerySrv( struct inDnsOptions **opt, pbBool disableQuerySrv );
IN_API pbBool inDnsOptionsDisableQuerySrvDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetDisableQuerySrvDefault( struct inDnsOptions **opt );

// Lifetime of a positive answer in the cache in milliseconds; 0 or greater; 60000.
IN_API pbInt inDnsOptionsCacheTimeout( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetCacheTimeout( struct inDnsOptions **opt, pbInt cacheTimeout );
IN_API pbBool inDnsOptionsCacheTimeoutDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetCacheTimeoutDefault( struct inDnsOptions **opt );

// Lifetime of a failed answer in the cache in milliseconds; 0 or greater; 60000.
IN_API pbInt inDnsOptionsNegativeCacheTimeout( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetNegativeCacheTimeout( struct inDnsOptions **opt, pbInt negativeCacheTimeout );
IN_API pbBool inDnsOptionsNegativeCacheTimeoutDefault( const struct inDnsOptions *opt );
IN_API void inDnsOptionsSetNegativeCacheTimeoutDefault( struct inDnsOptions **opt );

// Explicit settings, and with storeAll all of them, under their names: "maxBlockDuration", ...
IN_API struct pbStore *inDnsOptionsStore( const struct inDnsOptions *opt, pbBool storeAll );
// Bad values are ignored. A stored "negativeCacheTimeout" sets the cache timeout, after "cacheTimeout" did; the
// negative cache timeout stays at its default.
IN_API struct inDnsOptions *inDnsOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
