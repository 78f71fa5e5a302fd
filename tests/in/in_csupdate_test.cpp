// Configuration of older versions: each step of its migration before and after, all of them, and all of them again.
#include "cs/cs_json.h"
#include "cs/cs_migration.h"
#include "cs/cs_module_backend.h"
#include "cs/cs_update.h"
#include "cs/cs_update_backend.h"
#include "in/base/in_module.h"
#include "in/csupdate/in_csupdate_internal.h"
#include "pb/pb_store.h"
#include "support/death_table.hpp"
#include "support/module_host.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/wait.h>

namespace {

using Store = pb::Ref<struct pbStore>;
using Update = pb::Ref<struct csUpdate>;

Store store( const std::string &json )
{
    const Store result = pb::adopt( csJsonTryToStore( pb::string( json ).get() ) );
    EXPECT_TRUE( result ) << json;
    return result;
}

std::string json( const Update &update )
{
    return pb::utf8( pb::adopt( csJsonFromStore( pb::adopt( csUpdateCurrent( update.get() ) ).get(), CS_JSON_SHORT ) ) );
}

std::string version( const std::string &text ) { return R"("modules":{"in":{"version":")" + text + R"("}})"; }

// A tree with one object "x".
std::string tree( const char *sort, const std::string &config, const std::string &modules )
{
    return std::string( R"({"objects":{"x":{"sort":")" ) + sort + R"(","config":)" + config + "}}," + modules + "}";
}

struct Step {
    csUpdateFunc *func;
    pbInt lastMajor;
    const char *target;
};
constexpr Step steps[] = {
    { in___Csupdate20130104Func, 2, "3.0" },   { in___Csupdate20171013Func, 7, "8.0" },
    { in___Csupdate20180703Func, 8, "9.0" },   { in___Csupdate20190306Func, 10, "11.0" },
    { in___Csupdate20200204Func, 11, "12.0" }, { in___Csupdate20200219Func, 12, "13.0" },
};
enum { dnsOptions, accessTool, privateKey, filterEntries, certificateFlags, networks };

Update run( const Step &step, const std::string &json )
{
    Update update = pb::adopt( csUpdateCreate( store( json ).get() ) );
    step.func( nullptr, update.address() );
    return update;
}

void expectTree( const Update &update, const std::string &expected )
{
    EXPECT_EQ( json( update ), pb::utf8( pb::adopt( csJsonFromStore( store( expected ).get(), CS_JSON_SHORT ) ) ) );
}

TEST( Csupdate, EachStep )
{
    const struct {
        int step;
        const char *sort, *before, *after; // after null: unchanged
    } rows[] = {
        { dnsOptions, "IN_STACK", R"({"disableReverseDnsLookup":true,"a":1})", R"({"a":1,"dnsOptions":{"disableQueryDomainNames":true}})" },
        { dnsOptions, "IN_STACK", R"({"disableReverseDnsLookup":false,"dnsOptions":{"b":2,"disableQueryDomainNames":true}})",
          R"({"dnsOptions":{"b":2,"disableQueryDomainNames":false}})" },
        { dnsOptions, "IN_STACK", R"({"disableReverseDnsLookup":"1"})", nullptr },
        { dnsOptions, "IN_FILTER", R"({"disableReverseDnsLookup":true})", nullptr },
        { privateKey, "IN_TLS_STACK", R"({"rsaPrivateKey":{"k":"v"}})", R"({"privateKey":{"k":"v"}})" },
        { privateKey, "IN_TLS_STACK", R"({"rsaPrivateKey":{"k":"v"},"privateKey":{}})", nullptr },
        { privateKey, "IN_TLS_STACK", R"({"rsaPrivateKey":"text"})", nullptr },
        { filterEntries, "IN_FILTER", R"({"entries":[{"host":"a"},{"host":"b","flags":""},"c"]})",
          R"({"entries":[{"host":"a","flags":"IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"},
              {"host":"b","flags":""},"c"]})" },
        { filterEntries, "IN_FILTER", R"({"entries":"none"})", nullptr },
        { certificateFlags, "IN_TLS_STACK",
          R"({"flags":"IN_TLS_FLAG_DISABLE_TLS_V1|IN_TLS_FLAG_DISABLE_TLS_V1_1|IN_TLS_FLAG_DISABLE_TLS_V1_2|IN_TLS_FLAG_DISABLE_TLS_V1_3|IN_TLS_FLAG_DISABLE_DTLS_V1|IN_TLS_FLAG_DISABLE_DTLS_V1_2|IN_TLS_FLAG_DONT_DEMAND_CLIENT_CERTIFICATE|IN_TLS_FLAG_DONT_VALIDATE_CLIENT_CERTIFICATE|IN_TLS_FLAG_DONT_VALIDATE_SERVER_CERTIFICATE|IN_TLS_FLAG_DONT_VALIDATE_HOSTNAME|IN_TLS_FLAG_INCLUDE_INSECURE_CIPHER_SUITES|IN_TLS_FLAG_GENERATE_AD_HOC_CERTIFICATE"})",
          R"({"flags":"IN_TLS_FLAG_DISABLE_TLS_V1|IN_TLS_FLAG_DISABLE_TLS_V1_1|IN_TLS_FLAG_DISABLE_TLS_V1_2|IN_TLS_FLAG_DISABLE_TLS_V1_3|IN_TLS_FLAG_DISABLE_DTLS_V1|IN_TLS_FLAG_DISABLE_DTLS_V1_2|IN_TLS_FLAG_INCLUDE_INSECURE_CIPHER_SUITES","certificateFlags":"IN_TLS_CERTIFICATE_FLAG_DONT_DEMAND_CLIENT|IN_TLS_CERTIFICATE_FLAG_DONT_VALIDATE_CLIENT|IN_TLS_CERTIFICATE_FLAG_DONT_VALIDATE_SERVER|IN_TLS_CERTIFICATE_FLAG_DISABLE_SUBJECT_CHECKS|IN_TLS_CERTIFICATE_FLAG_GENERATE_AD_HOC"})" },
        { certificateFlags, "IN_TLS_STACK", R"({"flags":"IN_TLS_FLAG_GENERATE_AD_HOC_CERTIFICATE | OTHER"})",
          R"({"flags":"","certificateFlags":"IN_TLS_CERTIFICATE_FLAG_GENERATE_AD_HOC"})" },
        { certificateFlags, "IN_TLS_STACK", R"({"flags":""})", R"({"flags":"","certificateFlags":""})" },
        { certificateFlags, "IN_TLS_STACK", R"({"flags":"IN_TLS_FLAG_DISABLE_TLS_V1|OTHER","certificateFlags":""})", nullptr },
        { certificateFlags, "IN_TLS_STACK", R"({"a":1})", nullptr },
        { networks, "IN_STACK", R"({"address":"10.1.2.3","addressMatchingBits":8,"a":1})", R"({"a":1,"network":"10.1.2.3/8"})" },
        { networks, "IN_STACK", R"({"address":"x","addressMatchingBits":""})", R"({"network":"x/"})" }, // texts, whatever they say
        { networks, "IN_STACK", R"({"address":"x","addressMatchingBits":8,"network":"::/0"})", nullptr },
        { networks, "IN_STACK", R"({"address":"10.1.2.3"})", nullptr },
        { networks, "IN_STACK", R"({"addressMatchingBits":8})", nullptr },
    };
    for ( const auto &[index, sort, before, after] : rows ) {
        SCOPED_TRACE( before );
        const Step &step = steps[index];
        const std::string last = std::to_string( step.lastMajor ), next = std::to_string( step.lastMajor + 1 );
        for ( const std::string &recorded : { last + ".9", std::string( "no version" ) } ) // both are brought up to date
            expectTree( run( step, tree( sort, before, version( recorded ) ) ), tree( sort, after ? after : before, version( step.target ) ) );
        expectTree( run( step, tree( sort, before, version( next + ".0" ) ) ), tree( sort, before, version( next + ".0" ) ) );
    }
}

