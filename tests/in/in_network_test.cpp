// Networks: text, masking, containment, order.
#include "in/base/in_network.h"

#include "in/base/in_address.h"
#include "pb/pb_string.hpp"
#include "support/ascending.hpp"
#include "support/death_table.hpp"

namespace {

pb::Ref<struct inNetwork> network( const char *text )
{
    return pb::adopt( inNetworkTryCreateFromString( pb::string( text ).get() ) );
}

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

std::string text( const pb::Ref<struct inNetwork> &network )
{
    return pb::utf8( pb::adopt( pbObjToString( inNetworkObj( network.get() ) ) ) );
}

TEST( InNetwork, ReadsAndMasksText )
{
    struct {
        const char *source, *expected;
    } const rows[] = { { "10.1.2.3/8", "10.0.0.0/8" },
                       { "10.1.2.3/0", "0.0.0.0/0" },
                       { "10.1.2.3/32", "10.1.2.3/32" },
                       { "10.1.2.255/31", "10.1.2.254/31" },
                       { "255.255.255.255/1", "128.0.0.0/1" },
                       { "10.1.2.3", "10.1.2.3" },
                       { "10.1.2.3/-1", "10.1.2.3" },
                       { " 10.1.2.3 /8", "10.0.0.0/8" },
                       { "fe80::1/0", "::/0" },
                       { "fe80::1/64", "fe80::/64" },
                       { "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff/65", "ffff:ffff:ffff:ffff:8000::/65" },
                       { "fe80::1/128", "fe80::1/128" },
                       { "1:2:3:4:5:6:7:8/112", "1:2:3:4:5:6:7::/112" } };
    for ( const auto &row : rows )
        EXPECT_EQ( text( network( row.source ) ), row.expected ) << row.source;
    for ( const char *refused :
          { "1:2:3:4:5:6:7::/112", "10.0.0.0/33", "::/129", "10.0.0.0/-2", "10.0.0.0/8/1", "10.0.0.0/", "10.0.0.0/8 ",
            "10.0.0.0/+8", "10.0.0.0/4294967304", "/8", "host/8", "" } )
        EXPECT_FALSE( network( refused ) ) << refused;
}

TEST( InNetwork, Contains )
{
    struct {
        const char *network, *address;
        bool contained;
    } const addresses[] = {
        { "10.0.0.0/8", "10.255.255.255", true },
        { "10.0.0.0/8", "11.0.0.0", false },
        { "10.0.0.1", "10.0.0.1", true },
        { "10.0.0.1", "10.0.0.2", false },
        { "0.0.0.0/0", "255.1.2.3", true },
        { "0.0.0.0/0", "fe80::1", true },
        { "::/0", "10.0.0.1", true },
        { "0.0.0.0/1", "::1", false },
        { "0.0.0.0", "::", false },
        { "fe80::/10", "febf::1", true },
        { "10.0.0.1/32", "10.0.0.1", true },
    };
    for ( const auto &row : addresses ) {
        SCOPED_TRACE( std::string( row.network ) + " " + row.address );
        EXPECT_EQ( inNetworkContainsAddress( network( row.network ).get(), address( row.address ).get() ),
                   row.contained );
    }
    struct {
        const char *network, *other;
        bool contained;
    } const networks[] = {
        { "10.0.0.0/8", "10.1.0.0/16", true }, { "10.1.0.0/16", "10.0.0.0/8", false },
        { "10.0.0.0/8", "10.0.0.0/8", true },  { "10.0.0.0/8", "10.0.0.1", true },
        { "10.0.0.1", "10.0.0.1/32", true },   { "10.0.0.1/32", "10.0.0.1", true },
        { "10.0.0.1", "10.0.0.0/8", false },   { "10.0.0.0/8", "11.0.0.0/16", false },
        { "0.0.0.0/0", "::/0", true },
    };
    for ( const auto &row : networks ) {
        SCOPED_TRACE( std::string( row.network ) + " " + row.other );
        EXPECT_EQ( inNetworkContainsNetwork( network( row.network ).get(), network( row.other ).get() ),
                   row.contained );
    }
}

TEST( InNetwork, OrdersByAddressThenPrefix )
{
    support::expectAscending( { "10.0.0.0", "10.0.0.0/8", "10.0.0.0/16", "11.0.0.0", "11.0.0.0/8", "::", "::/0" },
                              network );
}

TEST( InNetwork, ChangesOnlyItsOwnCopy )
{
    const auto original = network( "10.1.0.0/16" );
    auto changed = original;
    // with its own address, which the change replaces
    inNetworkSetAddressAndPrefixLength( changed.address(), pb::adopt( inNetworkAddress( changed.get() ) ).get(), 8 );
    EXPECT_EQ( text( original ), "10.1.0.0/16" );
    EXPECT_EQ( text( changed ), "10.0.0.0/8" );
}

TEST( InNetworkDeath, Preconditions )
{
    const auto v4 = address( "10.0.0.1" ), v6 = address( "::1" );
    support::expectDeaths( {
        { [&] { inNetworkCreate( v4.get(), -2 ); }, "optionalPrefixLength >= -1" },
        { [&] { inNetworkCreate( v4.get(), 33 ); }, "optionalPrefixLength <= length" },
        { [&] { inNetworkCreate( v6.get(), 129 ); }, "optionalPrefixLength <= length" },
        { [&] { inNetworkCreate( nullptr, 0 ); }, "address" },
    } );
}

} // namespace
