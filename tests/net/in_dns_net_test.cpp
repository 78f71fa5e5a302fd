// DNS queries with real servers, with one that misbehaves, and with none.
#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/base/in_stack_internal.h"
#include "in/dns/in_dns_data_in_srv.h"
#include "in/dns/in_dns_options.h"
#include "in/dns/in_dns_query.h"
#include "in/dns/in_dns_query_addresses.h"
#include "in/dns/in_dns_query_addresses_imp_internal.h"
#include "in/dns/in_dns_query_domain_names.h"
#include "in/dns/in_dns_query_failure.h"
#include "in/dns/in_dns_query_srv.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_vector.h"
#include "support/dns_host.hpp"
#include "support/dns_wire.hpp"
#include "support/module_host.hpp"
#include "support/trace_catcher.hpp"

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace support;
using pb::string;
using Stack = pb::Ref<struct inStack>;
using testing::ElementsAre, testing::UnorderedElementsAre;
using Texts = std::vector<std::string>;

Stack makeStack( pbInt cacheTimeout = 60'000, pbInt maxBlockDuration = 20'000 )
{
    auto dns = pb::adopt( inDnsOptionsCreate() );
    inDnsOptionsSetCacheTimeout( dns.address(), cacheTimeout );
    inDnsOptionsSetNegativeCacheTimeout( dns.address(), cacheTimeout );
    inDnsOptionsSetMaxBlockDuration( dns.address(), maxBlockDuration );
    auto options = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( options.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddressVersion( options.address(), IN_ADDRESS_VERSION_4 );
    inOptionsSetDnsOptions( options.address(), dns.get() );
    return pb::adopt( inStackCreate( options.get(), nullptr ) );
}

Texts texts( struct pbVector *vector )
{
    const auto owner = pb::adopt( vector );
    Texts found;
    for ( pbInt i = 0; vector && i < pbVectorLength( vector ); ++i )
        found.push_back( pb::utf8( pb::adopt( pbObjToString( pb::adopt( pbVectorObjAt( vector, i ) ).get() ) ) ) );
    return found;
}

// The three kinds of query, as the scenarios ask them: by text, with texts or the reason in return.
template <class Q> struct Kind {
    Q *( *create )( const Stack &, const std::string & );
    pbBool ( *end )( const Q * );
    pbBool ( *error )( const Q * );
    pbInt ( *failure )( const Q * );
    void ( *add )( Q *, struct pbSignalable * );
    struct pbVector *( *result )( const Q * );
};
const Kind<struct inDnsQueryAddresses> addresses = {
    []( const Stack &stack, const std::string &name ) {
        return inDnsQueryAddressesCreate( stack.get(), string( name ).get(), nullptr );
    },
    inDnsQueryAddressesEnd, inDnsQueryAddressesError, inDnsQueryAddressesFailure, inDnsQueryAddressesEndAddSignalable,
    inDnsQueryAddressesAddressesVector };
const Kind<struct inDnsQueryDomainNames> domainNames = {
    []( const Stack &stack, const std::string &address ) {
        return inDnsQueryDomainNamesCreate(
            stack.get(), pb::adopt( inAddressTryCreateFromCstr( address.c_str(), -1 ) ).get(), nullptr );
    },
    inDnsQueryDomainNamesEnd, inDnsQueryDomainNamesError, inDnsQueryDomainNamesFailure,
    inDnsQueryDomainNamesEndAddSignalable, inDnsQueryDomainNamesDomainNamesVector };
const Kind<struct inDnsQuerySrv> services = {
    []( const Stack &stack, const std::string &service ) {
        return inDnsQuerySrvCreate( stack.get(), string( service ).get(), nullptr );
    },
    inDnsQuerySrvEnd, inDnsQuerySrvError, inDnsQuerySrvFailure, inDnsQuerySrvEndAddSignalable,
    inDnsQuerySrvDataInSrvsVector };

template <class Q> struct Query {
    const Kind<Q> &kind;
    pb::Ref<Q> query;
    pb::Ref<struct pbBarrier> barrier = pb::adopt( pbBarrierCreate( 1 ) );
    pb::Ref<struct pbSignalable> signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );

    Query( const Kind<Q> &kind, const Stack &stack, const std::string &subject )
        : kind( kind ), query( pb::adopt( kind.create( stack, subject ) ) )
    {
        kind.add( query.get(), signalable.get() );
    }
    bool ended() const { return kind.end( query.get() ); }
    // What it came to: the result, or the reason.
    Texts outcome() const
    {
        pbBarrierPass( barrier.get() );
        EXPECT_TRUE( kind.end( query.get() ) );
        if ( !kind.error( query.get() ) )
            return texts( kind.result( query.get() ) );
        EXPECT_FALSE( pb::adopt( kind.result( query.get() ) ) );
        return { pb::utf8( pb::adopt( inDnsQueryFailureToString( kind.failure( query.get() ) ) ) ) };
    }
};

