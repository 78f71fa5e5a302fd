// Work items: which look-up runs when. A process domain runs them, since the system's resolver blocks.
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_domain_names_imp_internal.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "in/imp/in_imp_dns_unix_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_monitor.hpp"
#include "pr/pr_domain.h"
#include "pr/pr_process.h"

#include <deque>
#include <optional>
#include <unordered_map>
#include <variant>

PB_SORT_DECLARE( in___sort_IN___IMP_DNS_WORK_ITEM )
PB_SORT_DECLARE( in___sort_IN___IMP_DNS_QUEUE )
PB_SORT_DECLARE( in___sort_IN___IMP_DNS_LOOK_UP_MONITOR )

namespace {

constexpr pbInt threads = 4;
constexpr pbInt threadPriority = 3;
constexpr pbInt itemPriority = 1;

using Addresses = pb::Ref<struct in___DnsQueryAddressesImp>;
using DomainNames = pb::Ref<struct in___DnsQueryDomainNamesImp>;
using Srv = pb::Ref<struct in___DnsQuerySrvImp>;
using Query = std::variant<Addresses, DomainNames, Srv>;

in::dns::QueryState &stateOf( const Query &query )
{
    return std::visit( []( const auto &imp ) -> in::dns::QueryState & { return in::dns::stateOf( imp.get() ); },
                       query );
}

// What no thread takes up any more.
void giveUp( const Query &query )
{
    stateOf( query ).fail( IN_DNS_QUERY_FAILURE_GIVEN_UP );
}

struct in___ImpDnsWorkItem;
using Item = pb::Ref<in___ImpDnsWorkItem>;

// Held during a look-up, its completion included: over system calls that block, on purpose.
struct LookUpMonitor final : pb::Object<LookUpMonitor, in___sort_IN___IMP_DNS_LOOK_UP_MONITOR> {
    pb::Monitor monitor{ 55 };
};

// The items that no thread has taken up. Service queries hold a monitor, so they take turns: each is scheduled when the
// one before is done, and no thread is kept waiting for that monitor.
struct Queue final : pb::Object<Queue, in___sort_IN___IMP_DNS_QUEUE> {
    void submit( Item item );
    // On a thread of the domain.
    void run( in___ImpDnsWorkItem &item );
    // Fails what no thread has taken up, and from now on whatever comes.
    void close();

  private:
    void passSrvTurn();

    pb::Monitor monitor_;
    std::unordered_map<const in___ImpDnsWorkItem *, Item> waiting_ PB_GUARDED_BY( monitor_ );
    std::deque<Item> srvTurns_ PB_GUARDED_BY( monitor_ ); // those that are not even scheduled
    bool srvRuns_ PB_GUARDED_BY( monitor_ ) = false;
    bool closed_ PB_GUARDED_BY( monitor_ ) = false;
};

constinit pb::Global<struct prDomain> in___ImpDnsPrDomain;
constinit pb::Global<Queue> in___ImpDnsQueue;
// The classic resolver takes one question at a time: nothing comes between a res_mkquery and its res_send.
constinit pb::Global<LookUpMonitor> in___ImpDnsResQueryMonitor;
// Absent: getaddrinfo and getnameinfo run beside each other (POSIX wants them thread-safe).
constinit pb::Global<LookUpMonitor> in___ImpDnsGetaddrinfoMonitor;

LookUpMonitor *monitorFor( const Query &query )
{
    return ( std::holds_alternative<Srv>( query ) ? in___ImpDnsResQueryMonitor : in___ImpDnsGetaddrinfoMonitor ).get();
}

void in___ImpDnsWorkItemProcessFunc( struct pbObj *argument );

// One look-up. Holds what it uses, so that it may still run when the globals are gone.
struct in___ImpDnsWorkItem final : pb::Object<in___ImpDnsWorkItem, in___sort_IN___IMP_DNS_WORK_ITEM> {
    const Query query;
    const pb::Ref<Queue> queue = pb::share( in___ImpDnsQueue.get() );
    const pb::Ref<LookUpMonitor> monitor = pb::share( monitorFor( query ) ); // or null
    const pb::Ref<struct prProcess> process; // which holds the item until it is halted

