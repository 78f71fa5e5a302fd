// Address filters on a stack: what is asked of DNS and when, when a list is made and published, and that checks neither
// wait for it nor see half of one.
#include "in/filter/in_filter.h"

#include "cs/cs_configuration.h"
#include "cs/cs_status_reporter.h"
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/dns/in_dns_options.h"
#include "in/filter/in_filter_options.h"
#include "pb/pb_barrier.h"
#include "pb/pb_signalable.h"
#include "pb/pb_store.h"
#include "support/fake_resolver.hpp"
#include "support/in_tables.hpp"
#include "support/module_host.hpp"
#include "support/trace_catcher.hpp"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

using Filter = pb::Ref<struct inFilter>;
using Options = pb::Ref<struct inFilterOptions>;
using Stack = pb::Ref<struct inStack>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

support::FakeResolver &resolver = support::FakeResolver::instance();

constexpr const char *rebuild = "in___FilterImpRebuild()";
#define ADDRESS R"("flags":"IN_FILTER_ENTRY_FLAG_ADDRESS")"
#define NAME R"("flags":"IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES")"
#define SERVICE R"("flags":"IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV")"

// A stack on loopback that keeps no answer, so that each rebuild asks anew.
Stack makeStack()
{
    auto dns = pb::adopt( inDnsOptionsCreate() );
    inDnsOptionsSetCacheTimeout( dns.address(), 0 );
    inDnsOptionsSetNegativeCacheTimeout( dns.address(), 0 );
    auto made = pb::adopt( inOptionsCreate() );
    inOptionsSetFlags( made.address(), IN_FLAG_LOOPBACK_ONLY );
    inOptionsSetAddressVersion( made.address(), IN_ADDRESS_VERSION_4 );
    inOptionsSetDnsOptions( made.address(), dns.get() );
    return pb::adopt( inStackCreate( made.get(), nullptr ) );
}

