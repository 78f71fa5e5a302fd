// How an address and interfaces are chosen, and how the interfaces of a host are read.
#include "in/base/in_address.h"
#include "in/base/in_options.h"
#include "in/nw/in_nw_interface_imp_linux_internal.h"
#include "in/nw/in_nw_interface_state.h"
#include "in/nw/in_nw_interfaces_internal.h"
#include "in/nw/in_nw_util.hpp"
#include "in/nw/in_nw_util_internal.h"
#include "pb/pb_dict.h"
#include "pb/pb_fd.hpp"
#include "support/in_tables.hpp"

#include <gmock/gmock.h>
#include <sstream>
#include <sys/mman.h>

namespace {

using Address = pb::Ref<struct inAddress>;

Address address( const std::string &text )
{
    return pb::adopt( inAddressTryCreateFromString( pb::string( text ).get() ) );
}

// "a=10.0.0.9,fe80::1 idle= lo=127.0.0.1"
std::vector<in::InterfaceSnapshot> makeHost( const std::string &text )
{
    std::vector<in::InterfaceSnapshot> snapshots;
    std::istringstream entries( text );
    for ( std::string entry; entries >> entry; ) {
        const size_t equals = entry.find( '=' );
        auto state = pb::adopt( inNwInterfaceStateCreate() );
        std::istringstream addresses( entry.substr( equals + 1 ) );
        for ( std::string each; std::getline( addresses, each, ',' ); )
            inNwInterfaceStateLayer3SetUnicastAddress( state.address(), address( each ).get() );
        snapshots.push_back( { pb::string( entry.substr( 0, equals ) ), state } );
    }
    return snapshots;
}

TEST( NwUtil, ChoosesAddressAndInterfaces )
{
    const char *const full =
        "a=10.0.0.9,169.254.0.1,fe80::1 b=10.0.0.3,10.0.0.9,fd00::3 idle= lo=127.0.0.1,::1 z=10.0.0.1";
    const char *const local = "lo=127.0.0.1,::1 x=169.254.0.1,169.254.0.2";
    const support::InTables tables;
    const struct {
        const char *host;
        const char *options, *previousAddress;
        int previousPrimary;
        const char *expected;
    } rows[] = {
        // The best class, the first of it: interfaces ascending by name, addresses ascending inside one.
        { full, "{}", nullptr, -1, "10.0.0.9 of a on a b" },
        { local, "{}", nullptr, -1, "169.254.0.1 of x on x" },
        { "lo=127.0.0.1,::1", "{}", nullptr, -1, "127.0.0.1 of lo on lo" },
        { "", "{}", "10.0.0.1", -1, "null of null on" },
        // The previous address wins in its class and against no better one.
        { full, "{}", "10.0.0.1", -1, "10.0.0.1 of z on z" },
        { full, "{}", "fd00::3", -1, "fd00::3 of b on b" },
        { full, "{}", "169.254.0.1", -1, "10.0.0.9 of a on a b" },
        { full, "{}", "10.7.7.7", -1, "10.0.0.9 of a on a b" },
        { local, "{}", "169.254.0.2", -1, "169.254.0.2 of x on x" },
        { local, "{}", "127.0.0.1", -1, "169.254.0.1 of x on x" },
        // The previous primary interface stays while it carries the address.
        { full, "{}", "10.0.0.9", 1, "10.0.0.9 of b on a b" },
        { full, "{}", "10.0.0.9", 4, "10.0.0.9 of a on a b" },
        // A named interface is primary and a member, with and without an address; other carriers are members too.
        { full, R"({"interface": "b"})", nullptr, -1, "10.0.0.3 of b on b" },
        { full, R"({"interface": "b"})", "10.0.0.9", 0, "10.0.0.9 of b on a b" },
        { full, R"({"interface": "b", "address": "10.0.0.9"})", nullptr, -1, "10.0.0.9 of b on a b" },
        { full, R"({"interface": "idle"})", "10.0.0.9", 0, "null of idle on idle" },
        { full, R"({"interface": "A"})", "10.0.0.9", 0, "null of null on" },
        { full, R"({"interface": ""})", nullptr, -1, "null of null on" },
        // Each demand by itself and two that exclude each other.
        { full, R"({"addressVersion": "IN_ADDRESS_VERSION_6"})", "10.0.0.9", 0, "fd00::3 of b on b" },
        { full, R"({"addressVersion": "IN_ADDRESS_VERSION_4"})", "fd00::3", 1, "10.0.0.9 of b on a b" },
        { full, R"({"network": "10.0.0.0/30"})", nullptr, -1, "10.0.0.3 of b on b" },
        { full, R"({"network": "10.0.0.1"})", nullptr, -1, "10.0.0.1 of z on z" },
        { full, R"({"address": "169.254.0.1"})", nullptr, -1, "169.254.0.1 of a on a" },
        { full, R"({"address": "10.0.0.2"})", "10.0.0.9", 0, "null of null on" },
        { full, R"({"address": "fd00::3", "addressVersion": "IN_ADDRESS_VERSION_4"})", nullptr, -1, "null of null on" },
        { full, R"({"flags": "IN_FLAG_LOOPBACK_ONLY"})", "10.0.0.9", 0, "127.0.0.1 of lo on lo" },
        { full, R"({"interface": "a", "flags": "IN_FLAG_LOOPBACK_ONLY"})", nullptr, -1, "null of a on a" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( testing::Message() << "row " << &row - rows << ", expected " << row.expected );
        const auto host = makeHost( row.host );
        const auto options = pb::adopt( inOptionsRestore( support::store( row.options ).get() ) );
        const Address previous = row.previousAddress ? address( row.previousAddress ) : nullptr;
        const auto previousPrimary =
            row.previousPrimary < 0 ? std::nullopt : std::optional<size_t>( row.previousPrimary );
        const auto choice = in::chooseAddress( options.get(), previous.get(), previousPrimary, host );
        const auto name = [&host]( size_t index ) { return pb::utf8( host[index].identifier ); };
        std::string text = pb::utf8( pb::adopt( pbObjToString( inAddressObj( choice.address.get() ) ) ) ) + " of " +
                           ( choice.primaryInterface ? name( *choice.primaryInterface ) : "null" ) + " on";
        for ( const size_t index : choice.interfaces )
            text += " " + name( index );
        EXPECT_EQ( text, row.expected );
    }
}

TEST( NwInterfaceImp, PrefixLengthOfANetmask )
{
    const std::pair<const char *, pbInt> rows[] = { { "0.0.0.0", 0 },
                                                    { "128.0.0.0", 1 },
                                                    { "255.255.0.0", 16 },
                                                    { "255.255.255.254", 31 },
                                                    { "255.255.255.255", -1 },
                                                    { "255.0.255.0", -1 },
                                                    { "0.0.0.1", -1 },
                                                    { "255.253.0.0", -1 },
                                                    { "::", 0 },
                                                    { "ffff::1", -1 },
                                                    { "ffff:fe00::", 23 },
                                                    { "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe", 127 },
                                                    { "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", -1 } };
    for ( const auto &[netmask, length] : rows )
        EXPECT_EQ( in___NwInterfaceImpPrefixLength( address( netmask ).get() ), length ) << netmask;
}

TEST( NwInterfaces, NamesOfProcNetDev )
{
    const std::string header = "Inter-|   Receive\n face |bytes\n";
    const struct {
        std::string text;
        std::vector<std::string> names;
    } rows[] = {
        { "", {} },
        { "lo: 1\neth0: 2\n", {} }, // the first two lines are headers whatever they say
        { header + "    lo: 1 2 3\n  eth0:99 0\nwlan-x.1: 7", { "eth0", "lo", "wlan-x.1" } },
        { header + "eth0:1: 5 6\nno colon\n\n eth0: 1\neth0: 2\n Eth0 : 1\n", { "Eth0 ", "eth0" } },
        { header + "\xff\x80: 1\n", { "\\xff\\x80" } },
    };
    for ( const auto &row : rows ) {
        const pb::Fd file( memfd_create( "dev", MFD_CLOEXEC ) );
        ASSERT_EQ( write( file.get(), row.text.data(), row.text.size() ), static_cast<ssize_t>( row.text.size() ) );
        auto found = pb::adopt( pbDictCreate() );
        in___NwInterfacesAddNamesFromProcNetDev( found.address(),
                                                 ( "/proc/self/fd/" + std::to_string( file.get() ) ).c_str() );
        std::vector<std::string> names;
        for ( pbInt index = 0; index < pbDictLength( found.get() ); ++index )
            names.push_back( pb::utf8( pb::adopt( pbStringFrom( pbDictKeyAt( found.get(), index ) ) ) ) );
        EXPECT_EQ( names, row.names ) << row.text;
    }
    auto none = pb::adopt( pbDictCreate() );
    in___NwInterfacesAddNamesFromProcNetDev( none.address(), "/nonexistent" );
    EXPECT_EQ( pbDictLength( none.get() ), 0 );
}

TEST( NwDeathTest, Preconditions )
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto name = pb::string( "x" );
    EXPECT_DEATH( (void)in___NwInterfaceImpCreate( nullptr, true, nullptr ), ": identifier\n" );
    EXPECT_DEATH( (void)in___NwInterfaceImpCreate( name.get(), false, nullptr ), ": canSetStatus\n" );
    EXPECT_DEATH( in___NwInterfacesProcessFunc( pbStringObj( name.get() ) ), ": !argument\n" );
    EXPECT_DEATH( in___NwUtilFindAddressAndInterface( nullptr, nullptr, nullptr, nullptr ), ": options\n" );
}

} // namespace
