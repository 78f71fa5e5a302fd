// Labels and names as views of code points, for callers that have no string yet. In-tree only.
#ifndef IN_DNS_IDNA_HPP
#define IN_DNS_IDNA_HPP

#include "in/dns/in_dns_idna_label.hpp"

namespace in::idna {

// U+002E FULL STOP and its ideographic, fullwidth and halfwidth kin (RFC 3490, section 3.1).
constexpr bool isSeparator( char32_t c )
{
    return c == U'.' || ( c >= 0x3002 && ( c == 0x3002 || c == 0xFF0E || c == 0xFF61 ) );
}

// What inDnsIdnaDomainNameOk says.
bool domainNameOk( std::u32string_view name );

} // namespace in::idna

#endif
