// Any bytes as a DNS message.
#include "dns_invariants.hpp"

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    support::checkDnsMessage( { reinterpret_cast<const char *>( data ), size } );
    return 0;
}