TEST( Csupdate, AccessTool )
{
    const std::string name = R"({"objects":{"ipcAccessToolInitializeInStack":{"sort":"IN_STACK","config":)", end = "}}";
    const std::string reached = end + "," + version( "8.0" ) + "}";
    const std::pair<const char *, const char *> rows[] = {
        { R"({"interface":"lo"})", R"({"flags":"IN_FLAG_LOOPBACK_ONLY"})" },
        { R"({"interface":"lo","a":1})", R"({"interface":"lo","a":1})" },
        { R"({"interface":{}})", R"({"interface":{}})" },
        { R"({"a":1})", R"({"a":1})" },
        { "{}", "{}" },
    };
    for ( const auto &[before, after] : rows )
        expectTree( run( steps[accessTool], name + before + end + "}" ), name + after + reached );
    expectTree( run( steps[accessTool], tree( "IN_STACK", R"({"interface":"lo"})", version( "1.0" ) ) ),
                tree( "IN_STACK", R"({"interface":"lo"})", version( "8.0" ) ) );
}

TEST( Csupdate, StoredInterfaces )
{
    const auto modules = []( const std::string &version, const std::string &interfaces ) {
        return R"({"modules":{"other":{"info":{}},"in":{"info":{"interfaces":)" + interfaces + R"(},"version":")" + version + "\"}}}";
    };
    const std::string old = R"([
        {"identifier":"eth0","state":{"displayName":"E","state":"IN_SYSTEM_INTERFACE_STATE_UP","eui48Address":"02-00-00-00-00-01","mtu":1500,
         "linkSpeedReceive":7,"linkSpeedTransmit":8,"unicastAddresses":["10.0.0.1","fe80::1",{}],"end":false}},
        {"identifier":"eth1","state":{"state":"IN_SYSTEM_INTERFACE_STATE_DOWN","unicastAddresses":"x","mtu":{}}},
        {"state":{"state":"IN_SYSTEM_INTERFACE_STATE_TESTING","displayName":"T"}}, {"state":"text"}, "text"])";
    const std::string rewritten = R"([
        {"identifier":"eth0","state":{"displayName":"E","end":false,"status":"IN_NW_INTERFACE_STATUS_UP",
         "layer2Addresses":[{"mac":"02-00-00-00-00-01","type":"IN_NW_ADDRESS_TYPE_MAC"}],"layer2Mtu":1500,"layer2SpeedReceive":7,"layer2SpeedTransmit":8,
         "layer3UnicastAddresses":["10.0.0.1","fe80::1",{}],"layer3Networks":["10.0.0.1","fe80::1"]}},
        {"identifier":"eth1","state":{"status":"IN_NW_INTERFACE_STATUS_DOWN"}},
        {"state":{"displayName":"T"}}, {"state":"text"}, "text"])";
    expectTree( run( steps[networks], modules( "12.7", old ) ), modules( "13.0", rewritten ) );
    expectTree( run( steps[networks], modules( "12.7", rewritten ) ), modules( "13.0", rewritten ) );
    expectTree( run( steps[networks], modules( "13.0", old ) ), modules( "13.0", old ) );
}

