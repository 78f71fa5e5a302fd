// in___StackImp: following the host's interfaces for a stack, its DNS queries, and its list of TCP peers to avoid.
#include "in/base/in_stack_imp_internal.h"

#include "cs/cs_status_reporter.h"
#include "in/base/in_address.h"
#include "in/base/in_halt_mark.hpp"
#include "in/base/in_options.h"
#include "in/base/in_published_address.hpp"
#include "in/base/in_stack_decisions.hpp"
#include "in/base/in_stack_dns.hpp"
#include "in/nw/in_nw_interface.h"
#include "in/nw/in_nw_util_internal.h"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_options.h"
#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_time.h"
#include "pb/pb_timer.h"
#include "pb/pb_vector.h"
#include "pr/pr_process.h"
#include "tr/tr.hpp"

#include <algorithm>
#include <tuple>

PB_SORT_DECLARE( in___sort_IN___STACK_IMP )

namespace {

// What the stack is bound to.
struct Binding {
    pb::Ref<struct inAddress> address;
    pb::Ref<struct inNwInterface> primaryInterface;
    pb::Ref<struct pbVector> interfaces = pb::adopt( pbVectorCreate() );
};

// The DNS queries of all kinds.
using DnsTables =
    std::tuple<in::DnsQueries<in::DnsAddresses>, in::DnsQueries<in::DnsDomainNames>, in::DnsQueries<in::DnsSrv>>;
// What a run of the process has found changed.
struct Changes {
    bool address = false;
    bool interfaces = false; // the primary one or the set
    bool up = false;
    // Whether a kind of DNS query is disabled.
    bool disableAddresses = false, disableDomainNames = false, disableSrv = false;
};

// As of the options given, which are the stack's.
template <class Kind> bool isDisabled( const struct inOptions *options )
{
    return Kind::disabled( pb::adopt( inOptionsDnsOptions( options ) ).get() );
}

} // namespace

struct in___StackImp final : pb::Object<struct in___StackImp, in___sort_IN___STACK_IMP> {
    in___StackImp( const struct inOptions *options, struct trAnchor *optionalAnchor );
    ~in___StackImp();

    void run();
    void halt();

    in::HaltMark<in___StackImp> halted;

    // Fixed after construction.
    const pb::Ref<struct trStream> trace = pb::adopt( trStreamCreateCstr( "IN_STACK", -1 ) );
    const pb::Ref<struct csStatusReporter> status;
    const pb::Ref<struct prProcess> process;
    const pb::Ref<struct pbSignalable> signalable;
    const pb::Ref<struct pbTimer> timer;

    in::PublishedAddress publishedAddress; // the binding's, for who compares it with every packet's

    mutable pb::Monitor monitor{ 20 };
    // Guarded by the monitor.
    pb::Ref<struct pbSignal> update PB_GUARDED_BY( monitor ) = pb::adopt( pbSignalCreate() );
    pb::Ref<struct inOptions> options PB_GUARDED_BY( monitor );
    Binding binding PB_GUARDED_BY( monitor );
    bool up PB_GUARDED_BY( monitor ) = false;
    in::TcpBlacklist blacklist PB_GUARDED_BY( monitor );

    // The query for the key: one that runs or whose answer is known, else a new one.
    template <class Kind> typename Kind::Imp *query( const typename Kind::Key *key, struct trAnchor *optionalAnchor );

    // The queries as inStackDnsQueriesStore tells them.
    pb::Ref<struct pbStore> queriesStore( size_t limit ) const;

