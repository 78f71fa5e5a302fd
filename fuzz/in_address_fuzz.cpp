// Any text as address, network, host and hardware address: the two readers agree, and what is accepted is written as
// text that means the same wherever it can be read back.
#include "in/base/in_address.h"
#include "in/base/in_address_text.hpp"
#include "in/base/in_network.h"
#include "in/nw/in_nw_mac_address.h"
#include "pb/pb_assert.hpp"

#include <algorithm>
#include <cstring>

namespace {

void checkReaders( const struct pbString *text )
{
    uint8_t quick[16], patient[16];
    const int length = in::text::quick( pb::view( text ), quick );
    if ( length == 4 )
        PB_ASSERT( in::text::patientV4( text, patient ) && std::memcmp( quick, patient, 4 ) == 0 );
    if ( length == 16 )
        PB_ASSERT( in::text::patientV6( text, patient ) && std::memcmp( quick, patient, 16 ) == 0 );
    PB_ASSERT( !in::text::patientV4( text, patient ) || !in::text::patientV6( text, patient ) );
}

// A single zero group at either end is written as "::" beside seven groups, which is not read.
bool canBeReadBack( const struct inAddress *ina )
{
    const std::string text = pb::utf8( pb::adopt( inAddressToString( ina ) ) );
    const auto colons = std::count( text.begin(), text.end(), ':' );
    return colons < 8;
}

void checkAddress( const struct inAddress *ina )
{
    const auto expanded = pb::adopt( inAddressToStringExpand( ina ) );
    PB_ASSERT( inAddressEquals( pb::adopt( inAddressTryCreateFromString( expanded.get() ) ).get(), ina ) );
    PB_ASSERT( inAddressMatchingBits( ina, ina ) == inAddressLength( ina ) * 8 );
    PB_ASSERT( inAddressIsUnicast( ina ) || inAddressIsMulticast( ina ) || inAddressIsAllZero( ina ) );
    if ( !canBeReadBack( ina ) )
        return;
    const auto shrunk = pb::adopt( inAddressToStringShrink( ina ) );
    PB_ASSERT( inAddressEquals( pb::adopt( inAddressTryCreateFromString( shrunk.get() ) ).get(), ina ) );
    const auto host = pb::adopt( inAddressToHost( ina ) );
    PB_ASSERT( inAddressEquals( pb::adopt( inAddressTryCreateFromHost( host.get() ) ).get(), ina ) );
}

void checkNetwork( const struct inNetwork *net )
{
    const auto ina = pb::adopt( inNetworkAddress( net ) );
    checkAddress( ina.get() );
    PB_ASSERT( inNetworkContainsAddress( net, ina.get() ) && inNetworkContainsNetwork( net, net ) );
    PB_ASSERT( inNetworkPrefixLength( net ) >= -1 && inNetworkPrefixLength( net ) <= inAddressLength( ina.get() ) * 8 );
    if ( canBeReadBack( ina.get() ) ) {
        const auto text = pb::adopt( inNetworkToString( net ) );
        PB_ASSERT( inNetworkEquals( pb::adopt( inNetworkTryCreateFromString( text.get() ) ).get(), net ) );
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    const auto text = pb::string( { reinterpret_cast<const char *>( data ), size } );
    checkReaders( text.get() );
    const auto ina = pb::adopt( inAddressTryCreateFromString( text.get() ) );
    if ( ina )
        checkAddress( ina.get() );
    const auto host = pb::adopt( inAddressTryCreateFromHost( text.get() ) );
    if ( host )
        checkAddress( host.get() );
    const auto net = pb::adopt( inNetworkTryCreateFromString( text.get() ) );
    PB_ASSERT( net || !ina );
    if ( net )
        checkNetwork( net.get() );
    const auto mac = pb::adopt( inNwMacAddressTryCreateFromString( text.get() ) );
    if ( mac ) {
        const auto written = pb::adopt( inNwMacAddressToString( mac.get() ) );
        PB_ASSERT( inNwMacAddressEquals( pb::adopt( inNwMacAddressTryCreateFromString( written.get() ) ).get(), mac.get() ) );
    }
    return 0;
}