    explicit in___ImpDnsWorkItem( Query asked )
        : query( std::move( asked ) ),
          process( pb::adopt( prProcessCreateInDomainCstr( in___ImpDnsPrDomain.get(), itemPriority,
                                                           in___ImpDnsWorkItemProcessFunc, this, "in___ImpDnsWorkItem",
                                                           -1 ) ) )
    {
    }
    void schedule() const { prProcessSchedule( process.get() ); }
    void halt() const { prProcessHalt( process.get() ); }
    bool isSrv() const { return std::holds_alternative<Srv>( query ); }
};

void in___ImpDnsWorkItemCreate( Query query )
{
    PB_ASSERT_TEXT( in___ImpDnsPrDomain.get(), "in___ImpDnsPrDomain" );
    const auto item = pb::make<in___ImpDnsWorkItem>( std::move( query ) );
    item->queue->submit( item );
}

void lookUp( const in___ImpDnsWorkItem &item )
{
    std::optional<pb::Guard> guard;
    if ( item.monitor )
        guard.emplace( item.monitor->monitor );
    if ( const auto *addresses = std::get_if<Addresses>( &item.query ) )
        in___ImpDnsDoQueryAddresses( addresses->get() );
    else if ( const auto *domainNames = std::get_if<DomainNames>( &item.query ) )
        in___ImpDnsDoQueryDomainNames( domainNames->get() );
    else
        in___ImpDnsDoQuerySrv( std::get<Srv>( item.query ).get() );
}

void in___ImpDnsWorkItemProcessFunc( struct pbObj *argument )
{
    auto &item = static_cast<in___ImpDnsWorkItem &>( *argument );
    item.queue->run( item );
    item.halt();
}

void Queue::submit( Item item )
{
    bool refused, itsTurn = true;
    {
        pb::Guard guard( monitor_ );
        refused = closed_;
        if ( !refused ) {
            waiting_.emplace( item.get(), item );
            if ( item->isSrv() && std::exchange( srvRuns_, true ) ) {
                srvTurns_.push_back( item );
                itsTurn = false;
            }
        }
    }
    if ( refused ) {
        giveUp( item->query );
        item->halt();
    }
    else if ( itsTurn )
        item->schedule();
}

void Queue::run( in___ImpDnsWorkItem &item )
{
    {
        pb::Guard guard( monitor_ );
        if ( !waiting_.extract( &item ) )
            return; // failed meanwhile
    }
    // Time-outs and changes of the stack leave queries behind that would keep the threads from those that follow.
    if ( !stateOf( item.query ).tryGiveUp() )
        lookUp( item );
    if ( item.isSrv() )
        passSrvTurn();
}

void Queue::passSrvTurn()
{
    Item next;
    {
        pb::Guard guard( monitor_ );
        srvRuns_ = !srvTurns_.empty();
        if ( srvRuns_ ) {
            next = std::move( srvTurns_.front() );
            srvTurns_.pop_front();
        }
    }
    if ( next )
        next->schedule();
}

void Queue::close()
{
    std::unordered_map<const in___ImpDnsWorkItem *, Item> failed;
    std::deque<Item> turns;
    {
        pb::Guard guard( monitor_ );
        closed_ = true;
        failed.swap( waiting_ );
        turns.swap( srvTurns_ );
    }
    for ( const auto &[key, item] : failed ) {
        giveUp( item->query );
        item->halt();
    }
}

} // namespace

constinit const struct pbSort in___sort_IN___IMP_DNS_WORK_ITEM =
    pb::detail::makeSort<in___ImpDnsWorkItem>( "IN___IMP_DNS_WORK_ITEM" );
constinit const struct pbSort in___sort_IN___IMP_DNS_QUEUE = pb::detail::makeSort<Queue>( "IN___IMP_DNS_QUEUE" );
constinit const struct pbSort in___sort_IN___IMP_DNS_LOOK_UP_MONITOR =
    pb::detail::makeSort<LookUpMonitor>( "IN___IMP_DNS_LOOK_UP_MONITOR" );

void in___ImpDnsStartup( void )
{
    auto domain = pb::adopt( prDomainTryCreate( threads, threadPriority, 0 ) );
    PB_ASSERT_TEXT( domain, "in___ImpDnsPrDomain" );
    in___ImpDnsPrDomain.set( std::move( domain ) );
    in___ImpDnsQueue.set( pb::make<Queue>() );
    in___ImpDnsResQueryMonitor.set( pb::make<LookUpMonitor>() );
}

void in___ImpDnsShutdown( void )
{
    in___ImpDnsQueue.get()->close();
    in___ImpDnsPrDomain.invalidate(); // waits for the look-ups that run
    in___ImpDnsQueue.invalidate();
    in___ImpDnsResQueryMonitor.invalidate();
    in___ImpDnsGetaddrinfoMonitor.invalidate();
}

void in___ImpDnsQueryAddresses( struct in___DnsQueryAddressesImp *query )
{
    PB_ASSERT( query );
    in___ImpDnsWorkItemCreate( pb::share( query ) );
}

void in___ImpDnsQueryDomainNames( struct in___DnsQueryDomainNamesImp *query )
{
    PB_ASSERT( query );
    in___ImpDnsWorkItemCreate( pb::share( query ) );
}

void in___ImpDnsQuerySrv( struct in___DnsQuerySrvImp *query )
{
    PB_ASSERT( query );
    in___ImpDnsWorkItemCreate( pb::share( query ) );
}
