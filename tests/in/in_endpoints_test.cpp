// Endpoints and port ranges of UDP, TCP and raw IP: limits, text, order, stores, and changing in place.
#include "in/base/in_address.h"
#include "in/raw/in_raw_address.h"
#include "in/raw/in_raw_address_internal.h"
#include "in/tcp/in_tcp_address.h"
#include "in/tcp/in_tcp_address_internal.h"
#include "in/tcp/in_tcp_port_range.h"
#include "in/udp/in_udp_address.h"
#include "in/udp/in_udp_address_internal.h"
#include "in/udp/in_udp_port_range.h"
#include "support/death_table.hpp"
#include "support/in_tables.hpp"

namespace {

pb::Ref<struct inAddress> address( const char *text )
{
    return pb::adopt( inAddressTryCreateFromCstr( text, -1 ) );
}

// clang-format off
// UDP and TCP have the same endpoints and ranges.
#define DEFINE_KIND( Kind, KIND )                                  \
    struct Kind {                                                                                                     \
        static constexpr auto create = in##Kind##AddressCreate;                                                       \
        static constexpr auto setPort = in##Kind##AddressSetPort;                                                     \
        static constexpr auto setAddress = in##Kind##AddressSetAddress;                                               \
        static constexpr auto store = in##Kind##AddressStore;                                                         \
        static constexpr auto tryRestore = in##Kind##AddressTryRestore;                                               \
        static constexpr auto createRange = in##Kind##PortRangeCreate;                                                \
        static constexpr auto setFirstPort = in##Kind##PortRangeSetFirstPort;                                         \
        static constexpr auto setCount = in##Kind##PortRangeSetCount;                                                 \
        static constexpr auto storeRange = in##Kind##PortRangeStore;                                                  \
        static constexpr auto tryRestoreRange = in##Kind##PortRangeTryRestore;                                        \
        static constexpr auto update = in___##Kind##AddressUpdate;                                                    \
        static constexpr const char *prefix = "IN_" #KIND "_PORT_OK";                                                 \
    };
// clang-format on
DEFINE_KIND( Udp, UDP )
DEFINE_KIND( Tcp, TCP )

template <class T> struct InEndpoints : testing::Test {
    static auto make( const char *text, pbInt port ) { return pb::adopt( T::create( address( text ).get(), port ) ); }
    static std::string text( const auto &ref )
    {
        return pb::utf8( pb::adopt( pbObjToString( reinterpret_cast<struct pbObj *>( ref.get() ) ) ) );
    }
};
using Kinds = testing::Types<Udp, Tcp>;
TYPED_TEST_SUITE( InEndpoints, Kinds );

TYPED_TEST( InEndpoints, TextAndOrder )
{
    const auto a = this->make( "10.0.0.1", 65535 ), b = this->make( "10.0.0.2", 1 ), c = this->make( "10.0.0.2", 2 ),
               d = this->make( "::1", 1 );
    EXPECT_EQ( this->text( a ), "10.0.0.1:65535" );
    EXPECT_EQ( this->text( d ), "[::1]:1" );
    EXPECT_LT( a, b ); // the address decides before the port
    EXPECT_GT( c, b );
    EXPECT_LT( c, d );
    EXPECT_EQ( c, this->make( "10.0.0.2", 2 ) );

    const auto range = []( pbInt firstPort, pbInt count ) {
        return pb::adopt( TypeParam::createRange( firstPort, count ) );
    };
    EXPECT_EQ( this->text( range( 10000, 2 ) ), "firstPort=10000, count=2" );
    EXPECT_LT( range( 1, 9 ), range( 2, 1 ) );
    EXPECT_GT( range( 2, 2 ), range( 2, 1 ) );
}

TYPED_TEST( InEndpoints, StoresAndRestores )
{
    EXPECT_EQ( support::json( TypeParam::store( this->make( "::1", 5060 ).get() ) ),
               R"({"address":"::1","port":5060})" );
    for ( const char *source : { R"({"address":"10.0.0.1","port":1})", R"({"address":"10.0.0.1","port":65535})" } ) {
        const auto restored = pb::adopt( TypeParam::tryRestore( support::store( source ).get() ) );
        EXPECT_EQ( support::json( TypeParam::store( restored.get() ) ), source );
    }
    for ( const char *refused :
          { R"({"address":"10.0.0.1","port":0})", R"({"address":"10.0.0.1","port":65536})",
            R"({"address":"10.0.0.1","port":-1})", R"({"address":"10.0.0.1","port":"x"})", R"({"address":"10.0.0.1"})",
            R"({"address":"10.0.0","port":1})", R"({"port":1})", R"({"address":{},"port":1})" } )
        EXPECT_FALSE( pb::adopt( TypeParam::tryRestore( support::store( refused ).get() ) ) ) << refused;
    for ( const char *source : { R"({"firstPort":1,"count":0})", R"({"firstPort":65535,"count":65535})" } ) {
        const auto restored = pb::adopt( TypeParam::tryRestoreRange( support::store( source ).get() ) );
        EXPECT_EQ( support::json( TypeParam::storeRange( restored.get() ) ), source );
    }
    for ( const char *refused :
          { R"({"firstPort":0,"count":1})", R"({"firstPort":65536,"count":1})", R"({"firstPort":1,"count":-1})",
            R"({"firstPort":1,"count":65536})", R"({"firstPort":1})", R"({"count":1})" } )
        EXPECT_FALSE( pb::adopt( TypeParam::tryRestoreRange( support::store( refused ).get() ) ) ) << refused;
}

TYPED_TEST( InEndpoints, UpdateChangesAsLittleAsItCan )
{
    auto endpoint = this->make( "10.0.0.1", 1 );
    auto *const first = endpoint.get();

    auto queued = endpoint;
    TypeParam::update( endpoint.address(), address( "10.0.0.1" ).get(), 1 );
    EXPECT_EQ( endpoint.get(), first ) << "equal: neither changed nor copied, though shared";

    TypeParam::update( endpoint.address(), address( "10.0.0.1" ).get(), 2 );
    EXPECT_NE( endpoint.get(), first ) << "shared: copied";
    EXPECT_EQ( this->text( queued ), "10.0.0.1:1" );
    EXPECT_EQ( this->text( endpoint ), "10.0.0.1:2" );

    auto *const own = endpoint.get();
    TypeParam::update( endpoint.address(), address( "::1" ).get(), 2 );
    EXPECT_EQ( endpoint.get(), own ) << "held once: in place";
    EXPECT_EQ( this->text( endpoint ), "[::1]:2" );
}

TYPED_TEST( InEndpoints, DeathOfBadPorts )
{
    const auto ina = address( "10.0.0.1" );
    auto endpoint = this->make( "10.0.0.1", 1 );
    auto range = pb::adopt( TypeParam::createRange( 2, 65535 ) );
    const std::string port = std::string( TypeParam::prefix ) + "( port )";
    const std::string firstPort = std::string( TypeParam::prefix ) + "( firstPort )";
    support::expectDeaths( {
        { [&] { TypeParam::create( ina.get(), 0 ); }, port },
        { [&] { TypeParam::create( ina.get(), 65536 ); }, port },
        { [&] { TypeParam::create( ina.get(), -1 ); }, port },
        { [&] { TypeParam::create( nullptr, 1 ); }, "address" },
        { [&] { TypeParam::setPort( endpoint.address(), 0 ); }, port },
        { [&] { TypeParam::setAddress( endpoint.address(), nullptr ); }, "address" },
        { [&] { TypeParam::createRange( 0, 1 ); }, firstPort },
        { [&] { TypeParam::setFirstPort( range.address(), 65536 ); }, firstPort },
        { [&] { TypeParam::setCount( range.address(), -1 ); }, "count >= 0 && count <= 65535" },
        { [&] { TypeParam::createRange( 1, 65536 ); }, "count >= 0 && count <= 65535" },
    } );
}

TEST( InRawAddress, HoldsAProtocol )
{
    auto raw = pb::adopt( inRawAddressCreate( address( "::1" ).get(), 0 ) );
    EXPECT_EQ( pb::utf8( pb::adopt( inRawAddressToString( raw.get() ) ) ), "[::1]:0" );
    const auto queued = raw;
    in___RawAddressUpdate( raw.address(), address( "::1" ).get(), 255 );
    EXPECT_EQ( inRawAddressProtocol( queued.get() ), 0 );
    EXPECT_EQ( inRawAddressCompare( queued.get(), raw.get() ), -1 );
    support::expectDeaths(
        { { [&] { inRawAddressCreate( address( "::1" ).get(), 256 ); }, "IN_RAW_PROTOCOL_OK( protocol )" } } );
}

} // namespace