Options options( const std::string &entries, const Stack &stack = nullptr, pbInt interval = 600'000 )
{
    Options made = pb::adopt( inFilterOptionsRestore( support::store( "{\"entries\":[" + entries + "]}" ).get() ) );
    if ( stack )
        inFilterOptionsSetStack( made.address(), stack.get() );
    inFilterOptionsSetRebuildInterval( made.address(), interval );
    return made;
}

Filter makeFilter( const Options &from )
{
    return pb::adopt( inFilterCreate( from.get(), nullptr ) );
}

bool permits( const Filter &filter, const std::string &address )
{
    return inFilterCheck( filter.get(), pb::adopt( inAddressTryCreateFromCstr( address.c_str(), -1 ) ).get() );
}

std::string why( const Filter &filter, const std::string &address )
{
    const auto ina = pb::adopt( inAddressTryCreateFromCstr( address.c_str(), -1 ) );
    const auto store = pb::adopt( inFilterExplain( filter.get(), ina.get() ) );
    return pb::utf8( pb::adopt( pbStoreValueCstr( store.get(), "text", -1 ) ) );
}

std::string item( const Filter &filter, const char *key )
{
    const auto status = pb::adopt( inFilterCsStatus( filter.get() ) );
    const auto items = pb::adopt( csStatusReporterItems( status.get() ) );
    return pb::utf8( pb::adopt( pbStoreValueCstr( items.get(), key, -1 ) ) );
}

// Until the condition holds, looked at whenever the filter's status changes.
void await( const Filter &filter, const std::function<bool()> &condition )
{
    const auto status = pb::adopt( inFilterCsStatus( filter.get() ) );
    for ( ;; ) {
        const auto barrier = pb::adopt( pbBarrierCreate( 1 ) );
        const auto signalable = pb::adopt( pbSignalableCreateBarrier( barrier.get() ) );
        csStatusReporterUpdateAddSignalable( status.get(), signalable.get() );
        if ( condition() )
            return;
        pbBarrierPass( barrier.get() );
    }
}
// And until the stack has forgotten the answers, which it shares with who asks meanwhile.
void awaitList( const Filter &filter )
{
    await( filter, [&] { return item( filter, "inFilterRebuilding" ) == "null"; } );
    pr___Quiesce();
}

// "ADDRESS/BITS" of each list that was published, and how many rebuilds were begun.
std::vector<std::string> lists( const support::TraceCatcher &catcher )
{
    std::vector<std::string> found;
    for ( const auto &event : catcher.events() )
        if ( event.name == rebuild && event.key == "inFilterAddresses" )
            found.push_back( support::json( event.store.share() ) );
    return found;
}
ptrdiff_t rebuilds( const support::TraceCatcher &catcher )
{
    ptrdiff_t count = 0;
    for ( const auto &event : catcher.events() )
        count += event.name == rebuild && event.kind == TR_EVENT_CREATED;
    return count;
}

TEST( Filter, PermitsTheStacksAddress )
{
    const Stack stack = makeStack();
    Options made = options( "", stack );
    const Filter filter = makeFilter( made );
    EXPECT_TRUE( permits( filter, "127.0.0.1" ) );
    EXPECT_FALSE( permits( filter, "127.0.0.2" ) || permits( filter, "::1" ) );
    EXPECT_EQ( why( filter, "127.0.0.1" ), "permitted: it is the stack's own address" );
    EXPECT_EQ( why( filter, "::1" ), "refused: there is no entry" );
    inFilterOptionsSetStackAddressPermitted( made.address(), false );
    inFilterSetOptions( filter.get(), made.get() );
    pr___Quiesce();
    EXPECT_FALSE( permits( filter, "127.0.0.1" ) );
}

// What is looked up for an entry, and the list that comes of it.
TEST( Filter, AsksForNamesAndServices )
{
    resolver.set( "two.example", { "192.0.2.1", "2001:db8::1" } );
    resolver.set( "empty.example", {} );
    resolver.set( "_sip.srv.example", { "two.example", "", "gone.example", "two.example", "a\u2026" } );
    const std::string longer = std::string( 63, 'a' ) + "." + std::string( 63, 'b' ) + "." + std::string( 63, 'c' ) +
                               "." + std::string( 62, 'd' );
    const struct {
        std::string entry;
        std::vector<std::string> asked;
        const char *list, *failures;
    } rows[] = {
        { R"({"host":"two.example",)" NAME R"(,"addressMatchingBits":24})", { "two.example" },
          R"(["192.0.2.1/24","2001:db8::1/24"])", "null" },
        { R"({"host":"two.example",)" NAME R"(,"addressVersion":"IN_ADDRESS_VERSION_6"})", { "two.example" },
          R"(["2001:db8::1/-1"])", "entry 1: 192.0.2.1: not of the entry's address version" },
        { R"({"host":"gone.example",)" NAME "}", { "gone.example" }, "{}", "entry 1: gone.example: the look-up failed" },
        { R"({"host":"two.example",)" ADDRESS "}", {}, "{}",
          "entry 1: two.example: not an address, and the flags do not let it be looked up" },
        { R"({"host":"two.example"})", {}, "{}", "null" },
        // An address is a valid name, too, that is asked for in vain.
        { R"({"host":"10.0.0.1","flags":"IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"})",
          { "10.0.0.1" }, R"(["10.0.0.1/-1"])", "null" },
        { R"({"host":"::1",)" NAME "}", { "::1" }, "{}", "entry 1: ::1: the look-up failed" },
        // Valid names that are no question: U+2026 prepares to "...", U+2024 to ".".
        { R"({"host":"a)" "\u2026" R"(",)" NAME "}", {}, "{}", "entry 1: a\u2026: not a name that can be looked up" },
        { "{\"host\":\"" + longer + "\"," NAME "}", { longer }, "{}", nullptr }, // than DNS has; hosts files may know it
        { R"({"host":"srv.example","dnsSrvPrefixes":["_sip"],)" SERVICE "}",
          { "_sip.srv.example", "two.example", "gone.example" }, R"(["192.0.2.1/-1","2001:db8::1/-1"])",
          "entry 1: a\u2026: not a name that can be looked up; entry 1: gone.example: the look-up failed" },
        { R"({"host":"srv.example",)" SERVICE "}", {}, "{}", "entry 1: srv.example: no prefix names a service of it" },
    };
    const Stack stack = makeStack();
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.entry );
        support::TraceCatcher catcher;
        resolver.takeAsked();
        const Filter filter = makeFilter( options( row.entry, stack ) );
        awaitList( filter );
        EXPECT_THAT( resolver.takeAsked(), testing::UnorderedElementsAreArray( row.asked ) );
        EXPECT_THAT( lists( catcher ), ElementsAre( row.list ) );
        if ( row.failures )
            EXPECT_EQ( item( filter, "inFilterFailures" ), row.failures );
    }
}

