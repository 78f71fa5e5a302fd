// Any bytes as a label of a DNS message: alone, first, in the middle and last, and as what a pointer leads to.
#include "dns_invariants.hpp"
#include "support/dns_wire.hpp"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    using namespace support;
    if ( size == 0 || size > 63 )
        return 0;
    const std::string text( reinterpret_cast<const char *>( data ), size );
    // All four places in a replay; when millions of inputs are tried each gets one, chosen by its bytes.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
    size_t place = std::hash<std::string>()( text ) % 4;
    const size_t end = place + 1;
#else
    size_t place = 0;
    const size_t end = 4;
#endif
    for ( ; place < end; ++place ) {
        const std::string before = place & 1 ? dnsLabels( "a" ) : "", behind = place & 2 ? dnsLabels( "b" ) : "";
        DnsWire wire;
        wire.question( before + static_cast<char>( size ) + text + behind + '\0', 1 );
        wire.question( dnsLabels( "c" ) + dnsPointer( 12 + before.size() ), 1 );
        checkDnsMessage( wire.bytes );
    }
    return 0;
}
