// in___DnsQueryAddressesImp: the shared query for the addresses of a domain name.
#include "in/dns/in_dns_query_addresses_imp_internal.h"

#include "in/base/in_address.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_query_state.hpp"

PB_SORT_DECLARE( in___sort_IN___DNS_QUERY_ADDRESSES_IMP )

struct in___DnsQueryAddressesImp final
    : pb::Object<struct in___DnsQueryAddressesImp, in___sort_IN___DNS_QUERY_ADDRESSES_IMP> {
    const pb::Ref<struct pbString> domainName;
    in::dns::QueryState state;

    in___DnsQueryAddressesImp( const struct pbString *domainName, struct trAnchor *optionalAnchor )
        : domainName( pb::share( domainName ) ), state( "IN___DNS_QUERY_ADDRESSES_IMP", optionalAnchor )
    {
        trStreamSetPropertyCstrString( state.trace(), "inDnsDomainName", -1, domainName );
    }
};

PB_OBJECT_DEFINE( in___DnsQueryAddressesImp, in___sort_IN___DNS_QUERY_ADDRESSES_IMP )

in::dns::QueryState &in::dns::stateOf( struct in___DnsQueryAddressesImp *imp )
{
    return imp->state;
}

struct in___DnsQueryAddressesImp *in___DnsQueryAddressesImpCreate( const struct pbString *domainName,
                                                                   struct trAnchor *optionalAnchor )
{
    PB_ASSERT( inDnsIdnaDomainNameOk( domainName ) );
    return pb::make<struct in___DnsQueryAddressesImp>( domainName, optionalAnchor ).release();
}

struct pbString *in___DnsQueryAddressesImpDomainName( const struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    return imp->domainName.share();
}

void in___DnsQueryAddressesImpEndSet( struct in___DnsQueryAddressesImp *imp, const struct pbVector *addressesVector )
{
    PB_ASSERT( imp );
    PB_ASSERT( addressesVector );
    PB_ASSERT( pbVectorContainsOnly( addressesVector, inAddressSort() ) );
    imp->state.end( addressesVector, "inDnsAddresses" );
}

void in___DnsQueryAddressesImpErrorSet( struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    imp->state.fail( IN_DNS_QUERY_FAILURE_SYSTEM );
}

pbBool in___DnsQueryAddressesImpEnd( const struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.ended();
}

void in___DnsQueryAddressesImpEndAddSignalable( struct in___DnsQueryAddressesImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.endSignal(), signalable );
}

void in___DnsQueryAddressesImpEndDelSignalable( struct in___DnsQueryAddressesImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.endSignal(), signalable );
}

pbBool in___DnsQueryAddressesImpError( const struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.failed();
}

void in___DnsQueryAddressesImpErrorAddSignalable( struct in___DnsQueryAddressesImp *imp,
                                                  struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalAddSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQueryAddressesImpErrorDelSignalable( struct in___DnsQueryAddressesImp *imp,
                                                  struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    pbSignalDelSignalable( imp->state.errorSignal(), signalable );
}

void in___DnsQueryAddressesImpTraceCompleteAnchor( struct in___DnsQueryAddressesImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->state.trace() );
}

struct pbVector *in___DnsQueryAddressesImpAddressesVector( const struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.result().release();
}

pbInt in___DnsQueryAddressesImpAddressesLength( const struct in___DnsQueryAddressesImp *imp )
{
    PB_ASSERT( imp );
    return imp->state.length();
}

struct inAddress *in___DnsQueryAddressesImpAddressAt( const struct in___DnsQueryAddressesImp *imp, pbInt index )
{
    PB_ASSERT( imp );
    return inAddressFrom( imp->state.at( index ) );
}