TEST( Filter, ListsWhatAgreesInAddressAndBitsOnce )
{
    resolver.set( "twice.example", { "10.0.0.0", "10.0.0.1" } );
    support::TraceCatcher catcher;
    const Filter filter =
        makeFilter( options( R"({"host":"10.0.0.0",)" ADDRESS R"(},{"host":"10.0.0.0",)" ADDRESS
                             R"(,"addressMatchingBits":8},{"host":"10.0.0.0",)" ADDRESS R"(,"addressMatchingBits":8},
                             {"host":"twice.example",)" NAME "}",
                             makeStack() ) );
    awaitList( filter );
    EXPECT_THAT( lists( catcher ), ElementsAre( R"(["10.0.0.0/-1","10.0.0.0/8","10.0.0.1/-1"])" ) );
    EXPECT_EQ( item( filter, "inFilterAddresses" ), "3" );
    // Every entry still tells what it has.
    EXPECT_EQ( why( filter, "11.0.0.1" ), "refused: entry 1 matches 7 of 32 bits; entry 2 matches 7 of 8 bits; entry 3 "
                                          "matches 7 of 8 bits; entry 4 resolved to 10.0.0.0, 10.0.0.1" );
}

// A server's answer cannot make a filter ask for every name that fits, nor keep the longest of them.
TEST( Filter, AsksForSomeTargetsOfAnAnswer )
{
    std::vector<std::string> targets;
    for ( int i = 0; i < 2600; ++i )
        targets.push_back( "t" + std::to_string( i ) + ".example" );
    std::string longName = "example";
    for ( int i = 0; i < 600; ++i )
        longName = "a." + longName;
    targets.insert( targets.begin(), { longName, longName } );
    resolver.set( "_sip.hostile.example", targets );
    support::TraceCatcher catcher;
    resolver.takeAsked();
    const Options hostile =
        options( R"({"host":"hostile.example","dnsSrvPrefixes":["_sip"],)" SERVICE "}", makeStack() );
    const Filter filter = makeFilter( hostile );
    awaitList( filter );
    EXPECT_EQ( resolver.takeAsked().size(), 1001u );
    EXPECT_TRUE( catcher.notable( rebuild ) );
    EXPECT_THAT( catcher.texts( rebuild ),
                 ElementsAre( "[in___FilterImpRebuild()] service: _sip.hostile.example, targets left out: 1600" ) );
    EXPECT_THAT( item( filter, "inFilterFailures" ),
                 HasSubstr( "entry 1: _sip.hostile.example: targets longer than names can be are left out: 2; entry 1: "
                            "_sip.hostile.example: only 1000 targets are asked for, 1600 more are left out" ) );

    // Nor can it keep others waiting, whose look-ups share their threads with those of its targets.
    resolver.hold( "_sip" );
    const Filter waiting = makeFilter( hostile );
    resolver.awaitAsked( "t1.example" );
    const Filter other = makeFilter( options( R"({"host":"other.example",)" NAME "}", makeStack() ) );
    resolver.awaitAsked( "other.example" );
    resolver.letGo();
    awaitList( waiting );
}

