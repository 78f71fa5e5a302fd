// inDnsQuerySrv: a query as its asker holds it, over the one that all who ask the same share.
#include "in/dns/in_dns_query_srv.h"

#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "pb/pb_object.hpp"

PB_SORT_DECLARE( in___sort_IN_DNS_QUERY_SRV )

struct inDnsQuerySrv final : pb::Object<struct inDnsQuerySrv, in___sort_IN_DNS_QUERY_SRV> {
    const pb::Ref<struct inStack> stack;
    const pb::Ref<struct in___DnsQuerySrvImp> imp;
    const in::dns::Asker asker;

    inDnsQuerySrv( struct inStack *stack, struct in___DnsQuerySrvImp *imp )
        : stack( pb::share( stack ) ), imp( pb::adopt( imp ) ), asker( in::dns::stateOf( imp ) )
    {
    }
};

PB_OBJECT_DEFINE( inDnsQuerySrv, in___sort_IN_DNS_QUERY_SRV )

struct inDnsQuerySrv *inDnsQuerySrvCreate( struct inStack *stack, const struct pbString *service,
                                           struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( inDnsIdnaDomainNameOk( service ) );
    return pb::make<struct inDnsQuerySrv>( stack, in___StackDnsQuerySrv( stack, service, optionalAnchor ) ).release();
}

struct inStack *inDnsQuerySrvStack( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return query->stack.share();
}

struct pbString *inDnsQuerySrvService( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpService( query->imp.get() );
}

pbBool inDnsQuerySrvEnd( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpEnd( query->imp.get() );
}

void inDnsQuerySrvEndAddSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQuerySrvImpEndAddSignalable( query->imp.get(), signalable );
}

void inDnsQuerySrvEndDelSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQuerySrvImpEndDelSignalable( query->imp.get(), signalable );
}

pbBool inDnsQuerySrvError( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpError( query->imp.get() );
}

pbInt inDnsQuerySrvFailure( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in::dns::stateOf( query->imp.get() ).failure();
}

void inDnsQuerySrvErrorAddSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQuerySrvImpErrorAddSignalable( query->imp.get(), signalable );
}

void inDnsQuerySrvErrorDelSignalable( struct inDnsQuerySrv *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQuerySrvImpErrorDelSignalable( query->imp.get(), signalable );
}

void inDnsQuerySrvTraceCompleteAnchor( struct inDnsQuerySrv *query, struct trAnchor *anchor )
{
    PB_ASSERT( query );
    in___DnsQuerySrvImpTraceCompleteAnchor( query->imp.get(), anchor );
}

struct pbVector *inDnsQuerySrvDataInSrvsVector( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpDataInSrvsVector( query->imp.get() );
}

pbInt inDnsQuerySrvDataInSrvsLength( const struct inDnsQuerySrv *query )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpDataInSrvsLength( query->imp.get() );
}

struct inDnsDataInSrv *inDnsQuerySrvDataInSrvAt( const struct inDnsQuerySrv *query, pbInt index )
{
    PB_ASSERT( query );
    return in___DnsQuerySrvImpDataInSrvAt( query->imp.get(), index );
}