template <class Q> Texts ask( const Kind<Q> &kind, const Stack &stack, const std::string &subject )
{
    return Query<Q>( kind, stack, subject ).outcome();
}

Texts failure( const std::string &reason )
{
    return { "IN_DNS_QUERY_FAILURE_" + reason };
}

#define SKIP_WITHOUT_DNS_HOST()                                                                                        \
    SKIP_WITHOUT_NAMESPACES();                                                                                         \
    if ( !KnotServer::installed() )                                                                                    \
    GTEST_SKIP() << "knotd is not installed"

TEST( DnsQueries, GetWhatAServerHas )
{
    SKIP_WITHOUT_DNS_HOST();
    std::string zone = "a A 192.0.2.2\na A 192.0.2.1\na AAAA 2001:db8::1\nc1 CNAME c2\nc2 CNAME c3\nc3 CNAME a\n"
                       "xn--bcher-kva A 192.0.2.7\ntext TXT \"no address\"\n_sip._udp SRV 10 5 5060 a\n"
                       "_none._udp SRV 0 0 0 .\n_alias._udp CNAME _sip._udp\n";
    Texts many;
    for ( int i = 0; i < 400; ++i ) {
        zone += "_many._tcp SRV " + std::to_string( i ) + " 1 5060 host" + std::to_string( i ) + ".rack\n";
        many.push_back( std::to_string( i ) + " 1 5060 host" + std::to_string( i ) + ".rack.example.test" );
    }
    const NetNamespace host;
    host.scenario( [&] {
        useLoopbackResolver();
        const KnotServer server(
            { { "example.test", zone },
              { "2.0.192.in-addr.arpa", "1 PTR a.example.test.\n2 PTR xn--bcher-kva.example.test.\n" },
              { "empty.test", "" } } );
        const ModuleHost modules;
        const Stack stack = makeStack();
        EXPECT_THAT( ask( addresses, stack, "a.example.test" ),
                     ElementsAre( "192.0.2.1", "192.0.2.2", "2001:db8::1" ) );
        EXPECT_EQ( ask( addresses, stack, "c1.example.test" ), ask( addresses, stack, "a.example.test" ) );
        EXPECT_THAT( ask( addresses, stack, "b\u00FCcher.example.test" ), ElementsAre( "192.0.2.7" ) );
        EXPECT_EQ( ask( addresses, stack, "missing.example.test" ), failure( "NO_NAME" ) );
        EXPECT_EQ( ask( addresses, stack, "text.example.test" ), failure( "NO_DATA" ) );
        EXPECT_EQ( ask( addresses, stack, "any.empty.test" ), failure( "NO_ANSWER" ) ); // SERVFAIL
        // A backslash begins no escape: these are not "a" and "_sip".
        EXPECT_EQ( ask( addresses, stack, "\\097.example.test" ), failure( "NO_NAME" ) );
        EXPECT_EQ( ask( services, stack, "\\095sip._udp.example.test" ), failure( "NO_NAME" ) );
        std::string tooLong = "example.test";
        while ( tooLong.size() <= 253 )
            tooLong.insert( 0, std::string( 60, 'a' ) + "." );
        EXPECT_EQ( ask( addresses, stack, tooLong ), failure( "NOT_ASKABLE" ) );
        EXPECT_EQ( ask( services, stack, tooLong ), failure( "NOT_ASKABLE" ) );
        EXPECT_THAT( ask( domainNames, stack, "192.0.2.1" ), ElementsAre( "a.example.test" ) );
        EXPECT_THAT( ask( domainNames, stack, "192.0.2.2" ), ElementsAre( "b\u00FCcher.example.test" ) );
        EXPECT_THAT( ask( domainNames, stack, "192.0.2.3" ), ElementsAre( "192.0.2.3" ) ); // no name, the text instead
        EXPECT_THAT( ask( services, stack, "_sip._udp.example.test" ), ElementsAre( "10 5 5060 a.example.test" ) );
        EXPECT_THAT( ask( services, stack, "_alias._udp.example.test" ), ElementsAre( "10 5 5060 a.example.test" ) );
        EXPECT_THAT( ask( services, stack, "_none._udp.example.test" ), ElementsAre( "0 0 0 null" ) );
        EXPECT_EQ( ask( services, stack, "_many._tcp.example.test" ), many ); // too many for a datagram
        EXPECT_EQ( ask( services, stack, "_missing._udp.example.test" ), failure( "NO_NAME" ) );
        EXPECT_EQ( ask( services, stack, "a.example.test" ), failure( "NO_DATA" ) );
        // The blocking forms, of which the first address is the one nearest to the stack's own.
        const auto best = pb::adopt(
            inDnsQueryAddressForDomainName( stack.get(), string( "a.example.test" ).get(), nullptr, nullptr ) );
        EXPECT_EQ( pb::utf8( pb::adopt( inAddressToString( best.get() ) ) ), "192.0.2.1" );
        const auto service = string( "_many._tcp.example.test" );
        EXPECT_EQ( texts( inDnsQuerySrv( stack.get(), service.get(), nullptr, nullptr ) ), many );
    } );
}

