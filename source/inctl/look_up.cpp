// Waits for DNS queries.
#include "inctl/look_up.hpp"

#include "inctl/asking_host.hpp"

#include "in/base/in_options.h"
#include "in/dns/in_dns_options.h"

#include <fmt/format.h>

namespace inctl {
namespace {

// The functions of a kind of query.
template <class Query> struct Kind {
    pbBool ( *end )( const Query * );
    void ( *add )( Query *, struct pbSignalable * );
    void ( *del )( Query *, struct pbSignalable * );
    pbInt ( *failure )( const Query * );
    struct pbVector *( *result )( const Query * );
};

template <class Query, class Create>
LookUp wait( Create create, const Kind<Query> &kind, pbInt timeout, Waiter &waiter )
{
    const auto started = Waiter::Clock::now();
    Query *const created = create();
    const auto query = pb::adopt( created );
    LookUp lookUp;
    kind.add( created, waiter.signalable() );
    while ( !kind.end( created ) && !lookUp.interruptedBy )
        if ( const auto woken = waiter.wait( started + std::chrono::milliseconds( timeout ) );
             woken != Waiter::Woken::Library )
            lookUp.interruptedBy = woken;
    kind.del( created, waiter.signalable() );
    if ( lookUp.interruptedBy )
        leaveLookUpBehind();
    lookUp.found = pb::adopt( kind.result( created ) );
    lookUp.failure = kind.failure( created );
    lookUp.milliseconds = std::chrono::duration<double, std::milli>( Waiter::Clock::now() - started ).count();
    return lookUp;
}

} // namespace

LookUp lookUpAddresses( struct inStack *stack, const pb::String &name, pbInt timeout, Waiter &waiter )
{
    return wait<struct inDnsQueryAddresses>(
        [&] { return inDnsQueryAddressesCreate( stack, name.get(), nullptr ); },
        { inDnsQueryAddressesEnd, inDnsQueryAddressesEndAddSignalable, inDnsQueryAddressesEndDelSignalable,
          inDnsQueryAddressesFailure, inDnsQueryAddressesAddressesVector },
        timeout, waiter );
}

LookUp lookUpDomainNames( struct inStack *stack, const pb::Ref<struct inAddress> &address, pbInt timeout,
                          Waiter &waiter )
{
    return wait<struct inDnsQueryDomainNames>(
        [&] { return inDnsQueryDomainNamesCreate( stack, address.get(), nullptr ); },
        { inDnsQueryDomainNamesEnd, inDnsQueryDomainNamesEndAddSignalable, inDnsQueryDomainNamesEndDelSignalable,
          inDnsQueryDomainNamesFailure, inDnsQueryDomainNamesDomainNamesVector },
        timeout, waiter );
}

LookUp lookUpServices( struct inStack *stack, const pb::String &service, pbInt timeout, Waiter &waiter )
{
    LookUp lookUp = wait<struct inDnsQuerySrv>(
        [&] { return inDnsQuerySrvCreate( stack, service.get(), nullptr ); },
        { inDnsQuerySrvEnd, inDnsQuerySrvEndAddSignalable, inDnsQuerySrvEndDelSignalable, inDnsQuerySrvFailure,
          inDnsQuerySrvDataInSrvsVector },
        timeout, waiter );
    lookUp.answerRead = true;
    return lookUp;
}

pbInt defaultTimeout( const struct inStack *stack )
{
    const auto options = pb::adopt( inStackOptions( stack ) );
    return inDnsOptionsMaxBlockDuration( pb::adopt( inOptionsDnsOptions( options.get() ) ).get() );
}

std::string sentence( const LookUp &lookUp, const std::string &subject, const std::string &what,
                      const std::string &disabledBy, pbInt timeout )
{
    if ( lookUp.interruptedBy )
        return *lookUp.interruptedBy == Waiter::Woken::Time
                   ? fmt::format( "time-out: nothing has answered about {} within {} ms", subject, timeout )
                   : fmt::format( "interrupted while asking for the {} of {}", what, subject );
    switch ( lookUp.failure ) {
    case IN_DNS_QUERY_FAILURE_DISABLED:
        return fmt::format( "refused by configuration: the stack's dnsOptions have {}, so {} was not asked for",
                            disabledBy, subject );
    case IN_DNS_QUERY_FAILURE_NO_NAME:
        // getaddrinfo() says the same about an answer that it does not understand.
        return fmt::format( "there is no name {}{}", subject,
                            lookUp.answerRead
                                ? " (NXDOMAIN)"
                                : ", as far as the resolver can tell (NXDOMAIN, or no usable answer)" );
    case IN_DNS_QUERY_FAILURE_NO_DATA:
        return fmt::format( "{} is a name, but has no {}", subject, what );
    case IN_DNS_QUERY_FAILURE_NO_ANSWER:
        return fmt::format( "no name server gave an answer about {}: none replied in the resolver's time, or all "
                            "reported a failure", subject );
    case IN_DNS_QUERY_FAILURE_SERVER:
        return fmt::format( "the name server reported a failure instead of the {} of {}", what, subject );
    case IN_DNS_QUERY_FAILURE_BAD_ANSWER:
        return fmt::format( "the answer about {} was not acceptable", subject );
    case IN_DNS_QUERY_FAILURE_FLUSHED:
        return fmt::format( "the stack's address or options changed while {} was asked for; ask again", subject );
    case IN_DNS_QUERY_FAILURE_NOT_ASKABLE:
        // Those that are too long have been refused before; others the resolver cannot write into a question.
        return fmt::format( "the resolver cannot be asked for {}", subject );
    default:
        return fmt::format( "the system's resolver refused to ask for the {} of {}", what, subject );
    }
}

} // namespace inctl
