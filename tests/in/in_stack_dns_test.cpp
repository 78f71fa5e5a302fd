// DNS queries on a stack without a server: who shares a query, how long an answer is kept, what flushes it; the choice
// among addresses; waiting.
#include "in/base/in_stack_dns.hpp"

#include "cs/cs_json.h"
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_query.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_addresses.hpp"
#include "in/dns/in_dns_query_domain_names.h"
#include "in/dns/in_dns_query_srv.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"
#include "support/module_host.hpp"
#include "support/trace_catcher.hpp"

#include <gmock/gmock.h>

namespace {

using pb::string;
using Table = in::DnsQueries<in::DnsAddresses>;
using Imp = pb::Ref<struct in___DnsQueryAddressesImp>;
using Stack = pb::Ref<struct inStack>;
using Vector = pb::Ref<struct pbVector>;

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

const pb::String name = string( "host.example" );

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}
Vector addresses( std::initializer_list<const char *> texts )
{
    auto vector = pb::adopt( pbVectorCreate() );
    for ( const char *text : texts )
        pbVectorAppend( vector.address(), inAddressObj( address( text ).get() ) );
    return vector;
}

struct Asked {
    Table table;
    pb::Ref<struct pbBarrier> barrier = pb::adopt( pbBarrierCreate( 1 ) );
    pb::Ref<struct pbSignalable> signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
    pb::Ref<struct inDnsOptions> options = pb::adopt( inDnsOptionsCreate() );
    in::DnsDropped dropped;

    Asked()
    {
        inDnsOptionsSetCacheTimeout( options.address(), 100 );
        inDnsOptionsSetNegativeCacheTimeout( options.address(), 10 );
    }
    Imp ask( const char *key )
    {
        const Imp imp = pb::adopt( in___DnsQueryAddressesImpCreate( string( key ).get(), nullptr ) );
        table.add( string( key ).get(), imp, signalable.get() );
        return imp;
    }
    bool knows( const char *key ) const { return static_cast<bool>( table.find( string( key ).get() ) ); }
};

TEST( DnsQueries, KeepAnswersForTheirTime )
{
    Asked asked;
    const Imp good = asked.ask( "good" ), bad = asked.ask( "bad" ), running = asked.ask( "running" );
    EXPECT_TRUE( asked.table.find( string( "good" ).get() ).is( good ) );
    EXPECT_FALSE( asked.knows( "Good" ) || asked.knows( "good." ) );
    in___DnsQueryAddressesImpEndSet( good.get(), addresses( { "192.0.2.1" } ).get() );
    EXPECT_TRUE( pbBarrierPassTimed( asked.barrier.get(), 0 ) );
    in___DnsQueryAddressesImpErrorSet( bad.get() );
    asked.table.collectEnded( 1000, asked.options.get(), asked.dropped );
    asked.table.collectEnded( 2000, asked.options.get(), asked.dropped ); // nothing new
    EXPECT_EQ( asked.table.earliestExpiry(), 1010 );
    asked.table.expire( 1009, asked.dropped );
    EXPECT_TRUE( asked.knows( "bad" ) );
    asked.table.expire( 1010, asked.dropped );
    EXPECT_FALSE( asked.knows( "bad" ) );
    EXPECT_EQ( asked.table.earliestExpiry(), 1100 );
    asked.table.expire( PB_INT_MAX, asked.dropped );
    EXPECT_FALSE( asked.knows( "good" ) );
    EXPECT_TRUE( asked.knows( "running" ) );
    EXPECT_EQ( asked.table.earliestExpiry(), std::nullopt );
    EXPECT_EQ( asked.dropped.size(), 2u );

    // Times that overflow last.
    inDnsOptionsSetCacheTimeout( asked.options.address(), PB_INT_MAX );
    in___DnsQueryAddressesImpEndSet( running.get(), addresses( { "192.0.2.1" } ).get() );
    asked.table.collectEnded( 1000, asked.options.get(), asked.dropped );
    EXPECT_EQ( asked.table.earliestExpiry(), PB_INT_MAX );
}