  private:
    // The steps of a run.
    void applyOptions( Changes &changes ) PB_REQUIRES( monitor );
    Binding findBinding() PB_REQUIRES( monitor );
    void flushQueries( const Changes &changes, in::DnsDropped &dropped ) PB_REQUIRES( monitor );
    void publishAddress( const Binding &found ) PB_REQUIRES( monitor );
    void publishInterfaces( const Binding &found ) PB_REQUIRES( monitor );
    bool publishUp() PB_REQUIRES( monitor );
    void publishReason() PB_REQUIRES( monitor );
    // The update signal that is over, to be dropped after the monitor.
    [[nodiscard]] pb::Ref<struct pbSignal> assertUpdate() PB_REQUIRES( monitor );
    void keepAnswers( pbInt now, in::DnsDropped &dropped ) PB_REQUIRES( monitor );
    void scheduleTimer( pbInt now ) PB_REQUIRES( monitor );

    pb::Ref<struct inOptions> optionsInEffect_ PB_GUARDED_BY( monitor );
    DnsTables queries_ PB_GUARDED_BY( monitor );
    pb::Ref<struct trStream> interfacesTrace_ PB_GUARDED_BY( monitor );
};

PB_OBJECT_DEFINE( in___StackImp, in___sort_IN___STACK_IMP )

in___StackImp::in___StackImp( const struct inOptions *initialOptions, struct trAnchor *optionalAnchor )
    : status( pb::adopt(
          csStatusReporterCreate( pb::adopt( trAnchorCreate( trace.get(), TR_ANCHOR_KIND_PLAIN ) ).get() ) ) ),
      process( pb::adopt(
          prProcessCreateWithPriorityCstr( 1, in___StackImpProcessFunc, this, "in___StackImpProcessFunc", -1 ) ) ),
      signalable( pb::adopt( prProcessCreateSignalable( process.get() ) ) ),
      timer( pb::adopt( prProcessCreateTimer( process.get() ) ) ), options( pb::share( initialOptions ) )
{
    csStatusReporterSetUp( status.get(), false );
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, trace.get() );
}

in___StackImp::~in___StackImp()
{
    in___NwUtilInterfacesUpdateDelSignalable( signalable.get() );
}

void in___StackImp::run()
{
    pb::Ref<struct pbSignal> over;
    Binding before; // keeps the interfaces that are no longer used until the monitor has been left
    in::DnsDropped dropped;
    pb::Guard guard( monitor );
    before = binding;
    const pbInt now = pbTimestamp();
    Changes changes;

    applyOptions( changes );
    const Binding found = findBinding();
    changes.address = found.address != binding.address;
    // Interfaces compare by identity.
    changes.interfaces = found.primaryInterface != binding.primaryInterface || found.interfaces != binding.interfaces;
    flushQueries( changes, dropped );
    if ( changes.address )
        publishAddress( found );
    if ( changes.interfaces )
        publishInterfaces( found );
    changes.up = publishUp();
    publishReason();
    if ( changes.address || changes.interfaces || changes.up )
        over = assertUpdate();
    blacklist.expire( now );
    keepAnswers( now, dropped );
    scheduleTimer( now );
}

// Equal options that are another object are taken over as well: the trace then shows what was configured.
void in___StackImp::applyOptions( Changes &changes )
{
    if ( options.is( optionsInEffect_ ) )
        return;
    if ( const struct inOptions *before = optionsInEffect_.get() ) {
        const struct inOptions *now = options.get();
        changes.disableAddresses = isDisabled<in::DnsAddresses>( before ) != isDisabled<in::DnsAddresses>( now );
        changes.disableDomainNames = isDisabled<in::DnsDomainNames>( before ) != isDisabled<in::DnsDomainNames>( now );
        changes.disableSrv = isDisabled<in::DnsSrv>( before ) != isDisabled<in::DnsSrv>( now );
    }
    optionsInEffect_ = options;
    trStreamSetConfiguration( trace.get(), pb::adopt( inOptionsStore( optionsInEffect_.get(), false ) ).get() );
}

// Registers before it looks: what changes in between wakes the process again.
Binding in___StackImp::findBinding()
{
    in___NwUtilInterfacesUpdateAddSignalable( signalable.get() );
    Binding found = binding;
    in___NwUtilFindAddressAndInterface( optionsInEffect_.get(), found.address.address(),
                                        found.primaryInterface.address(), found.interfaces.address() );
    return found;
}