// Answers by the first label of the question.
struct Misbehaviour {
    int asked = 0; // for "back"

    std::optional<std::string> operator()( const std::string &query, bool tcp )
    {
        const auto byte = [&]( size_t index ) { return unsigned( static_cast<unsigned char>( query.at( index ) ) ); };
        const size_t end = query.find( '\0', 12 ); // of the question's name
        const std::string name = query.substr( 13, byte( 12 ) ), question = query.substr( 12, end + 5 - 12 );
        const unsigned type = byte( end + 2 ), id = byte( 0 ) << 8 | byte( 1 );
        const auto answer = [&]( unsigned flags, const std::string &data ) {
            DnsWire wire( flags, id );
            wire.question( question.substr( 0, question.size() - 4 ), type );
            if ( !data.empty() )
                wire.answer( dnsPointer( 12 ), type, data );
            return wire.bytes;
        };
        const std::string good = type == 1    ? std::string( "\300\0\2\1", 4 )
                                 : type == 33 ? dns16( 1 ) + dns16( 1 ) + dns16( 5060 ) + dnsName( "a.b" )
                                              : "";
        if ( name.starts_with( "silent" ) || ( name == "back" && ++asked <= 2 ) ) // two: A and AAAA
            return std::nullopt;
        if ( name == "garbage" )
            return query.substr( 0, 2 ) + std::string( 40, '\xFF' );
        if ( name == "mangled" ) // a target that is no valid name
            return answer( 0x8180, dns16( 1 ) + dns16( 1 ) + dns16( 1 ) + std::string( "\4a..b\0", 6 ) );
        if ( name == "cut" && !tcp )
            return answer( 0x8380, "" );
        if ( name == "failing" )
            return answer( 0x8182, "" );
        return answer( 0x8180, good );
    }
};

