// Any datagram in place of rtnetlink's answer: the walk stays inside it, and more bytes do not change what was decided.
#include "in/nw/in_nw_interface_imp_rtnetlink.hpp"

#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    std::optional<int> before;
    for ( size_t length = 0; length <= size && length <= 2048; ++length ) {
        const std::vector<uint8_t> bytes( data, data + length ); // ends where its memory ends
        const auto answer = in::rtnetlinkAnswer( bytes.data(), length );
        if ( ( answer && *answer < 0 ) || ( before && answer != before ) )
            std::abort();
        before = answer;
    }
    return 0;
}
