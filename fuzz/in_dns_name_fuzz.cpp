// Any bytes as the names of a DNS message: names in full and pointers, one after the other, each an SRV target so that
// the root and every length are allowed. A byte of 0xFF ends a name, which no name in wire format needs before a
// pointer.
#include "dns_invariants.hpp"
#include "support/dns_wire.hpp"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    std::string_view rest( reinterpret_cast<const char *>( data ), size );
    support::DnsWire wire;
    while ( !rest.empty() ) {
        const auto name = rest.substr( 0, rest.find( '\xFF' ) );
        rest.remove_prefix( std::min( rest.size(), name.size() + 1 ) );
        if ( name.size() > 0xFFFF - 6 )
            return 0;
        wire.answer( std::string( 1, '\0' ), 33, std::string( 6, '\0' ) + std::string( name ) );
    }
    support::checkDnsMessage( wire.bytes );
    return 0;
}
