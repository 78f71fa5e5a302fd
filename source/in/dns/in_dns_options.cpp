// inDnsOptions: the DNS part of a stack's options.
#include "in/dns/in_dns_options.h"

#include "cs/cs_warnings.h"
#include "in/base/in_store_form.hpp"
#include "in/dns/in_dns_options_internal.h"
#include "pb/pb_format.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_OPTIONS )

static constexpr pbInt defaultDuration = 60000; // milliseconds

struct inDnsOptions final : pb::Object<struct inDnsOptions, in___sort_IN_DNS_OPTIONS> {
    pb::Defaulted<pbInt> maxBlockDuration{ defaultDuration }; // milliseconds, >= 0
    pb::Defaulted<pbBool> disableQueryAddresses{ 0 };
    pb::Defaulted<pbBool> disableQueryDomainNames{ 0 };
    pb::Defaulted<pbBool> disableQuerySrv{ 0 };
    pb::Defaulted<pbInt> cacheTimeout{ defaultDuration };         // milliseconds, >= 0
    pb::Defaulted<pbInt> negativeCacheTimeout{ defaultDuration }; // milliseconds, >= 0

    auto operator<=>( const inDnsOptions & ) const = default;
};

PB_OBJECT_DEFINE( inDnsOptions, in___sort_IN_DNS_OPTIONS )

namespace {

using in::form::Boolean;
using in::form::Row;
using in::form::Told;
using in::form::unlessDefault;

constexpr in::form::Integer milliseconds{ 0, PB_INT_MAX, "milliseconds, 0 or greater" };

constexpr auto form = std::tuple{
    Row{ "maxBlockDuration", &inDnsOptions::maxBlockDuration,
         Told{ milliseconds, "How long a blocking query waits for its answer" }, unlessDefault },
    Row{ "disableQueryAddresses", &inDnsOptions::disableQueryAddresses,
         Told{ Boolean{}, "Refuses queries from names to addresses" }, unlessDefault },
    Row{ "disableQueryDomainNames", &inDnsOptions::disableQueryDomainNames,
         Told{ Boolean{}, "Refuses queries from addresses to names" }, unlessDefault },
    Row{ "disableQuerySrv", &inDnsOptions::disableQuerySrv, Told{ Boolean{}, "Refuses queries for SRV records" },
         unlessDefault },
    Row{ "cacheTimeout", &inDnsOptions::cacheTimeout,
         Told{ milliseconds, "How long the stack's cache keeps a positive answer" }, unlessDefault },
    // Kept as systems know it: the stored value goes to the cache timeout, also over the one read before it.
    Row{ "negativeCacheTimeout", &inDnsOptions::negativeCacheTimeout,
         Told{ milliseconds, "Read in the place of cacheTimeout, which it replaces" }, unlessDefault,
         &inDnsOptions::cacheTimeout },
};

} // namespace

const struct csKey *in___DnsOptionsKeys( pbInt *count )
{
    return in::form::describe<form>( count );
}

struct inDnsOptions *inDnsOptionsCreate( void )
{
    return pb::make<struct inDnsOptions>().release();
}

struct inDnsOptions *inDnsOptionsCreateFrom( const struct inDnsOptions *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsOptions>( *source ).release();
}

pbInt inDnsOptionsMaxBlockDuration( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->maxBlockDuration.value;
}

void inDnsOptionsSetMaxBlockDuration( struct inDnsOptions **opt, pbInt maxBlockDuration )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( maxBlockDuration >= 0 );
    pb::edit( opt ).maxBlockDuration.set( maxBlockDuration );
}

pbBool inDnsOptionsMaxBlockDurationDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->maxBlockDuration.isDefault;
}

void inDnsOptionsSetMaxBlockDurationDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).maxBlockDuration.setDefault( defaultDuration );
}

pbBool inDnsOptionsDisableQueryAddresses( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQueryAddresses.value;
}