TEST( DnsQueries, FlushFailsWhatRunsAndForgetsTheRest )
{
    Asked asked;
    const Imp known = asked.ask( "known" ), running = asked.ask( "running" ), ended = asked.ask( "ended" );
    in___DnsQueryAddressesImpEndSet( known.get(), addresses( { "192.0.2.1" } ).get() );
    asked.table.collectEnded( 1000, asked.options.get(), asked.dropped );
    in___DnsQueryAddressesImpEndSet( ended.get(), addresses( { "192.0.2.1" } ).get() );
    asked.table.flush( asked.dropped );
    EXPECT_TRUE( in___DnsQueryAddressesImpEnd( running.get() ) && in___DnsQueryAddressesImpError( running.get() ) );
    EXPECT_FALSE( in___DnsQueryAddressesImpError( ended.get() ) );
    EXPECT_FALSE( asked.knows( "known" ) || asked.knows( "running" ) || asked.knows( "ended" ) );
    asked.table.collectEnded( 1000, asked.options.get(), asked.dropped );
    EXPECT_EQ( asked.table.earliestExpiry(), std::nullopt );
}

TEST( DnsQueries, AreListedWithWhatIsLeftOfTheirTime )
{
    Asked asked;
    const Imp good = asked.ask( "good" ), bad = asked.ask( "bad" ), ended = asked.ask( "ended" );
    const Imp running = asked.ask( "running" );
    in___DnsQueryAddressesImpEndSet( good.get(), addresses( { "192.0.2.1", "192.0.2.2" } ).get() );
    in___DnsQueryAddressesImpErrorSet( bad.get() );
    asked.table.collectEnded( 1000, asked.options.get(), asked.dropped );
    in___DnsQueryAddressesImpEndSet( ended.get(), addresses( {} ).get() );
    const auto listed = [&asked]( size_t limit, pbInt now ) {
        auto queries = pb::adopt( pbStoreCreate() );
        in::appendListed<in::DnsAddresses>( queries, asked.table.list( limit ), now );
        return pb::utf8( pb::adopt( csJsonFromStore( queries.get(), CS_JSON_SHORT ) ) );
    };
    const std::string first = R"({"kind": "addresses", "key": "ended", "state": "known", "result": {}})";
    EXPECT_EQ( listed( 1, 0 ), "[" + first + "]" );
    EXPECT_EQ( listed( 9, 1050 ),
               "[" + first + R"(, {"kind": "addresses", "key": "running", "state": "running"})"
               R"(, {"kind": "addresses", "key": "bad", "state": "failed", "remaining": 0})"
               R"(, {"kind": "addresses", "key": "good", "state": "known", "remaining": 50, "result": ["192.0.2.1", "192.0.2.2"]}])" );
    EXPECT_EQ( asked.table.size(), 4u );
}

TEST( DnsQueryImp, EndsOnce )
{
    support::TraceCatcher catcher;
    const Imp good = pb::adopt( in___DnsQueryAddressesImpCreate( name.get(), nullptr ) );
    const Vector result = addresses( { "192.0.2.1", "2001:db8::1" } );
    EXPECT_FALSE( pb::adopt( in___DnsQueryAddressesImpAddressesVector( good.get() ) ) );
    in___DnsQueryAddressesImpEndSet( good.get(), result.get() );
    in___DnsQueryAddressesImpErrorSet( good.get() );
    in___DnsQueryAddressesImpEndSet( good.get(), addresses( {} ).get() );
    EXPECT_FALSE( in___DnsQueryAddressesImpError( good.get() ) );
    EXPECT_TRUE( pb::adopt( in___DnsQueryAddressesImpAddressesVector( good.get() ) ).is( result ) );
    EXPECT_EQ( catcher.property( "IN___DNS_QUERY_ADDRESSES_IMP", "inDnsDomainName" ), "host.example" );
    EXPECT_EQ( catcher.property( "IN___DNS_QUERY_ADDRESSES_IMP", "inDnsError" ), "false" );
    EXPECT_FALSE( catcher.notable( "IN___DNS_QUERY_ADDRESSES_IMP" ) );

    const Imp bad = pb::adopt( in___DnsQueryAddressesImpCreate( name.get(), nullptr ) );
    in___DnsQueryAddressesImpErrorSet( bad.get() );
    in___DnsQueryAddressesImpEndSet( bad.get(), result.get() );
    EXPECT_TRUE( in___DnsQueryAddressesImpEnd( bad.get() ) && in___DnsQueryAddressesImpError( bad.get() ) );
    EXPECT_EQ( in___DnsQueryAddressesImpAddressesLength( bad.get() ), 0 );
    EXPECT_EQ( catcher.property( "IN___DNS_QUERY_ADDRESSES_IMP", "inDnsError" ), "true" );
    EXPECT_TRUE( catcher.notable( "IN___DNS_QUERY_ADDRESSES_IMP" ) );
}

