// inDnsQueryAddresses: a query as its asker holds it, over the one that all who ask the same share.
#include "in/dns/in_dns_query_addresses.h"

#include "in/base/in_address.h"
#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_query_addresses.hpp"
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_vector.h"

PB_SORT_DECLARE( in___sort_IN_DNS_QUERY_ADDRESSES )

struct inDnsQueryAddresses final : pb::Object<struct inDnsQueryAddresses, in___sort_IN_DNS_QUERY_ADDRESSES> {
    const pb::Ref<struct inStack> stack;
    const pb::Ref<struct in___DnsQueryAddressesImp> imp;
    const in::dns::Asker asker;

    inDnsQueryAddresses( struct inStack *stack, struct in___DnsQueryAddressesImp *imp )
        : stack( pb::share( stack ) ), imp( pb::adopt( imp ) ), asker( in::dns::stateOf( imp ) )
    {
    }
};

PB_OBJECT_DEFINE( inDnsQueryAddresses, in___sort_IN_DNS_QUERY_ADDRESSES )

struct inDnsQueryAddresses *inDnsQueryAddressesCreate( struct inStack *stack, const struct pbString *domainName,
                                                       struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    PB_ASSERT( inDnsIdnaDomainNameOk( domainName ) );
    return pb::make<struct inDnsQueryAddresses>( stack,
                                                 in___StackDnsQueryAddresses( stack, domainName, optionalAnchor ) )
        .release();
}

struct inStack *inDnsQueryAddressesStack( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return query->stack.share();
}

struct pbString *inDnsQueryAddressesDomainName( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpDomainName( query->imp.get() );
}

pbBool inDnsQueryAddressesEnd( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpEnd( query->imp.get() );
}

void inDnsQueryAddressesEndAddSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryAddressesImpEndAddSignalable( query->imp.get(), signalable );
}

void inDnsQueryAddressesEndDelSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryAddressesImpEndDelSignalable( query->imp.get(), signalable );
}

pbBool inDnsQueryAddressesError( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpError( query->imp.get() );
}

pbInt inDnsQueryAddressesFailure( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in::dns::stateOf( query->imp.get() ).failure();
}

void inDnsQueryAddressesErrorAddSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryAddressesImpErrorAddSignalable( query->imp.get(), signalable );
}

void inDnsQueryAddressesErrorDelSignalable( struct inDnsQueryAddresses *query, struct pbSignalable *signalable )
{
    PB_ASSERT( query );
    in___DnsQueryAddressesImpErrorDelSignalable( query->imp.get(), signalable );
}

void inDnsQueryAddressesTraceCompleteAnchor( struct inDnsQueryAddresses *query, struct trAnchor *anchor )
{
    PB_ASSERT( query );
    in___DnsQueryAddressesImpTraceCompleteAnchor( query->imp.get(), anchor );
}

struct pbVector *inDnsQueryAddressesAddressesVector( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpAddressesVector( query->imp.get() );
}

pbInt inDnsQueryAddressesAddressesLength( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpAddressesLength( query->imp.get() );
}

struct inAddress *inDnsQueryAddressesAddressAt( const struct inDnsQueryAddresses *query, pbInt index )
{
    PB_ASSERT( query );
    return in___DnsQueryAddressesImpAddressAt( query->imp.get(), index );
}

pb::Ref<struct inAddress> in::dns::bestAddress( const struct inAddress *optionalStackAddress,
                                                const struct pbVector *addresses )
{
    constexpr pbInt sameVersion = 1000; // more than any number of bits
    pb::Ref<struct inAddress> best;
    pbInt bestScore = -1;
    for ( pbInt i = 0; i < pbVectorLength( addresses ); ++i ) {
        auto candidate = pb::adopt( inAddressFrom( pbVectorObjAt( addresses, i ) ) );
        pbInt score = 0;
        if ( optionalStackAddress && inAddressVersion( candidate.get() ) == inAddressVersion( optionalStackAddress ) )
            score = sameVersion + inAddressMatchingBits( optionalStackAddress, candidate.get() );
        if ( score > bestScore ) {
            bestScore = score;
            best = std::move( candidate );
        }
    }
    return best;
}

struct inAddress *inDnsQueryAddressesBestAddress( const struct inDnsQueryAddresses *query )
{
    PB_ASSERT( query );
    const auto addresses = pb::adopt( inDnsQueryAddressesAddressesVector( query ) );
    if ( !addresses )
        return nullptr;
    const auto stackAddress = pb::adopt( inStackAddress( query->stack.get() ) );
    return in::dns::bestAddress( stackAddress.get(), addresses.get() ).release();
}
