// in___DnsQueryDomainNamesImp: the shared query for the domain names of an address.
#include "in/dns/in_dns_query_domain_names_imp_internal.h"

#include "in/base/in_address.h"
#include "in/dns/in_dns_query_state.hpp"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( in___sort_IN___DNS_QUERY_DOMAIN_NAMES_IMP )

struct in___DnsQueryDomainNamesImp final
    : pb::Object<struct in___DnsQueryDomainNamesImp, in___sort_IN___DNS_QUERY_DOMAIN_NAMES_IMP> {
    const pb::Ref<struct inAddress> address;
    in::dns::QueryState state;

    in___DnsQueryDomainNamesImp( const struct inAddress *address, struct trAnchor *optionalAnchor )
        : address( pb::share( address ) ), state( "IN___DNS_QUERY_DOMAIN_NAMES_IMP", optionalAnchor )
    {
        trStreamSetPropertyCstrString( state.trace(), "inDnsAddress", -1,
                                       pb::adopt( inAddressToString( address ) ).get() );
    }
};

PB_OBJECT_DEFINE( in___DnsQueryDomainNamesImp, in___sort_IN___DNS_QUERY_DOMAIN_NAMES_IMP )

in::dns::QueryState &in::dns::stateOf( struct in___DnsQueryDomainNamesImp *imp )
{
    return imp->state;
}

struct in___DnsQueryDomainNamesImp *in___DnsQueryDomainNamesImpCreate( const struct inAddress *address,
                                                                       struct trAnchor *optionalAnchor )
{
    PB_ASSERT( address );
    return pb::make<struct in___DnsQueryDomainNamesImp>( address, optionalAnchor ).release();
}

struct inAddress *in___DnsQueryDomainNamesImpAddress( const struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    return imp->address.share();
}

void in___DnsQueryDomainNamesImpEndSet( struct in___DnsQueryDomainNamesImp *imp,
                                        const struct pbVector *domainNamesVector )
{
    PB_ASSERT( imp );
    PB_ASSERT( domainNamesVector );
    PB_ASSERT( pbVectorContainsOnly( domainNamesVector, pbStringSort() ) );
    imp->state.end( domainNamesVector, "inDnsDomainNames" );
}

void in___DnsQueryDomainNamesImpErrorSet( struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    imp->state.fail( IN_DNS_QUERY_FAILURE_SYSTEM );
}

pbBool in___DnsQueryDomainNamesImpEnd( const struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.ended();
}

void in___DnsQueryDomainNamesImpEndAddSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                  struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.endSignal(), signalable );
}

void in___DnsQueryDomainNamesImpEndDelSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                  struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.endSignal(), signalable );
}

pbBool in___DnsQueryDomainNamesImpError( const struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.failed();
}

void in___DnsQueryDomainNamesImpErrorAddSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                    struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQueryDomainNamesImpErrorDelSignalable( struct in___DnsQueryDomainNamesImp *imp,
                                                    struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQueryDomainNamesImpTraceCompleteAnchor( struct in___DnsQueryDomainNamesImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->state.trace() );
}

struct pbVector *in___DnsQueryDomainNamesImpDomainNamesVector( const struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.result().release();
}

pbInt in___DnsQueryDomainNamesImpDomainNamesLength( const struct in___DnsQueryDomainNamesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.length();
}

struct pbString *in___DnsQueryDomainNamesImpDomainNameAt( const struct in___DnsQueryDomainNamesImp *imp, pbInt index )
{
    PB_ASSERT( imp );
    return pbStringFrom( imp->state.at( index ) );
}