TEST( DnsQueryAddresses, BestAddressIsNearestToTheStacks )
{
    struct {
        const char *stack;
        std::initializer_list<const char *> candidates;
        const char *expected;
    } const rows[] = {
        { "10.1.2.3", { "2001:db8::1", "192.168.0.1", "10.1.9.9" }, "10.1.9.9" },
        { "2001:db8::2", { "10.1.9.9", "2001:db8:8::1", "2001:db8::1" }, "2001:db8::1" },
        { "10.1.2.3", { "10.1.2.5", "10.1.2.4" }, "10.1.2.5" }, // alike: the first
        { "10.1.2.3", { "2001:db8::1", "2001:db8::2" }, "2001:db8::1" },
        { nullptr, { "2001:db8::1", "10.1.9.9" }, "2001:db8::1" },
        { "10.1.2.3", {}, "null" },
    };
    for ( const auto &row : rows ) {
        const auto own = row.stack ? address( row.stack ) : nullptr;
        const auto best = in::dns::bestAddress( own.get(), addresses( row.candidates ).get() );
        EXPECT_EQ( pb::utf8( pb::adopt( pbObjToString( inAddressObj( best.get() ) ) ) ), row.expected );
    }
}

// A stack on the loopback interface that refuses all queries, so that none leaves the host.
pb::Ref<struct inOptions> refusingOptions( pbInt version = IN_ADDRESS_VERSION_4, bool refuse = true )
{
    auto dns = pb::adopt( inDnsOptionsCreate() );
    inDnsOptionsSetDisableQueryAddresses( dns.address(), refuse );
    inDnsOptionsSetDisableQueryDomainNames( dns.address(), true );
    inDnsOptionsSetDisableQuerySrv( dns.address(), true );
    inDnsOptionsSetNegativeCacheTimeout( dns.address(), 1000 );
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddressVersion( options.address(), version );
    inOptionsSetDnsOptions( options.address(), dns.get() );
    return options;
}

// Links the asker's stream, if there is one, to that of the query.
Imp ask( const Stack &stack, struct trStream *optionalAsker = nullptr )
{
    const auto anchor = pb::adopt( optionalAsker ? trAnchorCreate( optionalAsker, TR_ANCHOR_KIND_PLAIN ) : nullptr );
    return pb::adopt( in___StackDnsQueryAddresses( stack.get(), name.get(), anchor.get() ) );
}