TEST( DnsQueries, EndWhateverAServerDoes )
{
    SKIP_WITHOUT_NAMESPACES();
    const NetNamespace host;
    host.scenario( [] {
        useLoopbackResolver();
        const HandmadeServer server{ Misbehaviour() };
        const ModuleHost modules;
        const Stack stack = makeStack( 0 );
        EXPECT_THAT( ask( addresses, stack, "good.test" ), ElementsAre( "192.0.2.1" ) );
        EXPECT_THAT( ask( addresses, stack, "cut.test" ), ElementsAre( "192.0.2.1" ) );
        EXPECT_THAT( ask( services, stack, "cut.test" ), ElementsAre( "1 1 5060 a.b" ) );
        EXPECT_EQ( ask( services, stack, "mangled.test" ), failure( "BAD_ANSWER" ) );
        EXPECT_EQ( ask( services, stack, "failing.test" ), failure( "NO_ANSWER" ) );
        EXPECT_EQ( ask( addresses, stack, "failing.test" ), failure( "NO_ANSWER" ) );
        // Each of these takes the resolver its second.
        const Query garbage( addresses, stack, "garbage.test" ), silent( addresses, stack, "silent.test" ),
            back( addresses, stack, "back.test" );
        EXPECT_EQ( ask( services, stack, "silent.test" ), failure( "NO_ANSWER" ) );
        EXPECT_EQ( garbage.outcome(), failure( "NO_ANSWER" ) );
        EXPECT_EQ( silent.outcome(), failure( "NO_ANSWER" ) );
        EXPECT_EQ( back.outcome(), failure( "NO_ANSWER" ) );
        // Another name, lest the failure is still known.
        EXPECT_THAT( ask( addresses, stack, "back.again.test" ), ElementsAre( "192.0.2.1" ) );
    } );
}

