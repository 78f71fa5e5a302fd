// Labels in wire format that are more than plain ASCII.
#include "in/dns/in_dns_label.hpp"

#include "in/dns/in_dns_idna.h"
#include "in/dns/in_dns_idna.hpp"

#include <algorithm>

namespace in::dns {

std::optional<Label> readLabel( const uint8_t *bytes, size_t length )
{
    const auto wire = pb::adopt( pbStringTryCreateFromUtf8( bytes, static_cast<pbInt>( length ) ) );
    if ( !wire || !inDnsIdnaLabelOk( wire.get() ) )
        return std::nullopt;
    Label label{ pb::adopt( inDnsIdnaLabelToUnicode( wire.get() ) ) };
    const auto text = pb::view( label.text.get() );
    // Without separators the text is a single label, which converts as the one on the wire does.
    const bool single = std::none_of( text.begin(), text.end(), idna::isSeparator );
    label.mayBeLast = single || inDnsIdnaDomainNameOk( label.text.get() );
    label.mayPrecede = label.mayBeLast && !idna::isSeparator( text.back() );
    return label;
}

} // namespace in::dns