// What each of the steps has something to do in.
const std::string oldest = R"({"objects":{
    "a":{"sort":"IN_STACK","config":{"disableReverseDnsLookup":true,"address":"10.0.0.1","addressMatchingBits":24}},
    "ipcAccessToolInitializeInStack":{"sort":"IN_STACK","config":{"interface":"lo"}},
    "t":{"sort":"IN_TLS_STACK","config":{"rsaPrivateKey":{},"flags":"IN_TLS_FLAG_DISABLE_TLS_V1"}},
    "f":{"sort":"IN_FILTER","config":{"entries":[{"host":"h"}]}}},
    "modules":{"in":{"info":{"interfaces":[{"state":{"unicastAddresses":["::1"],"state":"IN_SYSTEM_INTERFACE_STATE_UP"}}]}}}})";
const std::string newest = R"({"objects":{
    "a":{"sort":"IN_STACK","config":{"dnsOptions":{"disableQueryDomainNames":true},"network":"10.0.0.1/24"}},
    "ipcAccessToolInitializeInStack":{"sort":"IN_STACK","config":{"flags":"IN_FLAG_LOOPBACK_ONLY"}},
    "t":{"sort":"IN_TLS_STACK","config":{"flags":"IN_TLS_FLAG_DISABLE_TLS_V1","privateKey":{},"certificateFlags":""}},
    "f":{"sort":"IN_FILTER","config":{"entries":[{"host":"h",
         "flags":"IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"}]}}},
    "modules":{"in":{"info":{"interfaces":[{"state":{"status":"IN_NW_INTERFACE_STATUS_UP",
         "layer3UnicastAddresses":["::1"],"layer3Networks":["::1"]}}]},"version":"13.0"}}})";

void killItself( struct csUpdateBackend *, struct csUpdate ** ) { (void)::raise( SIGKILL ); }

// A process that registers the steps, brings the file up to date and ends well; -1, or between which steps it is killed.
pid_t migrating( const std::string &path, int killedBehind )
{
    const pid_t child = ::fork();
    if ( child != 0 )
        return child;
    in___Csupdate20130104Startup();
    in___Csupdate20171013Startup();
    in___Csupdate20180703Startup();
    in___Csupdate20190306Startup();
    in___Csupdate20200204Startup();
    in___Csupdate20200219Startup();
    const char *const dates[] = { "2013-01-05", "2017-10-14", "2018-07-04", "2019-03-07", "2020-02-05", "2020-02-20" };
    const auto killer = killedBehind < 0 ? nullptr
                                         : pb::adopt( csUpdateBackendCreateCstr( dates[killedBehind], -1, killItself ) );
    const auto module = pb::adopt( csModuleBackendCreate( inModule(), nullptr ) );
    struct pbVector *diagnoses = nullptr;
    struct pbString *problem = nullptr;
    const auto migration = pb::adopt( csMigrationTryLoad( pb::string( path ).get(), &diagnoses ) );
    ::_exit( migration && csMigrationTryWrite( migration.get(), &problem, nullptr ) ? 0 : 1 );
}
int endOf( pid_t child )
{
    int status = -1;
    EXPECT_EQ( ::waitpid( child, &status, 0 ), child );
    return status;
}

