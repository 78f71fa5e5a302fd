// Options of a stack, of DNS, TCP and UDP: stores, defaults and their marks, order, preconditions.
#include "in/base/in_options.h"

#include "cs/cs_key.h"
#include "in/base/in_address.h"
#include "in/base/in_address_version.h"
#include "in/base/in_flags.h"
#include "in/base/in_network.h"
#include "in/base/in_options_internal.h"
#include "in/dns/in_dns_options.h"
#include "in/tcp/in_tcp_options.h"
#include "in/tcp/in_tcp_port_range.h"
#include "in/udp/in_udp_options.h"
#include "in/udp/in_udp_port_range.h"
#include "support/ascending.hpp"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

namespace {

using support::json;
using support::store;

struct InOptions : testing::Test {
    support::InTables tables;
};

constexpr const char *dnsDefaults =
    R"({"maxBlockDuration":60000,"disableQueryAddresses":false,"disableQueryDomainNames":false,)"
    R"("disableQuerySrv":false,"cacheTimeout":60000,"negativeCacheTimeout":60000})";
constexpr const char *tcpDefaults =
    R"({"blacklistEnabled":true,"blacklistTimeout":120000,"blacklistGranularity":15000,)"
    R"("keepAliveEnabled":false,"keepAliveTime":30000})";

struct Normalization {
    std::string source, expected;
};

std::string normalizedDns( const std::string &source )
{
    return json( inDnsOptionsStore( pb::adopt( inDnsOptionsRestore( store( source ).get() ) ).get(), 0 ) );
}
std::string normalizedTcp( const std::string &source )
{
    return json( inTcpOptionsStore( pb::adopt( inTcpOptionsRestore( store( source ).get() ) ).get(), 0 ) );
}
std::string normalizedUdp( const std::string &source )
{
    return json( inUdpOptionsStore( pb::adopt( inUdpOptionsRestore( store( source ).get() ) ).get() ) );
}
std::string normalized( const std::string &source )
{
    return json( inOptionsStore( pb::adopt( inOptionsRestore( store( source ).get() ) ).get(), 0 ) );
}

TEST_F( InOptions, RestoreKeepsWhatIsValid )
{
    struct {
        std::string ( *normalize )( const std::string & );
        std::vector<Normalization> rows;
    } const tables[] = {
        { normalizedDns,
          {
              { "{}", "{}" },
              { R"({"cacheTimeout":0,"maxBlockDuration":0})", R"({"maxBlockDuration":0,"cacheTimeout":0})" },
              { R"({"maxBlockDuration":-5,"cacheTimeout":"soon","disableQuerySrv":1})", "{}" },
              { R"({"disableQuerySrv":true,"disableQueryAddresses":false})",
                R"({"disableQueryAddresses":false,"disableQuerySrv":true})" },
              // the negative cache timeout overwrites the other one
              { R"({"negativeCacheTimeout":5000,"cacheTimeout":1000})", R"({"cacheTimeout":5000})" },
              { R"({"negativeCacheTimeout":0})", R"({"cacheTimeout":0})" },
              { R"({"negativeCacheTimeout":-1,"cacheTimeout":1000})", R"({"cacheTimeout":1000})" },
          } },
        { normalizedTcp,
          {
              { "{}", "{}" },
              { tcpDefaults, tcpDefaults },
              { R"({"blacklistTimeout":1,"blacklistGranularity":1,"keepAliveTime":1})",
                R"({"blacklistTimeout":1,"blacklistGranularity":1,"keepAliveTime":1})" },
              { R"({"blacklistTimeout":0,"blacklistGranularity":-1,"keepAliveTime":0})", "{}" },
              { R"({"keepAliveTime":9223372036854775808})", "{}" },
              { R"({"blacklistEnabled":"yes","keepAliveEnabled":true})", R"({"keepAliveEnabled":true})" },
              { R"({"portRange":{"firstPort":10,"count":0}})", R"({"portRange":{"firstPort":10,"count":0}})" },
              { R"({"portRange":{"firstPort":0,"count":5}})", "{}" },
              { R"({"portRange":"10-20"})", "{}" },
          } },
        { normalizedUdp,
          {
              { "{}", "{}" },
              { R"({"portRange":{"firstPort":65535,"count":65535}})",
                R"({"portRange":{"firstPort":65535,"count":65535}})" },
              { R"({"portRange":{"firstPort":1}})", "{}" },
          } },
        { normalized,
          {
              { "{}", R"({"flags":""})" },
              { R"({"flags":"NO_SUCH_FLAG|IN_FLAG_LOOPBACK_ONLY"})", R"({"flags":"IN_FLAG_LOOPBACK_ONLY"})" },
              { R"({"interface":""})", R"({"flags":"","interface":""})" },
              { R"({"network":"10.1.2.3/8","addressVersion":"IN_ADDRESS_VERSION_6","address":"192.168.0.1"})",
                R"({"flags":"","network":"10.0.0.0/8","addressVersion":"IN_ADDRESS_VERSION_6","address":"192.168.0.1"})" },
              { R"({"network":"10.0.0.0/40","addressVersion":"IN_ADDRESS_VERSION_5","address":"10.0.0","interface":{}})",
                R"({"flags":""})" },
              // a part that is present is explicit, even when it says nothing
              { R"({"udpOptions":{},"dnsOptions":{}})", R"({"flags":"","dnsOptions":{},"udpOptions":{}})" },
              { R"({"tcpOptions":{"keepAliveTime":0}})", R"({"flags":"","tcpOptions":{}})" },
              { R"({"tcpOptions":1})", R"({"flags":""})" },
          } },
    };
    for ( const auto &table : tables )
        for ( const auto &[source, expected] : table.rows ) {
            EXPECT_EQ( table.normalize( source ), expected ) << source;
            EXPECT_EQ( table.normalize( expected ), expected );
        }
}

TEST_F( InOptions, StoresDefaultsWhenAsked )
{
    const auto options = pb::adopt( inOptionsCreate() );
    const std::string expected = std::string( R"({"flags":"","dnsOptions":)" ) + dnsDefaults + R"(,"tcpOptions":)"
                                 + tcpDefaults + R"(,"udpOptions":{}})";
    EXPECT_EQ( json( inOptionsStore( options.get(), 1 ) ), expected );
    EXPECT_EQ( json( inOptionsStore( options.get(), 0 ) ), R"({"flags":""})" );
    // what was stored with defaults comes back explicit
    const auto restored = pb::adopt( inOptionsRestore( store( expected ).get() ) );
    EXPECT_FALSE( inOptionsDnsOptionsDefault( restored.get() ) || inOptionsTcpOptionsDefault( restored.get() )
                  || inOptionsUdpOptionsDefault( restored.get() ) );
    EXPECT_EQ( inOptionsCompare( restored.get(), options.get() ), -1 );
}

TEST_F( InOptions, SettersMarkAndDefaultSettersUnmark )
{
    auto tcp = pb::adopt( inTcpOptionsCreate() );
    const auto fresh = tcp;
    inTcpOptionsSetBlacklistEnabled( tcp.address(), 7 );
    inTcpOptionsSetBlacklistTimeout( tcp.address(), 120000 );
    inTcpOptionsSetBlacklistGranularity( tcp.address(), 2 );
    inTcpOptionsSetKeepAliveEnabled( tcp.address(), 1 );
    inTcpOptionsSetKeepAliveTime( tcp.address(), 3 );
    EXPECT_EQ(
        json( inTcpOptionsStore( tcp.get(), 0 ) ),
        R"({"blacklistEnabled":true,"blacklistTimeout":120000,"blacklistGranularity":2,"keepAliveEnabled":true,"keepAliveTime":3})" );
    EXPECT_FALSE( inTcpOptionsEquals( tcp.get(), fresh.get() ) );
    EXPECT_EQ( json( inTcpOptionsStore( fresh.get(), 0 ) ), "{}" );
    for ( auto *setDefault : { inTcpOptionsSetBlacklistEnabledDefault, inTcpOptionsSetBlacklistTimeoutDefault,
                               inTcpOptionsSetBlacklistGranularityDefault, inTcpOptionsSetKeepAliveEnabledDefault,
                               inTcpOptionsSetKeepAliveTimeDefault } )
        setDefault( tcp.address() );
    EXPECT_TRUE( inTcpOptionsEquals( tcp.get(), fresh.get() ) );

    auto dns = pb::adopt( inDnsOptionsCreate() );
    inDnsOptionsSetMaxBlockDuration( dns.address(), 1 );
    inDnsOptionsSetDisableQueryAddresses( dns.address(), 1 );
    inDnsOptionsSetDisableQueryDomainNames( dns.address(), 1 );
    inDnsOptionsSetDisableQuerySrv( dns.address(), 1 );
    inDnsOptionsSetCacheTimeout( dns.address(), 2 );
    inDnsOptionsSetNegativeCacheTimeout( dns.address(), 3 );
    EXPECT_EQ( json( inDnsOptionsStore( dns.get(), 0 ) ),
               R"({"maxBlockDuration":1,"disableQueryAddresses":true,"disableQueryDomainNames":true,)"
               R"("disableQuerySrv":true,"cacheTimeout":2,"negativeCacheTimeout":3})" );
    for ( auto *setDefault : { inDnsOptionsSetMaxBlockDurationDefault, inDnsOptionsSetDisableQueryAddressesDefault,
                               inDnsOptionsSetDisableQueryDomainNamesDefault, inDnsOptionsSetDisableQuerySrvDefault,
                               inDnsOptionsSetCacheTimeoutDefault, inDnsOptionsSetNegativeCacheTimeoutDefault } )
        setDefault( dns.address() );
    EXPECT_EQ( json( inDnsOptionsStore( dns.get(), 1 ) ), dnsDefaults );
    EXPECT_TRUE( inDnsOptionsEquals( dns.get(), pb::adopt( inDnsOptionsCreate() ).get() ) );

    auto options = pb::adopt( inOptionsCreate() );
    const auto untouched = options;
    inOptionsSetFlags( options.address(), 3 );
    inOptionsSetDnsOptions( options.address(), dns.get() );
    inOptionsSetTcpOptions( options.address(), pb::adopt( inOptionsTcpOptions( options.get() ) ).get() );
    EXPECT_EQ( json( inOptionsStore( options.get(), 0 ) ),
               R"({"flags":"IN_FLAG_LOOPBACK_ONLY","dnsOptions":{},"tcpOptions":{}})" );
    inOptionsSetFlags( options.address(), 0 );
    inOptionsSetDnsOptionsDefault( options.address() );
    inOptionsSetTcpOptionsDefault( options.address() );
    EXPECT_TRUE( inOptionsEquals( options.get(), untouched.get() ) );
}

TEST_F( InOptions, OrdersFieldByField )
{
    // ascending; explicit settings stand before default ones, absent fields before present ones
    support::expectAscending(
        { R"({"dnsOptions":{"maxBlockDuration":90000}})", R"({"dnsOptions":{"cacheTimeout":1}})",
          R"({"dnsOptions":{"cacheTimeout":2}})", R"({"dnsOptions":{}})", R"({"tcpOptions":{}})",
          R"({"tcpOptions":{"portRange":{"firstPort":1,"count":1},"blacklistEnabled":false}})", R"({"udpOptions":{}})",
          R"({"udpOptions":{"portRange":{"firstPort":1,"count":1}}})", R"({})", R"({"address":"10.0.0.1"})",
          R"({"address":"::1"})", R"({"addressVersion":"IN_ADDRESS_VERSION_4"})",
          R"({"addressVersion":"IN_ADDRESS_VERSION_6"})", R"({"network":"10.0.0.0"})", R"({"network":"10.0.0.0/8"})",
          R"({"interface":""})", R"({"interface":"eth0","udpOptions":{}})", R"({"interface":"eth0"})",
          R"({"flags":"IN_FLAG_LOOPBACK_ONLY","dnsOptions":{}})" },
        []( const char *source ) { return pb::adopt( inOptionsRestore( store( source ).get() ) ); } );
}

// Every key that is written is described, in the same order, down to the port range.
void expectDescribed( const struct pbStore *store, const struct csKey *keys, pbInt count )
{
    ASSERT_EQ( pbStoreLength( store ), count );
    for ( pbInt i = 0; i < count; ++i ) {
        EXPECT_EQ( pb::utf8( pb::adopt( pbStoreKeyAt( store, i ) ) ), keys[i].key );
        EXPECT_EQ( pbStoreIsValueAt( store, i ) != 0, keys[i].kind != CS_KEY_STORE ) << keys[i].key;
        EXPECT_EQ( keys[i].kind == CS_KEY_ENUM || keys[i].kind == CS_KEY_FLAGS, keys[i].names != nullptr )
            << keys[i].key;
        if ( keys[i].kind == CS_KEY_STORE )
            expectDescribed( pb::adopt( pbStoreStoreAt( store, i ) ).get(), keys[i].keys, keys[i].keyCount );
    }
}

TEST_F( InOptions, DescribesWhatItStores )
{
    const auto options = pb::adopt( inOptionsRestore( store( R"({"interface":"eth0","network":"::/0","address":"::1",
        "addressVersion":"IN_ADDRESS_VERSION_6","tcpOptions":{"portRange":{"firstPort":1,"count":1}},
        "udpOptions":{"portRange":{"firstPort":1,"count":1}}})" )
                                                          .get() ) );
    pbInt count = 0;
    const struct csKey *const keys = in___OptionsKeys( &count );
    expectDescribed( pb::adopt( inOptionsStore( options.get(), 1 ) ).get(), keys, count );
}

