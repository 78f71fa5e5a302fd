// What can be asked for, and queries that wait for their answer.
#include "in/dns/in_dns_query.h"

#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_options.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_domain_names.h"
#include "in/dns/in_dns_query_srv.h"
#include "pb/pb_barrier.h"
#include "pb/pb_string.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"

namespace {

pbInt maxBlockDuration( const struct inStack *stack )
{
    const auto options = pb::adopt( inStackOptions( stack ) );
    return inDnsOptionsMaxBlockDuration( pb::adopt( inOptionsDnsOptions( options.get() ) ).get() );
}

// The query, ended unless the time ran out or the signal was asserted before.
template <class Query>
pb::Ref<Query> awaited( Query *created, pbBool ( *end )( const Query * ),
                        void ( *endAddSignalable )( Query *, struct pbSignalable * ),
                        void ( *endDelSignalable )( Query *, struct pbSignalable * ), const struct inStack *stack,
                        struct pbSignal *optionalSignal )
{
    auto query = pb::adopt( created );
    if ( end( created ) )
        return query;
    const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
    const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    endAddSignalable( created, signalable.get() );
    if ( optionalSignal )
        pbSignalAddBarrier( optionalSignal, barrier.get() );
    (void)pbBarrierPassTimed( barrier.get(), maxBlockDuration( stack ) ); // the query tells whether it has ended
    endDelSignalable( created, signalable.get() );
    if ( optionalSignal )
        pbSignalDelBarrier( optionalSignal, barrier.get() );
    return query;
}

pb::Ref<struct inDnsQueryAddresses> addresses( struct inStack *stack, const struct pbString *domainName,
                                               struct pbSignal *optionalSignal, struct trAnchor *optionalAnchor )
{
    return awaited( inDnsQueryAddressesCreate( stack, domainName, optionalAnchor ), inDnsQueryAddressesEnd,
                    inDnsQueryAddressesEndAddSignalable, inDnsQueryAddressesEndDelSignalable, stack, optionalSignal );
}

pb::Ref<struct inDnsQueryDomainNames> domainNames( struct inStack *stack, const struct inAddress *address,
                                                   struct pbSignal *optionalSignal, struct trAnchor *optionalAnchor )
{
    return awaited( inDnsQueryDomainNamesCreate( stack, address, optionalAnchor ), inDnsQueryDomainNamesEnd,
                    inDnsQueryDomainNamesEndAddSignalable, inDnsQueryDomainNamesEndDelSignalable, stack,
                    optionalSignal );
}

struct pbVector *orEmpty( struct pbVector *optionalVector )
{
    return optionalVector ? optionalVector : pbVectorCreate();
}

} // namespace

pbBool inDnsQueryNameOk( const struct pbString *name )
{
    PB_ASSERT( name );
    if ( !inDnsIdnaDomainNameOk( name ) )
        return false;
    const auto ascii = pb::adopt( inDnsIdnaDomainNameToAscii( name ) );
    return !pbStringEndsWithChar( ascii.get(), PB_CHAR_FULL_STOP ) && pbStringFindChar( ascii.get(), 0, 0 ) == -1;
}

struct inAddress *inDnsQueryAddressForDomainName( struct inStack *stack, const struct pbString *domainName,
                                                  struct pbSignal *optionalSignal, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    return inDnsQueryAddressesBestAddress( addresses( stack, domainName, optionalSignal, optionalAnchor ).get() );
}

struct pbVector *inDnsQueryAddressesVectorForDomainName( struct inStack *stack, const struct pbString *domainName,
                                                         struct pbSignal *optionalSignal,
                                                         struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    const auto query = addresses( stack, domainName, optionalSignal, optionalAnchor );
    return orEmpty( inDnsQueryAddressesAddressesVector( query.get() ) );
}

struct pbString *inDnsQueryDomainNameForAddress( struct inStack *stack, const struct inAddress *address,
                                                 struct pbSignal *optionalSignal, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    const auto query = domainNames( stack, address, optionalSignal, optionalAnchor );
    const auto names = pb::adopt( inDnsQueryDomainNamesDomainNamesVector( query.get() ) );
    return names && pbVectorLength( names.get() ) ? pbStringFrom( pbVectorObjAt( names.get(), 0 ) ) : nullptr;
}

struct pbVector *inDnsQueryDomainNamesVectorForAddress( struct inStack *stack, const struct inAddress *address,
                                                        struct pbSignal *optionalSignal,
                                                        struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    const auto query = domainNames( stack, address, optionalSignal, optionalAnchor );
    return orEmpty( inDnsQueryDomainNamesDomainNamesVector( query.get() ) );
}

struct pbVector *inDnsQuerySrv( struct inStack *stack, const struct pbString *service, struct pbSignal *optionalSignal,
                                struct trAnchor *optionalAnchor )
{
    PB_ASSERT( stack );
    const auto query = awaited( inDnsQuerySrvCreate( stack, service, optionalAnchor ), inDnsQuerySrvEnd,
                                inDnsQuerySrvEndAddSignalable, inDnsQuerySrvEndDelSignalable, stack, optionalSignal );
    return orEmpty( inDnsQuerySrvDataInSrvsVector( query.get() ) );
}