// Answers may differ for another address, and so they are asked for anew.
void in___StackImp::flushQueries( const Changes &changes, in::DnsDropped &dropped )
{
    auto &[addresses, domainNames, srv] = queries_;
    if ( changes.address || changes.disableAddresses )
        addresses.flush( dropped );
    if ( changes.address || changes.disableDomainNames )
        domainNames.flush( dropped );
    if ( changes.address || changes.disableSrv )
        srv.flush( dropped );
}

void in___StackImp::publishAddress( const Binding &found )
{
    binding.address = found.address;
    publishedAddress.set( found.address.get() );
    if ( const auto &address = binding.address )
        csStatusReporterSetItemCstr( status.get(), "inStackAddress", -1,
                                     pb::adopt( inAddressToString( address.get() ) ).get() );
    else
        csStatusReporterDelItemCstr( status.get(), "inStackAddress", -1 );
}

void in___StackImp::publishInterfaces( const Binding &found )
{
    binding.primaryInterface = found.primaryInterface;
    binding.interfaces = found.interfaces;

    interfacesTrace_ = pb::adopt( trStreamCreateCstr( "in___StackImpUpdateInterfaces()", -1 ) );
    struct trStream *stream = interfacesTrace_.get();
    trAnchorComplete( pb::adopt( trAnchorCreate( trace.get(), TR_ANCHOR_KIND_PLAIN ) ).get(), stream );
    if ( binding.primaryInterface ) {
        const auto anchor =
            pb::adopt( trAnchorCreateWithAnnotationCstr( stream, TR_ANCHOR_KIND_PLAIN, "inPrimaryInterface", -1 ) );
        inNwInterfaceTraceCompleteAnchor( binding.primaryInterface.get(), anchor.get() );
    }
    for ( pbInt index = 0; index < pbVectorLength( binding.interfaces.get() ); ++index ) {
        const auto iface = pb::adopt( inNwInterfaceFrom( pbVectorObjAt( binding.interfaces.get(), index ) ) );
        inNwInterfaceTraceCompleteAnchor( iface.get(),
                                          pb::adopt( trAnchorCreate( stream, TR_ANCHOR_KIND_PLAIN ) ).get() );
    }
}

bool in___StackImp::publishUp()
{
    const bool isUp = in::anyInterfaceUp( binding.interfaces.get() );
    if ( isUp == up )
        return false;
    up = isUp;
    csStatusReporterSetUp( status.get(), up );
    return true;
}

void in___StackImp::publishReason()
{
    const std::string reason =
        in::stackReason( optionsInEffect_.get(), binding.address.get(), binding.primaryInterface.get(), up );
    if ( reason.empty() )
        csStatusReporterDelItemCstr( status.get(), "inStackReason", -1 );
    else
        csStatusReporterSetItemCstr( status.get(), "inStackReason", -1, pb::string( reason ).get() );
}

pb::Ref<struct pbSignal> in___StackImp::assertUpdate()
{
    pbSignalAssert( update.get() );
    return std::exchange( update, pb::adopt( pbSignalCreate() ) );
}

void in___StackImp::keepAnswers( pbInt now, in::DnsDropped &dropped )
{
    const auto dnsOptions = pb::adopt( inOptionsDnsOptions( optionsInEffect_.get() ) );
    const auto keep = [&]( auto &table ) {
        table.collectEnded( now, dnsOptions.get(), dropped );
        table.expire( now, dropped );
    };
    std::apply( [&]( auto &...tables ) { ( keep( tables ), ... ); }, queries_ );
}

void in___StackImp::scheduleTimer( pbInt now )
{
    std::optional<pbInt> earliest = blacklist.earliestExpiry();
    const auto consider = [&]( std::optional<pbInt> expiry ) {
        if ( expiry && ( !earliest || *expiry < *earliest ) )
            earliest = expiry;
    };
    std::apply( [&]( const auto &...tables ) { ( consider( tables.earliestExpiry() ), ... ); }, queries_ );
    if ( earliest )
        pbTimerSchedule( timer.get(), std::max( *earliest - now, PB_INT_FROM( 0 ) ) );
    else
        pbTimerUnschedule( timer.get() );
}