void inDnsOptionsSetDisableQueryAddresses( struct inDnsOptions **opt, pbBool disableQueryAddresses )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQueryAddresses.set( PB_BOOL_FROM( disableQueryAddresses ) );
}

pbBool inDnsOptionsDisableQueryAddressesDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQueryAddresses.isDefault;
}

void inDnsOptionsSetDisableQueryAddressesDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQueryAddresses.setDefault( 0 );
}

pbBool inDnsOptionsDisableQueryDomainNames( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQueryDomainNames.value;
}

void inDnsOptionsSetDisableQueryDomainNames( struct inDnsOptions **opt, pbBool disableQueryDomainNames )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQueryDomainNames.set( PB_BOOL_FROM( disableQueryDomainNames ) );
}

pbBool inDnsOptionsDisableQueryDomainNamesDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQueryDomainNames.isDefault;
}

void inDnsOptionsSetDisableQueryDomainNamesDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQueryDomainNames.setDefault( 0 );
}

pbBool inDnsOptionsDisableQuerySrv( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQuerySrv.value;
}

void inDnsOptionsSetDisableQuerySrv( struct inDnsOptions **opt, pbBool disableQuerySrv )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQuerySrv.set( PB_BOOL_FROM( disableQuerySrv ) );
}

pbBool inDnsOptionsDisableQuerySrvDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->disableQuerySrv.isDefault;
}

void inDnsOptionsSetDisableQuerySrvDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).disableQuerySrv.setDefault( 0 );
}

pbInt inDnsOptionsCacheTimeout( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->cacheTimeout.value;
}

void inDnsOptionsSetCacheTimeout( struct inDnsOptions **opt, pbInt cacheTimeout )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( cacheTimeout >= 0 );
    pb::edit( opt ).cacheTimeout.set( cacheTimeout );
}

pbBool inDnsOptionsCacheTimeoutDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->cacheTimeout.isDefault;
}

void inDnsOptionsSetCacheTimeoutDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).cacheTimeout.setDefault( defaultDuration );
}

pbInt inDnsOptionsNegativeCacheTimeout( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->negativeCacheTimeout.value;
}

void inDnsOptionsSetNegativeCacheTimeout( struct inDnsOptions **opt, pbInt negativeCacheTimeout )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    PB_ASSERT( negativeCacheTimeout >= 0 );
    pb::edit( opt ).negativeCacheTimeout.set( negativeCacheTimeout );
}

pbBool inDnsOptionsNegativeCacheTimeoutDefault( const struct inDnsOptions *opt )
{
    PB_ASSERT( opt );
    return opt->negativeCacheTimeout.isDefault;
}

void inDnsOptionsSetNegativeCacheTimeoutDefault( struct inDnsOptions **opt )
{
    PB_ASSERT( opt );
    PB_ASSERT( *opt );
    pb::edit( opt ).negativeCacheTimeout.setDefault( defaultDuration );
}

struct pbStore *inDnsOptionsStore( const struct inDnsOptions *opt, pbBool storeAll )
{
    PB_ASSERT( opt );
    return in::form::store( *opt, form, storeAll ).release();
}

void in___DnsOptionsWarn( const struct pbStore *optionalStore, const char *key, struct csWarnings *warnings )
{
    const struct inDnsOptions defaults;
    if ( !optionalStore || !pbStoreHasValueCstr( optionalStore, "negativeCacheTimeout", -1 ) )
        return;
    csWarningsAdd( warnings, ( std::string( key ) + ".negativeCacheTimeout" ).c_str(),
                   pb::format( "replaces \"cacheTimeout\"; failed answers are kept for %i ms all the same",
                               defaults.negativeCacheTimeout.value )
                       .get() );
}

struct inDnsOptions *inDnsOptionsRestore( const struct pbStore *store )
{
    PB_ASSERT( store );
    auto opt = pb::make<struct inDnsOptions>();
    in::form::restore( *opt, form, store );
    return opt.release();
}
