// The DNS queries of one kind on a stack: who asks what is already asked or known shares the query, until the answer
// expires or is flushed. Guarded by the stack's monitor. In-tree only.
#ifndef IN_STACK_DNS_HPP
#define IN_STACK_DNS_HPP

#include "in/base/in_address.h"
#include "in/dns/in_dns_options.h"
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_domain_names_imp_internal.h"
#include "in/dns/in_dns_query_srv_imp_internal.h"
#include "in/dns/in_dns_query_state.hpp"
#include "in/imp/in_imp_dns_internal.h"
#include "pb/pb_dict.h"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"
#include "pb/pb_vector.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace in {

// The kinds: what each does its own way.
struct DnsAddresses {
    using Key = struct pbString;
    using Imp = struct in___DnsQueryAddressesImp;
    static constexpr const char *name = "addresses";
    static constexpr auto disabled = inDnsOptionsDisableQueryAddresses;
    static constexpr auto keyObj = pbStringObj;
    static constexpr auto key = in___DnsQueryAddressesImpDomainName;
    static constexpr auto obj = in___DnsQueryAddressesImpObj;
    static constexpr auto from = in___DnsQueryAddressesImpFrom;
    static constexpr auto create = in___DnsQueryAddressesImpCreate;
    static constexpr auto end = in___DnsQueryAddressesImpEnd;
    static constexpr auto error = in___DnsQueryAddressesImpError;
    static constexpr auto endAddSignalable = in___DnsQueryAddressesImpEndAddSignalable;
    static constexpr auto traceCompleteAnchor = in___DnsQueryAddressesImpTraceCompleteAnchor;
    static constexpr auto resolve = in___ImpDnsQueryAddresses;
    static constexpr auto result = in___DnsQueryAddressesImpAddressesVector;
};

struct DnsDomainNames {
    using Key = struct inAddress;
    using Imp = struct in___DnsQueryDomainNamesImp;
    static constexpr const char *name = "domainNames";
    static constexpr auto disabled = inDnsOptionsDisableQueryDomainNames;
    static constexpr auto keyObj = inAddressObj;
    static constexpr auto key = in___DnsQueryDomainNamesImpAddress;
    static constexpr auto obj = in___DnsQueryDomainNamesImpObj;
    static constexpr auto from = in___DnsQueryDomainNamesImpFrom;
    static constexpr auto create = in___DnsQueryDomainNamesImpCreate;
    static constexpr auto end = in___DnsQueryDomainNamesImpEnd;
    static constexpr auto error = in___DnsQueryDomainNamesImpError;
    static constexpr auto endAddSignalable = in___DnsQueryDomainNamesImpEndAddSignalable;
    static constexpr auto traceCompleteAnchor = in___DnsQueryDomainNamesImpTraceCompleteAnchor;
    static constexpr auto resolve = in___ImpDnsQueryDomainNames;
    static constexpr auto result = in___DnsQueryDomainNamesImpDomainNamesVector;
};

struct DnsSrv {
    using Key = struct pbString;
    using Imp = struct in___DnsQuerySrvImp;
    static constexpr const char *name = "srv";
    static constexpr auto disabled = inDnsOptionsDisableQuerySrv;
    static constexpr auto keyObj = pbStringObj;
    static constexpr auto key = in___DnsQuerySrvImpService;
    static constexpr auto obj = in___DnsQuerySrvImpObj;
    static constexpr auto from = in___DnsQuerySrvImpFrom;
    static constexpr auto create = in___DnsQuerySrvImpCreate;
    static constexpr auto end = in___DnsQuerySrvImpEnd;
    static constexpr auto error = in___DnsQuerySrvImpError;
    static constexpr auto endAddSignalable = in___DnsQuerySrvImpEndAddSignalable;
    static constexpr auto traceCompleteAnchor = in___DnsQuerySrvImpTraceCompleteAnchor;
    static constexpr auto resolve = in___ImpDnsQuerySrv;
    static constexpr auto result = in___DnsQuerySrvImpDataInSrvsVector;
};

// Queries that were taken out of a table. Their last references may end objects of the host, so they are dropped when
// the monitor has been left.
using DnsDropped = std::vector<pb::Ref<struct pbObj>>;