template <class Kind>
typename Kind::Imp *in___StackImp::query( const typename Kind::Key *key, struct trAnchor *optionalAnchor )
{
    pb::Ref<typename Kind::Imp> imp;
    {
        pb::Guard guard( monitor );
        auto &table = std::get<in::DnsQueries<Kind>>( queries_ );
        imp = table.find( key );
        if ( imp && in::dns::stateOf( imp.get() ).tryJoin() ) {
            if ( optionalAnchor )
                Kind::traceCompleteAnchor( imp.get(), optionalAnchor );
            return imp.release();
        }
        imp = pb::adopt( Kind::create( key, optionalAnchor ) );
        table.add( key, imp, signalable.get() );
        if ( isDisabled<Kind>( optionsInEffect_.get() ) ) {
            in::dns::stateOf( imp.get() ).fail( IN_DNS_QUERY_FAILURE_DISABLED );
            return imp.release();
        }
    }
    // The process may flush the query before the resolver has it; what the resolver finds is then ignored.
    Kind::resolve( imp.get() );
    return imp.release();
}

pb::Ref<struct pbStore> in___StackImp::queriesStore( size_t limit ) const
{
    std::tuple<in::DnsQueries<in::DnsAddresses>::Listed, in::DnsQueries<in::DnsDomainNames>::Listed,
               in::DnsQueries<in::DnsSrv>::Listed>
        listed;
    size_t length = 0;
    {
        pb::Guard guard( monitor );
        const auto list = [&]<class Kind>( const in::DnsQueries<Kind> &table ) {
            auto &part = std::get<typename in::DnsQueries<Kind>::Listed>( listed );
            length += table.size();
            part = table.list( limit );
            limit -= part.size();
        };
        std::apply( [&]( const auto &...tables ) { ( list( tables ), ... ); }, queries_ );
    }
    auto queries = pb::adopt( pbStoreCreate() );
    const pbInt now = pbTimestamp();
    in::appendListed<in::DnsAddresses>( queries, std::get<0>( listed ), now );
    in::appendListed<in::DnsDomainNames>( queries, std::get<1>( listed ), now );
    in::appendListed<in::DnsSrv>( queries, std::get<2>( listed ), now );
    auto store = pb::adopt( pbStoreCreate() );
    pbStoreSetValueIntCstr( store.address(), "length", -1, static_cast<pbInt>( length ) );
    pbStoreSetStoreCstr( store.address(), "queries", -1, queries.get() );
    return store;
}

void in___StackImp::halt()
{
    tr::text( trace.get(), "[in___StackImpHalt()]" );
    halted.set(); // before the process may drop the imp
    prProcessHalt( process.get() );
}

struct in___StackImp *in___StackImpCreate( const struct inOptions *options, struct trAnchor *optionalAnchor )
{
    PB_ASSERT( options );
    auto imp = pb::make<struct in___StackImp>( options, optionalAnchor );
    imp->run();
    return imp.release();
}

void in___StackImpProcessFunc( struct pbObj *argument )
{
    PB_ASSERT( argument );
    in___StackImpFrom( argument )->run();
}

void in___StackImpHalt( struct in___StackImp *imp )
{
    PB_ASSERT( imp );
    imp->halt();
}

void in___StackImpHaltWait( void )
{
    in::HaltMark<struct in___StackImp>::waitForNone();
}

void in___StackImpSetOptions( struct in___StackImp *imp, const struct inOptions *options )
{
    PB_ASSERT( imp );
    PB_ASSERT( options );
    pb::Guard guard( imp->monitor );
    imp->options = pb::share( options );
    prProcessSchedule( imp->process.get() );
}

