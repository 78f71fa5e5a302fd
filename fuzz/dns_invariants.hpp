// What holds for every sequence of bytes given to the DNS decoder.
#ifndef DNS_INVARIANTS_HPP
#define DNS_INVARIANTS_HPP

#include "dns_message.hpp"
#include "dns_reference.hpp"
#include "pb/pb_assert.hpp"

namespace support {

// Accepted as the reference accepts it, with the same names, all valid; cut off anywhere, it is refused.
inline void checkDnsMessage( std::string_view bytes )
{
    const DnsReference reference( bytes );
    const DnsMessage msg = dnsDecode( bytes );
    PB_ASSERT( static_cast<bool>( msg ) == reference.accepted );
    if ( !msg )
        return;
    const auto names = dnsNames( msg );
    PB_ASSERT( names.size() == reference.names.size() );
    for ( size_t i = 0; i < names.size(); ++i ) {
        PB_ASSERT( ( names[i] ? pb::view( names[i].get() ) : U"" ) == reference.names[i] );
        PB_ASSERT( !names[i] || inDnsIdnaDomainNameOk( names[i].get() ) );
    }
    const size_t step = 1 + reference.size / 256;
    for ( size_t length = 0; length < reference.size; length += step )
        PB_ASSERT( !dnsDecode( bytes.substr( 0, length ) ) );
    PB_ASSERT( !dnsDecode( bytes.substr( 0, reference.size - 1 ) ) );
    PB_ASSERT( dnsDecode( bytes.substr( 0, reference.size ) ) );
}

} // namespace support

#endif
