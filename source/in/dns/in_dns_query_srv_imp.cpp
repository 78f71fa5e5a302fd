// in___DnsQuerySrvImp: the shared query for where a service is to be had.
#include "in/dns/in_dns_query_srv_imp_internal.h"

#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_query_state.hpp"

PB_SORT_DECLARE( in___sort_IN___DNS_QUERY_SRV_IMP )

struct in___DnsQuerySrvImp final : pb::Object<struct in___DnsQuerySrvImp, in___sort_IN___DNS_QUERY_SRV_IMP> {
    const pb::Ref<struct pbString> service;
    in::dns::QueryState state;

    in___DnsQuerySrvImp( const struct pbString *service, struct trAnchor *optionalAnchor )
        : service( pb::share( service ) ), state( "IN___DNS_QUERY_SRV_IMP", optionalAnchor )
    {
        trStreamSetPropertyCstrString( state.trace(), "inDnsService", -1, service );
    }
};

PB_OBJECT_DEFINE( in___DnsQuerySrvImp, in___sort_IN___DNS_QUERY_SRV_IMP )

in::dns::QueryState &in::dns::stateOf( struct in___DnsQuerySrvImp *imp )
{
    return imp->state;
}

struct in___DnsQuerySrvImp *in___DnsQuerySrvImpCreate( const struct pbString *service, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( inDnsIdnaDomainNameOk( service ) );
    return pb::make<struct in___DnsQuerySrvImp>( service, optionalAnchor ).release();
}

struct pbString *in___DnsQuerySrvImpService( const struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    return imp->service.share();
}

void in___DnsQuerySrvImpEndSet( struct in___DnsQuerySrvImp *imp, const struct pbVector *dataInSrvsVector )
{
    PB_ASSERT( imp );
    PB_ASSERT( dataInSrvsVector );
    PB_ASSERT( pbVectorContainsOnly( dataInSrvsVector, inDnsDataInSrvSort() ) );
    imp->state.end( dataInSrvsVector, "inDnsSrvs" );
}

void in___DnsQuerySrvImpErrorSet( struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    imp->state.fail( IN_DNS_QUERY_FAILURE_SYSTEM );
}

pbBool in___DnsQuerySrvImpEnd( const struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.ended();
}

void in___DnsQuerySrvImpEndAddSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.endSignal(), signalable );
}

void in___DnsQuerySrvImpEndDelSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.endSignal(), signalable );
}

pbBool in___DnsQuerySrvImpError( const struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.failed();
}

void in___DnsQuerySrvImpErrorAddSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQuerySrvImpErrorDelSignalable( struct in___DnsQuerySrvImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQuerySrvImpTraceCompleteAnchor( struct in___DnsQuerySrvImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->state.trace() );
}

struct pbVector *in___DnsQuerySrvImpDataInSrvsVector( const struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.result().release();
}

pbInt in___DnsQuerySrvImpDataInSrvsLength( const struct in___DnsQuerySrvImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.length();
}

struct inDnsDataInSrv *in___DnsQuerySrvImpDataInSrvAt( const struct in___DnsQuerySrvImp *imp, pbInt index )
{
    PB_ASSERT( imp );
    return inDnsDataInSrvFrom( imp->state.at( index ) );
}
