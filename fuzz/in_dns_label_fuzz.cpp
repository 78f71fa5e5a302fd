// Any bytes as a label of a DNS message: alone, first, in the middle and last, and as what a pointer leads to.
#include "dns_invariants.hpp"
#include "support/dns_wire.hpp"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    using namespace support;
    if ( size == 0 || size > 63 )
        return 0;
    const std::string label = static_cast<char>( size ) + std::string( reinterpret_cast<const char *>( data ), size );
    for ( const std::string &before : { std::string(), dnsLabels( "a" ) } )
        for ( const std::string &behind : { std::string(), dnsLabels( "b" ) } ) {
            DnsWire wire;
            wire.question( before + label + behind + '\0', 1 );
            checkDnsMessage( wire.bytes );
            wire.question( dnsLabels( "c" ) + dnsPointer( 12 + before.size() ), 1 );
            checkDnsMessage( wire.bytes );
        }
    return 0;
}
