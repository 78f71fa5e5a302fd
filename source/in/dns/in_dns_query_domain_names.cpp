// inDnsQueryDomainNames: a query as its asker holds it, over the one that all who ask the same share.
#include "in/dns/in_dns_query_domain_names.h"

#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_query_domain_names_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_QUERY_DOMAIN_NAMES )

struct inDnsQueryDomainNames final : pb::Object<struct inDnsQueryDomainNames, in___sort_IN_DNS_QUERY_DOMAIN_NAMES> {
    const pb::Ref<struct inStack> stack;
    const pb::Ref<struct in___DnsQueryDomainNamesImp> imp;
    const in::dns::Asker asker;

    inDnsQueryDomainNames( struct inStack *stack, struct in___DnsQueryDomainNamesImp *imp )
        : stack( pb::share( stack ) ), imp( pb::adopt( imp ) ), asker( in::dns::stateOf( imp ) )
    {
    }
};

PB_OBJECT_DEFINE( inDnsQueryDomainNames, in___sort_IN_DNS_QUERY_DOMAIN_NAMES )

struct inDnsQueryDomainNames *inDnsQueryDomainNamesCreate( struct inStack *stack, const struct inAddress *address,
                                                           struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( address );
    return pb::make<struct inDnsQueryDomainNames>( stack,
                                                   in___StackDnsQueryDomainNames( stack, address, optionalAnchor ) )
        .release();
}

struct inStack *inDnsQueryDomainNamesStack( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return query->stack.share();
}

struct inAddress *inDnsQueryDomainNamesAddress( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpAddress( query->imp.get() );
}

pbBool inDnsQueryDomainNamesEnd( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpEnd( query->imp.get() );
}

void inDnsQueryDomainNamesEndAddSignalable( struct inDnsQueryDomainNames *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryDomainNamesImpEndAddSignalable( query->imp.get(), signalable );
}

void inDnsQueryDomainNamesEndDelSignalable( struct inDnsQueryDomainNames *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryDomainNamesImpEndDelSignalable( query->imp.get(), signalable );
}

pbBool inDnsQueryDomainNamesError( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpError( query->imp.get() );
}

pbInt inDnsQueryDomainNamesFailure( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in::dns::stateOf( query->imp.get() ).failure();
}

void inDnsQueryDomainNamesErrorAddSignalable( struct inDnsQueryDomainNames *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryDomainNamesImpErrorAddSignalable( query->imp.get(), signalable );
}

void inDnsQueryDomainNamesErrorDelSignalable( struct inDnsQueryDomainNames *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryDomainNamesImpErrorDelSignalable( query->imp.get(), signalable );
}

void inDnsQueryDomainNamesTraceCompleteAnchor( struct inDnsQueryDomainNames *query, struct trAnchor *anchor )
{
    PB_ASSERT( query );
    in___DnsQueryDomainNamesImpTraceCompleteAnchor( query->imp.get(), anchor );
}

struct pbVector *inDnsQueryDomainNamesDomainNamesVector( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpDomainNamesVector( query->imp.get() );
}

pbInt inDnsQueryDomainNamesDomainNamesLength( const struct inDnsQueryDomainNames *query )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpDomainNamesLength( query->imp.get() );
}

struct pbString *inDnsQueryDomainNamesDomainNameAt( const struct inDnsQueryDomainNames *query, pbInt index )
{
    PB_ASSERT( query );
    return in___DnsQueryDomainNamesImpDomainNameAt( query->imp.get(), index );
}