TEST( Filter, KeepsItsListUntilTheNextIsWhole )
{
    resolver.set( "host.example", { "192.0.2.1" } );
    const Stack stack = makeStack();
    resolver.hold();
    const Filter filter = makeFilter( options( R"({"host":"10.0.0.1",)" ADDRESS R"(},{"host":"host.example",)" NAME "}",
                                               stack ) );
    EXPECT_FALSE( permits( filter, "10.0.0.1" ) ); // not before the look-ups of the same list have ended
    EXPECT_EQ( why( filter, "10.0.0.1" ), "refused: names are looked up, and there is no list yet" );
    resolver.letGo();
    awaitList( filter );
    EXPECT_TRUE( permits( filter, "10.0.0.1" ) && permits( filter, "192.0.2.1" ) );

    resolver.hold();
    const auto status = pb::adopt( inFilterCsStatus( filter.get() ) );
    inFilterSetOptions( filter.get(), options( R"({"host":"host.example",)" NAME "}", stack ).get() );
    await( filter, [&] { return item( filter, "inFilterRebuilding" ) == "true"; } );
    EXPECT_TRUE( permits( filter, "10.0.0.1" ) );
    EXPECT_FALSE( csStatusReporterUp( status.get() ) );
    // Others abandon that rebuild and start their own; equal ones do not.
    support::TraceCatcher catcher;
    for ( int i = 0; i < 2; ++i )
        inFilterSetOptions( filter.get(), options( R"({"host":"10.0.0.2",)" ADDRESS "}", stack ).get() );
    pr___Quiesce();
    EXPECT_FALSE( permits( filter, "10.0.0.1" ) );
    EXPECT_TRUE( permits( filter, "10.0.0.2" ) && csStatusReporterUp( status.get() ) );
    resolver.letGo();
    inFilterSetOptions( filter.get(), options( R"({"host":"10.0.0.2",)" ADDRESS "}", stack ).get() );
    pr___Quiesce();
    EXPECT_EQ( rebuilds( catcher ), 1 );
    EXPECT_EQ( lists( catcher ).size(), 1u );
}

TEST( Filter, LooksNamesUpAgainAfterItsInterval )
{
    support::DrivenClock clock;
    const Stack stack = makeStack();
    resolver.set( "moving.example", { "192.0.2.1" } );
    const Filter filter = makeFilter( options( R"({"host":"moving.example",)" NAME "}", stack, 1000 ) );
    awaitList( filter );
    support::TraceCatcher catcher;
    resolver.set( "moving.example", { "192.0.2.2" } );
    clock.advance( 999 );
    EXPECT_TRUE( permits( filter, "192.0.2.1" ) && rebuilds( catcher ) == 0 );
    resolver.hold();
    clock.advance( 1 );
    clock.advance( 100'000 ); // the next interval begins when the look-ups have ended
    EXPECT_EQ( rebuilds( catcher ), 1 );
    EXPECT_TRUE( permits( filter, "192.0.2.1" ) );
    resolver.letGo();
    await( filter, [&] { return permits( filter, "192.0.2.2" ); } );
    EXPECT_FALSE( permits( filter, "192.0.2.1" ) );
    EXPECT_THAT( lists( catcher ), ElementsAre( R"(["192.0.2.2/-1"])" ) );
}

TEST( Filter, FollowsTheStackOfItsRecord )
{
    support::DrivenClock clock;
    resolver.set( "late.example", { "192.0.2.9" } );
    support::TraceCatcher catcher;
    Options made = options( R"({"host":"late.example",)" NAME "}", nullptr, 1000 );
    inFilterOptionsSetStackName( made.address(), pb::string( "lo" ).get() );
    const Filter filter = makeFilter( made );
    EXPECT_EQ( why( filter, "127.0.0.1" ),
               "refused: entry 1 has no address: late.example: there is no stack to ask for it" );
    const std::string text = R"({"objects":{"lo":{"sort":"IN_STACK","config":{"flags":"IN_FLAG_LOOPBACK_ONLY",
                             "addressVersion":"IN_ADDRESS_VERSION_4"}}}})";
    pb::Ref<struct pbVector> problems;
    const auto configuration = pb::adopt( csConfigurationTryParse(
        text.data(), static_cast<pbInt>( text.size() ), pb::string( "test" ).get(), problems.address() ) );
    ASSERT_TRUE( configuration );
    csConfigurationStart( configuration.get() );
    pr___Quiesce();
    EXPECT_TRUE( permits( filter, "127.0.0.1" ) );
    EXPECT_EQ( rebuilds( catcher ), 1 ); // a stack alone does not make for another list
    EXPECT_THAT( catcher.links(), testing::Contains( support::TraceCatcher::Link{ "IN_FILTER", "IN_STACK", 0,
                                                                                  "inFilterInStack" } ) );
    clock.advance( 1000 );
    await( filter, [&] { return permits( filter, "192.0.2.9" ); } );
    csConfigurationStop( configuration.get() );
    pr___Quiesce();
    EXPECT_FALSE( permits( filter, "127.0.0.1" ) );
    EXPECT_TRUE( permits( filter, "192.0.2.9" ) ); // until the next list
}