using InOptionsDeath = InOptions;

TEST_F( InOptionsDeath, Preconditions )
{
    auto options = pb::adopt( inOptionsCreate() );
    auto dns = pb::adopt( inDnsOptionsCreate() );
    auto tcp = pb::adopt( inTcpOptionsCreate() );
    auto udp = pb::adopt( inUdpOptionsCreate() );
    support::expectDeaths( {
        { [&] { inOptionsSetInterface( options.address(), nullptr ); }, "iface" },
        { [&] { inOptionsSetNetwork( options.address(), nullptr ); }, "network" },
        { [&] { inOptionsSetAddressVersion( options.address(), 2 ); }, "IN_ADDRESS_VERSION_OK( version )" },
        { [&] { inOptionsSetAddressVersion( options.address(), -1 ); }, "IN_ADDRESS_VERSION_OK( version )" },
        { [&] { inOptionsSetAddress( options.address(), nullptr ); }, "address" },
        { [&] { inOptionsSetDnsOptions( options.address(), nullptr ); }, "dnsOptions" },
        { [&] { inOptionsSetTcpOptions( options.address(), nullptr ); }, "tcpOptions" },
        { [&] { inOptionsSetUdpOptions( options.address(), nullptr ); }, "udpOptions" },
        { [&] { inOptionsRestore( nullptr ); }, "store" },
        { [&] { inDnsOptionsSetMaxBlockDuration( dns.address(), -1 ); }, "maxBlockDuration >= 0" },
        { [&] { inDnsOptionsSetCacheTimeout( dns.address(), -1 ); }, "cacheTimeout >= 0" },
        { [&] { inDnsOptionsSetNegativeCacheTimeout( dns.address(), -1 ); }, "negativeCacheTimeout >= 0" },
        { [&] { inTcpOptionsSetBlacklistTimeout( tcp.address(), 0 ); }, "timeout > 0" },
        { [&] { inTcpOptionsSetBlacklistGranularity( tcp.address(), 0 ); }, "granularity > 0" },
        { [&] { inTcpOptionsSetKeepAliveTime( tcp.address(), 0 ); }, "milliseconds > 0" },
        { [&] { inUdpOptionsSetPortRange( udp.address(), nullptr ); }, "portRange" },
    } );
}

} // namespace
