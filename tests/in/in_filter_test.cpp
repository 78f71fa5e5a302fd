// Address filters without a stack: what the check answers, what is told about it, the stores of options, preconditions.
#include "in/filter/in_filter.h"

#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_list.hpp"
#include "in/filter/in_filter_options.h"
#include "in/raw/in_raw_address.h"
#include "in/tcp/in_tcp_address.h"
#include "in/udp/in_udp_address.h"
#include "pb/pb_boxed_int.h"
#include "pb/pb_store.h"
#include "pb/pb_vector.h"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"
#include "support/module_host.hpp"

#include <gtest/gtest.h>
#include <random>

namespace {

using Address = pb::Ref<struct inAddress>;

class ModuleEnvironment : public testing::Environment {
    void SetUp() override { host_.emplace(); }
    void TearDown() override { host_.reset(); }
    std::optional<support::ModuleHost> host_;
};
[[maybe_unused]] const auto *const environment = testing::AddGlobalTestEnvironment( new ModuleEnvironment );

Address address( const std::string &text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text.c_str(), -1 ) );
}

pb::Ref<struct inFilterOptions> restore( const std::string &json )
{
    return pb::adopt( inFilterOptionsRestore( support::store( json ).get() ) );
}

std::string entry( const char *host, int bits = -1, const char *more = "" )
{
    return std::string( R"({"host":")" ) + host + R"(","flags":"IN_FILTER_ENTRY_FLAG_ADDRESS")" +
           ( bits < 0 ? "" : ",\"addressMatchingBits\":" + std::to_string( bits ) ) + more + "}";
}

TEST( FilterCheck, AgreesInTheBitsOfAnEntry )
{
    const struct {
        std::string entries;
        const char *peer;
        bool permitted;
        const char *text;
    } rows[] = {
        { "", "10.0.0.1", false, "there is no entry" },
        { entry( "10.0.0.0", 8 ), "10.1.2.3", true, "entry 1 matches 8 of 8 bits" },
        { entry( "10.0.0.0" ), "10.1.2.3", false, "entry 1 matches 15 of 32 bits" },
        { entry( "10.0.0.0" ), "10.0.0.0", true, "entry 1 is 10.0.0.0" },
        { entry( "10.0.0.0", 32 ), "10.0.0.0", true, "entry 1 matches 32 of 32 bits" },
        { entry( "10.0.0.0", 33 ), "10.0.0.0", false, "entry 1 asks for 33 of 32 bits" },
        { entry( "10.0.0.0", 0 ), "255.255.255.255", true, "entry 1 matches 0 of 0 bits" },
        { entry( "10.0.0.0", 0 ), "::", false, "entry 1 is an IPv4 address" },
        { entry( "::", 0 ), "ffff::", true, "entry 1 matches 0 of 0 bits" },
        { entry( "2001:db8::", 64 ), "2001:db8::ffff:0:0:1", true, "entry 1 matches 64 of 64 bits" },
        { entry( "2001:db8::", 64 ), "2001:db8:0:1::", false, "entry 1 matches 63 of 64 bits" },
        { entry( "2001:db8::", 129 ), "2001:db8::", false, "entry 1 asks for 129 of 128 bits" },
        { entry( "10.0.0.1", -1, R"(,"addressVersion":"IN_ADDRESS_VERSION_6")" ), "10.0.0.1", false,
          "entry 1 has no address: 10.0.0.1: not of the entry's address version" },
        { entry( "10.0.0.0", 24 ) + "," + entry( "10.0.4.0", 24 ), "10.0.3.1", false,
          "entry 1 matches 22 of 24 bits; entry 2 matches 21 of 24 bits" },
        { entry( "10.0.0.0", 24 ) + "," + entry( "10.0.4.0", 24 ), "10.0.4.9", true, "entry 2 matches 24 of 24 bits" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.entries + " " + row.peer );
        const auto filter =
            pb::adopt( inFilterCreate( restore( "{\"entries\":[" + row.entries + "]}" ).get(), nullptr ) );
        const Address peer = address( row.peer );
        EXPECT_EQ( inFilterCheck( filter.get(), peer.get() ), row.permitted );
        for ( const pbBool same :
              { inFilterCheckUdpAddress( filter.get(), pb::adopt( inUdpAddressCreate( peer.get(), 1 ) ).get() ),
                inFilterCheckTcpAddress( filter.get(), pb::adopt( inTcpAddressCreate( peer.get(), 1 ) ).get() ),
                inFilterCheckRawAddress( filter.get(), pb::adopt( inRawAddressCreate( peer.get(), 1 ) ).get() ) } )
            EXPECT_EQ( same, row.permitted );
        const auto told = pb::adopt( inFilterExplain( filter.get(), peer.get() ) );
        EXPECT_EQ( pb::utf8( pb::adopt( pbStoreValueCstr( told.get(), "text", -1 ) ) ),
                   std::string( row.permitted ? "permitted: " : "refused: " ) + row.text );
    }
}

class Numbers {
public:
    uint64_t below( uint64_t bound ) { return random_() % bound; }
    // Around few centres, so that ranges touch, overlap and hold each other; at the ends of the space as well.
    Address nextAddress()
    {
        const bool isV4 = below( 2 );
        uint8_t bytes[16];
        const uint8_t fill = below( 4 ) ? static_cast<uint8_t>( below( 3 ) * 16 ) : below( 2 ) ? 0xFF : 0;
        for ( uint8_t &byte : bytes )
            byte = fill;
        for ( uint64_t i = below( 3 ); i--; )
            bytes[below( isV4 ? 4 : 16 )] = static_cast<uint8_t>( below( 256 ) );
        return pb::adopt( isV4 ? inAddressCreateV4( bytes ) : inAddressCreateV6( bytes ) );
    }
    pbInt nextBits( const Address &of )
    {
        const auto length = static_cast<uint64_t>( inAddressLength( of.get() ) * 8 );
        return below( 4 ) ? static_cast<pbInt>( length - below( below( 2 ) ? length : 8 ) )
                          : static_cast<pbInt>( below( length + 3 ) ) - 1;
    }

private:
    std::mt19937_64 random_{ 1 };
};

// The definition: the first entry that permits ends the walk.
bool walk( const std::vector<std::pair<Address, pbInt>> &entries, const Address &peer )
{
    for ( const auto &[entry, bits] : entries ) {
        if ( inAddressVersion( entry.get() ) != inAddressVersion( peer.get() ) )
            continue;
        if ( bits == -1 ? inAddressEquals( entry.get(), peer.get() )
                        : inAddressMatchingBits( entry.get(), peer.get() ) >= bits )
            return true;
    }
    return false;
}

TEST( FilterCheck, AnswersAsTheWalkInOrder )
{
    const int lists = getenv( "IN_SOAK" ) ? 5000 : 100; // of 200 peers each
    Numbers numbers;
    for ( int round = 0; round < lists; ++round ) {
        std::vector<std::pair<Address, pbInt>> entries;
        in::FilterFindings findings;
        findings.addresses = pb::adopt( pbVectorCreate() );
        findings.matchingBits = pb::adopt( pbVectorCreate() );
        for ( uint64_t i = numbers.below( round % 10 ? 40 : 2000 ); i--; ) {
            const Address made = numbers.nextAddress();
            entries.emplace_back( made, numbers.nextBits( made ) );
            pbVectorAppend( findings.addresses.address(), inAddressObj( made.get() ) );
            pbVectorAppend( findings.matchingBits.address(),
                            pbBoxedIntObj( pb::adopt( pbBoxedIntCreate( entries.back().second ) ).get() ) );
            findings.sources.push_back( { 0, static_cast<uint32_t>( entries.size() - 1 ), nullptr } );
        }
        findings.removeDuplicates();
        const in::FilterList list( pb::adopt( inFilterOptionsCreate() ), findings );
        for ( int i = 0; i < 200; ++i ) {
            Address peer = !entries.empty() && i % 2 ? entries[numbers.below( entries.size() )].first
                                                     : numbers.nextAddress();
            if ( i % 4 == 1 ) // beside an entry
                inAddressSetByteAt( peer.address(), inAddressLength( peer.get() ) - 1,
                                    inAddressByteAt( peer.get(), inAddressLength( peer.get() ) - 1 ) + 1 );
            ASSERT_EQ( list.permits( *peer ), walk( entries, peer ) )
                << pb::utf8( pb::adopt( inAddressToString( peer.get() ) ) ) << " in "
                << support::json( list.keys().release() );
        }
    }
}

TEST( FilterOptions, Stores )
{
    const std::string flags = R"("flags":"IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV")";
    const struct {
        std::string stored, normal;
    } rows[] = {
        { "{}", R"({"entries":{}})" }, // an empty array
        { R"({"entries":[],"stackName":"lo","stackAddressPermitted":false,"rebuildInterval":1})",
          R"({"entries":{},"stackName":"lo","stackAddressPermitted":false,"rebuildInterval":1})" },
        { R"({"entries":"none","stackName":"","stackAddressPermitted":"maybe","rebuildInterval":0})",
          R"({"entries":{}})" },
        { R"({"entries":[{"host":"10.0.0.1",)" + flags +
              R"(,"addressVersion":"IN_ADDRESS_VERSION_4","addressMatchingBits":0,"dnsSrvPrefixes":["_sip","a..b"]}]})",
          R"({"entries":[{"host":"10.0.0.1",)" + flags +
              R"(,"addressVersion":"IN_ADDRESS_VERSION_4","addressMatchingBits":0,"dnsSrvPrefixes":["_sip"]}]})" },
        // An entry without a valid host is left out, a bad value of one keeps its default.
        { R"({"entries":[{"flags":""},{"host":"a..b"},{"host":"::1","flags":"NONE","addressVersion":"IPV5",)"
          R"("addressMatchingBits":-1},"10.0.0.1"]})",
          R"({"entries":[{"host":"::1","flags":"","dnsSrvPrefixes":{}}]})" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.stored );
        const auto options = restore( row.stored );
        EXPECT_EQ( support::json( inFilterOptionsStore( options.get(), false ) ), row.normal );
        EXPECT_TRUE( inFilterOptionsEquals( options.get(), restore( row.normal ).get() ) );
    }
    auto options = pb::adopt( inFilterOptionsCreate() );
    const std::string defaults = R"({"entries":{},"stackAddressPermitted":true,"rebuildInterval":600000})";
    EXPECT_EQ( support::json( inFilterOptionsStore( options.get(), true ) ), defaults );
    inFilterOptionsSetRebuildInterval( options.address(), 600'000 ); // equal to the default, but set
    EXPECT_EQ( support::json( inFilterOptionsStore( options.get(), false ) ),
               R"({"entries":{},"rebuildInterval":600000})" );
}

TEST( FilterDeathTest, Preconditions )
{
    GTEST_FLAG_SET( death_test_style, "threadsafe" );
    auto options = pb::adopt( inFilterOptionsCreate() );
    auto made = pb::adopt( inFilterEntryCreate( pb::string( "a.example" ).get() ) );
    const auto filter = pb::adopt( inFilterCreate( options.get(), nullptr ) );
    const auto bad = pb::string( "a..b" );
    support::expectDeaths( {
        { [&] { inFilterCreate( nullptr, nullptr ); }, "options" },
        { [&] { inFilterCheck( nullptr, address( "::1" ).get() ); }, "filter" },
        { [&] { inFilterCheck( filter.get(), nullptr ); }, "address" },
        { [&] { inFilterCheckUdpAddress( filter.get(), nullptr ); }, "udpAddress" },
        { [&] { inFilterEntryCreate( bad.get() ); }, "in___FilterEntryHostOk( host )" },
        { [&] { inFilterEntrySetAddressMatchingBits( made.address(), -1 ); }, "bits >= 0" },
        { [&] { inFilterEntryAppendDnsSrvPrefix( made.address(), bad.get() ); },
          "inDnsIdnaDomainNameOk( dnsSrvPrefix )" },
        { [&] { inFilterOptionsSetRebuildInterval( options.address(), 0 ); }, "interval > 0" },
        { [&] { inFilterOptionsSetStackName( options.address(), pb::string( "" ).get() ); },
          "csObjectRecordNameOk( stackName )" },
        { [&] {
             auto vec = pb::adopt( pbVectorCreate() );
             pbVectorAppend( vec.address(), pbStringObj( bad.get() ) );
             inFilterOptionsSetEntriesVector( options.address(), vec.get() );
         },
          "pbVectorContainsOnly( vec, inFilterEntrySort() )" },
    } );
}

} // namespace