// Threads that check while lists change and names are looked up: what is in every list is permitted all the time, what is
// in none never, and each list is published once.
TEST( Filter, ChecksBesideRebuilds )
{
    resolver.set( "slow.example", { "192.0.2.7" } );
    const Stack stack = makeStack();
    std::string even = R"({"host":"192.0.2.1",)" ADDRESS "}", odd;
    for ( int i = 0; i < 200; ++i ) {
        even += R"(,{"host":"10.0.)" + std::to_string( i ) + R"(.0",)" ADDRESS R"(,"addressMatchingBits":24})";
        odd += R"({"host":"2001:db8::)" + std::to_string( i ) + R"(",)" ADDRESS "},";
    }
    even += R"(,{"host":"slow.example",)" NAME "}";
    odd += R"({"host":"192.0.2.1",)" ADDRESS "}";
    const Filter filter = makeFilter( options( odd, stack ) );
    std::atomic<bool> over = false;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for ( int i = 0; i < 8; ++i )
        threads.emplace_back( [&] {
            while ( !over )
                wrong += !permits( filter, "192.0.2.1" ) || permits( filter, "192.0.2.2" );
        } );
    support::TraceCatcher catcher;
    constexpr int rounds = 20;
    for ( int i = 0; i < rounds; ++i ) {
        resolver.hold();
        inFilterSetOptions( filter.get(), options( even, stack ).get() );
        pr___Quiesce();
        resolver.letGo();
        await( filter, [&] { return permits( filter, "192.0.2.7" ); } );
        inFilterSetOptions( filter.get(), options( odd, stack ).get() );
        await( filter, [&] { return !permits( filter, "192.0.2.7" ); } );
    }
    over = true;
    for ( std::thread &thread : threads )
        thread.join();
    EXPECT_EQ( wrong, 0 );
    EXPECT_EQ( rebuilds( catcher ), 2 * rounds );
    EXPECT_EQ( lists( catcher ).size(), 2u * rounds );
}

// Filters and their stacks go while look-ups run, in any order.
TEST( Filter, EndsWhileNamesAreLookedUp )
{
    support::TraceCatcher catcher;
    resolver.hold();
    for ( int i = 0; i < 10; ++i ) {
        const Stack stack = makeStack();
        const Filter filter = makeFilter( options( R"({"host":"held.example",)" NAME "}", stack ) );
    }
    EXPECT_EQ( catcher.texts( "IN_FILTER" ), std::vector<std::string>( 10, "[in___FilterImpHalt()]" ) );
    resolver.letGo();
}

} // namespace