TEST( DnsQueries, ThatAreStuckOrGivenUpKeepOthersFromNothing )
{
    SKIP_WITHOUT_NAMESPACES();
    const NetNamespace host;
    host.scenario( [] {
        useLoopbackResolver();
        const HandmadeServer server{ Misbehaviour() };
        const ModuleHost modules;
        const Stack stack = makeStack();
        std::vector<Query<struct inDnsQuerySrv>> stuck;
        for ( int i = 0; i < 10; ++i )
            stuck.emplace_back( services, stack, "silent" + std::to_string( i ) + ".test" );
        EXPECT_THAT( ask( addresses, stack, "good.test" ), ElementsAre( "192.0.2.1" ) );
        EXPECT_FALSE( stuck.back().ended() );
        stuck.clear();

        // Nobody waits for the outcome of these any more: no look-up is made for them, but for those under way.
        const TraceCatcher catcher;
        const Stack impatient = makeStack( 60'000, 1 );
        for ( int i = 0; i < 40; ++i ) {
            const auto name = string( "silent" + std::to_string( i ) + ".test" );
            EXPECT_THAT(
                texts( inDnsQueryAddressesVectorForDomainName( impatient.get(), name.get(), nullptr, nullptr ) ),
                ElementsAre() );
        }
        EXPECT_THAT( ask( addresses, stack, "better.test" ), ElementsAre( "192.0.2.1" ) );
        EXPECT_LE( catcher.texts( "in___ImpDnsDoQueryAddresses()" ).size(), 5u * 4 ); // four texts each
        // Who asks for a name that was given up gets a look-up of its own.
        EXPECT_EQ( ask( addresses, impatient, "silent39.test" ), failure( "NO_ANSWER" ) );
    } );
}

TEST( DnsQueries, EndOnceEachWithoutAServerAndAtShutdown )
{
    SKIP_WITHOUT_NAMESPACES();
    const NetNamespace host;
    host.scenario( [] {
        useLoopbackResolver();
        std::optional<HandmadeServer> silent;
        const TraceCatcher catcher;
        const auto ends = [&] { // of the queries' state, as they trace it
            std::map<pbInt, int> count;
            for ( const auto &event : catcher.events() )
                if ( event.kind == TR_EVENT_PROPERTY && event.key == "inDnsError" )
                    ++count[event.stream];
            return count;
        };
        std::vector<pb::Ref<struct in___DnsQueryAddressesImp>> queries; // which hold no stack
        {
            const ModuleHost modules;
            const Stack stack = makeStack();
            const auto askThousand = [&]( const std::string &domain ) {
                queries.clear();
                for ( int i = 0; i < 1000; ++i )
                    queries.push_back( pb::adopt( in___StackDnsQueryAddresses(
                        stack.get(), string( std::to_string( i ) + domain ).get(), nullptr ) ) );
            };
            askThousand( ".test" );
            for ( const auto &query : queries ) {
                const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
                const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
                in___DnsQueryAddressesImpEndAddSignalable( query.get(), signalable.get() );
                pbBarrierPass( barrier.get() );
                EXPECT_TRUE( in___DnsQueryAddressesImpError( query.get() ) );
            }
            EXPECT_EQ( ends().size(), 1000u );

            silent.emplace( []( const std::string &, bool ) { return std::nullopt; } );
            askThousand( ".silent.test" );
        }
        // Each in the second that the resolver takes would have been four minutes.
        for ( const auto &query : queries )
            EXPECT_TRUE( in___DnsQueryAddressesImpError( query.get() ) );
        for ( const auto &[stream, count] : ends() )
            EXPECT_EQ( count, 1 ) << stream;
        EXPECT_EQ( ends().size(), 2000u );
    } );
}

// Stack addresses that come and go, answers that are forgotten at once, and many who ask the same.
TEST( DnsQueries, ShowNothingHalfToManyThreads )
{
    SKIP_WITHOUT_NAMESPACES();
    const int rounds = std::getenv( "IN_SOAK" ) ? 2000 : 60;
    const NetNamespace host;
    host.scenario( [rounds] {
        useLoopbackResolver();
        const HandmadeServer server{ Misbehaviour() };
        const ModuleHost modules;
        const Stack stack = makeStack( 5 );
        std::atomic<bool> asking = true;
        std::thread flipping( [&] {
            for ( int flip = 0; asking; ++flip ) {
                auto options = pb::adopt( inStackOptions( stack.get() ) );
                auto dns = pb::adopt( inOptionsDnsOptions( options.get() ) );
                inDnsOptionsSetCacheTimeout( dns.address(), flip % 6 );
                inOptionsSetDnsOptions( options.address(), dns.get() );
                inOptionsSetAddressVersion( options.address(), flip % 2 ? IN_ADDRESS_VERSION_6 : IN_ADDRESS_VERSION_4 );
                inStackSetOptions( stack.get(), options.get() );
                std::this_thread::sleep_for( std::chrono::milliseconds( 1 ) ); // the rate of the flips
            }
        } );
        std::vector<std::thread> askers;
        std::atomic<int> good = 0;
        for ( int asker = 0; asker < 16; ++asker )
            askers.emplace_back( [&] {
                for ( int round = 0; round < rounds; ++round ) {
                    const Query query( addresses, stack, "n" + std::to_string( round % 7 ) + ".test" );
                    const Texts outcome = query.outcome();
                    if ( outcome == Texts{ "192.0.2.1" } )
                        ++good;
                    else
                        EXPECT_EQ( outcome, failure( "FLUSHED" ) );
                    EXPECT_EQ( query.outcome(), outcome ); // and so it stays
                }
            } );
        for ( auto &asker : askers )
            asker.join();
        asking = false;
        flipping.join();
        EXPECT_GT( good, 0 );
    } );
}

} // namespace