template <class Kind> class DnsQueries {
  public:
    using Key = typename Kind::Key;
    using Imp = pb::Ref<typename Kind::Imp>;

    // The query for the key, running or known; null when there is none.
    Imp find( const Key *key ) const
    {
        return pb::adopt( Kind::from( pbDictObjKey( byKey_.get(), Kind::keyObj( key ) ) ) );
    }
    // The signalable then hears of the query's end.
    void add( const Key *key, const Imp &imp, struct pbSignalable *signalable )
    {
        Kind::endAddSignalable( imp.get(), signalable );
        pbDictSetObjKey( byKey_.address(), Kind::keyObj( key ), Kind::obj( imp.get() ) );
        running_.push_back( imp );
    }

    // Fails what runs and forgets what is known.
    void flush( DnsDropped &dropped )
    {
        for ( Imp &imp : running_ ) {
            dns::stateOf( imp.get() ).fail( IN_DNS_QUERY_FAILURE_FLUSHED );
            drop( imp, dropped );
        }
        for ( auto &[expiry, imp] : known_ )
            drop( imp, dropped );
        running_.clear();
        known_.clear();
        byKey_ = pb::adopt( pbDictCreate() );
    }

    // What has ended since the last call is known from now on, for the time that the options give it; but what was
    // given up is forgotten.
    void collectEnded( pbInt now, const struct inDnsOptions *options, DnsDropped &dropped )
    {
        auto kept = running_.begin();
        for ( Imp &imp : running_ )
            if ( !Kind::end( imp.get() ) )
                std::swap( *kept++, imp );
            else if ( dns::stateOf( imp.get() ).givenUp() )
                forget( imp, dropped );
            else
                known_.emplace( pbIntAddSaturating( now, timeout( imp, options ) ), std::move( imp ) );
        running_.erase( kept, running_.end() );
    }

    // Forgets what expires at or before now, so that the next who asks starts a new query.
    void expire( pbInt now, DnsDropped &dropped )
    {
        const auto kept = known_.upper_bound( now );
        for ( auto known = known_.begin(); known != kept; ++known )
            forget( known->second, dropped );
        known_.erase( known_.begin(), kept );
    }

    size_t size() const { return running_.size() + known_.size(); }
    // Of the first so many: those that run or have just ended, as they were asked, without an expiry, then those that
    // are known, which expires first first. Only references are taken, for the monitor's sake.
    using Listed = std::vector<std::pair<Imp, std::optional<pbInt>>>;
    Listed list( size_t limit ) const
    {
        Listed listed;
        for ( auto imp = running_.begin(); imp != running_.end() && listed.size() < limit; ++imp )
            listed.emplace_back( *imp, std::nullopt );
        for ( auto known = known_.begin(); known != known_.end() && listed.size() < limit; ++known )
            listed.emplace_back( known->second, known->first );
        return listed;
    }

    std::optional<pbInt> earliestExpiry() const
    {
        return known_.empty() ? std::nullopt : std::optional( known_.begin()->first );
    }

  private:
    static pbInt timeout( const Imp &imp, const struct inDnsOptions *options )
    {
        return Kind::error( imp.get() ) ? inDnsOptionsNegativeCacheTimeout( options )
                                        : inDnsOptionsCacheTimeout( options );
    }
    // The key may have been given to a newer query.
    void forget( Imp &imp, DnsDropped &dropped )
    {
        const auto key = pb::adopt( Kind::key( imp.get() ) );
        if ( find( key.get() ).is( imp ) )
            pbDictDelObjKey( byKey_.address(), Kind::keyObj( key.get() ) );
        drop( imp, dropped );
    }
    static void drop( Imp &imp, DnsDropped &dropped ) { dropped.push_back( pb::adopt( Kind::obj( imp.release() ) ) ); }

    pb::Ref<struct pbDict> byKey_ = pb::adopt( pbDictCreate() );
    std::vector<Imp> running_;        // in the order in which they were asked
    std::multimap<pbInt, Imp> known_; // by expiry
};

constexpr pbInt resultsShown = 100;

// A query as a person reads it: key, state, what is left of its time at now, the beginning of its result.
template <class Kind>
pb::Ref<struct pbStore> storeOfListed( typename Kind::Imp *imp, std::optional<pbInt> expiry, pbInt now )
{
    auto store = pb::adopt( pbStoreCreate() );
    const auto set = [&store]( const char *key, const pb::String &text ) {
        pbStoreSetValueCstr( store.address(), key, -1, text.get() );
    };
    const bool ended = Kind::end( imp ) != 0;
    set( "kind", pb::string( Kind::name ) );
    set( "key", pb::adopt( pbObjToString( Kind::keyObj( pb::adopt( Kind::key( imp ) ).get() ) ) ) );
    set( "state", pb::string( !ended ? "running" : Kind::error( imp ) ? "failed" : "known" ) );
    if ( expiry )
        pbStoreSetValueIntCstr( store.address(), "remaining", -1, *expiry > now ? *expiry - now : 0 );
    if ( const auto result = pb::adopt( Kind::result( imp ) ) ) {
        auto texts = pb::adopt( pbStoreCreate() );
        const pbInt length = pbVectorLength( result.get() ), shown = std::min( length, resultsShown );
        if ( shown < length )
            pbStoreSetValueIntCstr( store.address(), "resultLength", -1, length );
        for ( pbInt i = 0; i < shown; ++i )
            pbStoreArrayAppendValue(
                texts.address(),
                pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( result.get(), i ) ).get() ) ).get() );
        pbStoreSetStoreCstr( store.address(), "result", -1, texts.get() );
    }
    return store;
}

template <class Kind>
void appendListed( pb::Ref<struct pbStore> &queries, const typename DnsQueries<Kind>::Listed &listed, pbInt now )
{
    for ( const auto &[imp, expiry] : listed )
        pbStoreArrayAppendStore( queries.address(), storeOfListed<Kind>( imp.get(), expiry, now ).get() );
}

} // namespace in

#endif
