// Payloads as people and programs read them.
#include "inctl/preview.hpp"

#include "pb/pb_buffer.h"

#include <fmt/format.h>

#include <algorithm>

namespace inctl {

std::string preview( const struct pbBuffer *payload )
{
    const pbInt length = pbBufferLength( payload );
    if ( length == 0 )
        return "(empty)";
    std::string digits;
    std::string characters;
    for ( pbInt i = 0; i < std::min<pbInt>( length, 16 ); ++i ) {
        const pbInt byte = pbBufferByteAt( payload, i );
        digits += fmt::format( "{:02x} ", byte );
        characters += byte >= 0x20 && byte < 0x7F ? static_cast<char>( byte ) : '.';
    }
    return fmt::format( "{}{} |{}|", digits, length > 16 ? "..." : "", characters );
}

std::string hexadecimal( const struct pbBuffer *payload )
{
    std::string digits;
    for ( pbInt i = 0; i < pbBufferLength( payload ); ++i )
        digits += fmt::format( "{:02x}", pbBufferByteAt( payload, i ) );
    return digits;
}

} // namespace inctl