void in___StackImpConfiguration( const struct in___StackImp *imp, struct inOptions **optionalOptions,
                                 struct inAddress **optionalAddress, struct inNwInterface **optionalPrimaryInterface,
                                 struct pbVector **optionalInterfaces, pbBool *optionalUp )
{
    PB_ASSERT( imp );
    pb::Guard guard( imp->monitor );
    if ( optionalOptions )
        *optionalOptions = imp->options.share();
    if ( optionalAddress )
        *optionalAddress = imp->binding.address.share();
    if ( optionalPrimaryInterface )
        *optionalPrimaryInterface = imp->binding.primaryInterface.share();
    if ( optionalInterfaces )
        *optionalInterfaces = imp->binding.interfaces.share();
    if ( optionalUp )
        *optionalUp = imp->up;
}

pbBool in___StackImpAddressIs( const struct in___StackImp *imp, const struct inAddress *address )
{
    PB_ASSERT( imp );
    PB_ASSERT( address );
    return imp->publishedAddress.equals( *address );
}

void in___StackImpUpdateAddSignalable( struct in___StackImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalAddSignalable( imp->update.get(), signalable );
}

void in___StackImpUpdateDelSignalable( struct in___StackImp *imp, struct pbSignalable *signalable )
{
    PB_ASSERT( imp );
    PB_ASSERT( signalable );
    pb::Guard guard( imp->monitor );
    pbSignalDelSignalable( imp->update.get(), signalable );
}

struct csStatusReporter *in___StackImpCsStatus( const struct in___StackImp *imp )
{
    PB_ASSERT( imp );
    return imp->status.share();
}

void in___StackImpTraceCompleteAnchor( struct in___StackImp *imp, struct trAnchor *anchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( anchor );
    trAnchorComplete( anchor, imp->trace.get() );
}

struct pbStore *in___StackImpDnsQueriesStore( const struct in___StackImp *imp, pbInt limit )
{
    PB_ASSERT( imp );
    PB_ASSERT( limit >= 0 );
    return imp->queriesStore( static_cast<size_t>( limit ) ).release();
}

// By the configured options, which may be newer than those in effect.
void in___StackImpTcpBlacklist( struct in___StackImp *imp, const struct inTcpAddress *address )
{
    PB_ASSERT( imp );
    PB_ASSERT( address );
    pb::Guard guard( imp->monitor );
    const auto tcpOptions = pb::adopt( inOptionsTcpOptions( imp->options.get() ) );
    if ( !inTcpOptionsBlacklistEnabled( tcpOptions.get() ) )
        return;
    imp->blacklist.set( address,
                        pbIntAddSaturating( pbTimestamp(), inTcpOptionsBlacklistTimeout( tcpOptions.get() ) ) );
    prProcessSchedule( imp->process.get() );
}

pbBool in___StackImpTcpIsBlacklisted( const struct in___StackImp *imp, const struct inTcpAddress *address )
{
    PB_ASSERT( imp );
    PB_ASSERT( address );
    pb::Guard guard( imp->monitor );
    return imp->blacklist.contains( address );
}

struct in___DnsQueryAddressesImp *in___StackImpDnsQueryAddresses( struct in___StackImp *imp,
                                                                  const struct pbString *domainName,
                                                                  struct trAnchor *optionalAnchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( domainName );
    return imp->query<in::DnsAddresses>( domainName, optionalAnchor );
}

struct in___DnsQueryDomainNamesImp *in___StackImpDnsQueryDomainNames( struct in___StackImp *imp,
                                                                      const struct inAddress *address,
                                                                      struct trAnchor *optionalAnchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( address );
    return imp->query<in::DnsDomainNames>( address, optionalAnchor );
}

struct in___DnsQuerySrvImp *in___StackImpDnsQuerySrv( struct in___StackImp *imp, const struct pbString *service,
                                                      struct trAnchor *optionalAnchor )
{
    PB_ASSERT( imp );
    PB_ASSERT( service );
    return imp->query<in::DnsSrv>( service, optionalAnchor );
}