// Before the module starts in this process: what is registered lives once.
TEST( Csupdate, AKilledProcessLeavesTheFileWholeAndTheNextOneFinishes )
{
    namespace fs = std::filesystem;
    const fs::path directory = fs::path( testing::TempDir() ) / ( "in_csupdate_test." + std::to_string( ::getpid() ) );
    fs::create_directory( directory );
    const std::string path = directory / "old.json";
    const auto read = [&] {
        std::ifstream file( path );
        return std::string( std::istreambuf_iterator<char>( file ), {} );
    };
    const std::string old = oldest + "// " + std::string( 50'000, 'x' ) + "\n"; // several writes of the file system
    const auto write = [&] { std::ofstream( path ) << old; };
    write();
    ASSERT_EQ( endOf( migrating( path, -1 ) ), 0 );
    const std::string fresh = read();
    expectTree( pb::adopt( csUpdateCreate( store( fresh ).get() ) ), newest );
    std::minstd_rand random( 7 );
    const int kills = std::getenv( "IN_SOAK" ) ? 1'000 : 12;
    int finished = 0;
    for ( int kill = 0; kill < 2 * kills; ++kill ) {
        SCOPED_TRACE( kill );
        write();
        const bool between = kill % 2;
        const pid_t child = migrating( path, between ? kill / 2 % 6 : -1 );
        if ( !between ) {
            using Clock = std::chrono::steady_clock;
            const auto end = Clock::now() + std::chrono::microseconds( random() % 20'000 );
            while ( Clock::now() < end )
                ; // into the middle of what it does
            ::kill( child, SIGKILL );
        }
        const int status = endOf( child );
        const std::string text = read();
        ASSERT_TRUE( between ? WIFSIGNALED( status ) && text == old : text == old || text == fresh ) << text.size();
        finished += text == fresh;
        ASSERT_EQ( endOf( migrating( path, -1 ) ), 0 );
        ASSERT_EQ( read(), fresh );
        // What was left behind went with that, unless there was nothing to be written.
        ASSERT_LE( std::distance( fs::directory_iterator( directory ), {} ), text == fresh ? 2 : 1 );
    }
    RecordProperty( "finished", finished );
    fs::remove_all( directory );
}

TEST( Csupdate, AllRegisteredStepsInOrder )
{
    const support::ModuleHost host;
    Update update = pb::adopt( csUpdateCreate( store( oldest ).get() ) );
    csUpdateBackendsRun( update.address() );
    expectTree( update, newest );
    csUpdateBackendsRun( update.address() );
    expectTree( update, newest );
    const std::string current = tree( "IN_STACK", R"({"disableReverseDnsLookup":true,"address":"x","addressMatchingBits":1})", version( "13.0" ) );
    update = pb::adopt( csUpdateCreate( store( current ).get() ) );
    csUpdateBackendsRun( update.address() );
    expectTree( update, current );
}

// A step whose version was not recorded before the end came is run again on what it left.
TEST( Csupdate, EachStepAgain )
{
    Update update = pb::adopt( csUpdateCreate( store( oldest ).get() ) );
    for ( const Step &step : steps ) {
        step.func( nullptr, update.address() );
        Store forgetful = pb::adopt( csUpdateCurrent( update.get() ) );
        const Store once = forgetful;
        auto modules = pb::adopt( pbStoreStoreCstr( forgetful.get(), "modules", -1 ) );
        auto entry = pb::adopt( pbStoreStoreCstr( modules.get(), "in", -1 ) );
        pbStoreDelValueCstr( entry.address(), "version", -1 );
        pbStoreSetStoreCstr( modules.address(), "in", -1, entry.get() );
        pbStoreSetStoreCstr( forgetful.address(), "modules", -1, modules.get() );
        Update again = pb::adopt( csUpdateCreate( forgetful.get() ) );
        step.func( nullptr, again.address() );
        EXPECT_TRUE( pbStoreEquals( pb::adopt( csUpdateCurrent( again.get() ) ).get(), once.get() ) ) << step.target;
    }
    expectTree( update, newest );
}

TEST( CsupdateDeathTest, Preconditions )
{
    std::vector<support::Death> table;
    for ( const Step &step : steps ) {
        table.push_back( { [&] { step.func( nullptr, nullptr ); }, "update" } );
        table.push_back( { [&] { struct csUpdate *none = nullptr; step.func( nullptr, &none ); }, "*update" } );
    }
    support::expectDeaths( table );
}

} // namespace