TEST( StackDns, SharesQueriesUntilTheyExpireOrAreFlushed )
{
    support::DrivenClock clock;
    const Stack stack = pb::adopt( inStackCreate( refusingOptions().get(), nullptr ) );
    support::TraceCatcher catcher;
    const auto asker = pb::adopt( trStreamCreateCstr( "first asker", -1 ) );
    const auto another = pb::adopt( trStreamCreateCstr( "another", -1 ) );
    const Imp first = ask( stack, asker.get() );
    EXPECT_TRUE( in___DnsQueryAddressesImpError( first.get() ) );
    clock.advance( 0 );
    clock.advance( 999 );
    EXPECT_TRUE( ask( stack, another.get() ).is( first ) );
    using Link = support::TraceCatcher::Link;
    for ( const char *from : { "first asker", "another" } )
        EXPECT_THAT( catcher.links(), testing::Contains( Link{ from, "IN___DNS_QUERY_ADDRESSES_IMP", 0, "" } ) );
    EXPECT_EQ( pb::utf8( pb::adopt( csJsonFromStore( pb::adopt( inStackDnsQueriesStore( stack.get(), 5 ) ).get(),
                                                     CS_JSON_SHORT ) ) ),
               R"({"length": 1, "queries": [{"kind": "addresses", "key": "host.example", "state": "failed", "remaining": 1}]})" );
    clock.advance( 1 );
    const Imp second = ask( stack );
    EXPECT_FALSE( second.is( first ) );

    const auto srv = pb::adopt( in___StackDnsQuerySrv( stack.get(), name.get(), nullptr ) );
    inStackSetOptions( stack.get(), refusingOptions().get() );
    clock.advance( 0 );
    EXPECT_TRUE( ask( stack ).is( second ) );
    inStackSetOptions( stack.get(), refusingOptions( IN_ADDRESS_VERSION_4, false ).get() ); // a switch
    inStackSetOptions( stack.get(), refusingOptions( IN_ADDRESS_VERSION_4, false ).get() );
    clock.advance( 0 );
    EXPECT_TRUE( pb::adopt( in___StackDnsQuerySrv( stack.get(), name.get(), nullptr ) ).is( srv ) );
    inStackSetOptions( stack.get(), refusingOptions().get() );
    clock.advance( 0 );
    const Imp third = ask( stack );
    EXPECT_FALSE( third.is( second ) );
    inStackSetOptions( stack.get(), refusingOptions( IN_ADDRESS_VERSION_6 ).get() ); // another address
    clock.advance( 0 );
    EXPECT_FALSE( ask( stack ).is( third ) );
    EXPECT_FALSE( pb::adopt( in___StackDnsQuerySrv( stack.get(), name.get(), nullptr ) ).is( srv ) );
    EXPECT_TRUE( catcher.texts( "in___ImpDnsDoQueryAddresses()" ).empty() ); // the resolver was never asked
}

TEST( StackDns, BlockingFormsGiveNothingInError )
{
    const Stack stack = pb::adopt( inStackCreate( refusingOptions().get(), nullptr ) );
    const auto ina = address( "192.0.2.1" );
    EXPECT_FALSE( pb::adopt( inDnsQueryAddressForDomainName( stack.get(), name.get(), nullptr, nullptr ) ) );
    EXPECT_FALSE( pb::adopt( inDnsQueryDomainNameForAddress( stack.get(), ina.get(), nullptr, nullptr ) ) );
    for ( struct pbVector *vector :
          { inDnsQueryAddressesVectorForDomainName( stack.get(), name.get(), nullptr, nullptr ),
            inDnsQueryDomainNamesVectorForAddress( stack.get(), ina.get(), nullptr, nullptr ),
            inDnsQuerySrv( stack.get(), name.get(), nullptr, nullptr ) } )
        EXPECT_EQ( pbVectorLength( pb::adopt( vector ).get() ), 0 );
}

TEST( DnsQueryDeath, Preconditions )
{
    GTEST_FLAG_SET( death_test_style, "threadsafe" );
    const Stack stack = pb::adopt( inStackCreate( refusingOptions().get(), nullptr ) );
    const Imp imp = pb::adopt( in___DnsQueryAddressesImpCreate( name.get(), nullptr ) );
    const auto bad = string( "a..b" );
    const auto names = pb::adopt( pbVectorCreate() );
    support::expectDeaths( {
        { [&] { inDnsQuerySrv( nullptr, name.get(), nullptr, nullptr ); }, "stack" },
        { [&] { inDnsQueryAddressesCreate( stack.get(), bad.get(), nullptr ); },
          "inDnsIdnaDomainNameOk( domainName )" },
        { [&] { inDnsQueryDomainNamesCreate( stack.get(), nullptr, nullptr ); }, "address" },
        { [&] { inDnsQuerySrvCreate( stack.get(), bad.get(), nullptr ); }, "inDnsIdnaDomainNameOk( service )" },
        { [&] {
             auto wrong = names;
             pbVectorAppend( wrong.address(), pbStringObj( bad.get() ) );
             in___DnsQueryAddressesImpEndSet( imp.get(), wrong.get() );
         },
          "pbVectorContainsOnly( addressesVector, inAddressSort() )" },
    } );
}

} // namespace
