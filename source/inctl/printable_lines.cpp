// Text of several lines, for a terminal.
#include "inctl/printable_lines.hpp"

#include "inctl/object_state.hpp"

#include <algorithm>

namespace inctl {

std::string printableLines( const std::string &text )
{
    std::string lines;
    for ( size_t begin = 0, end; begin <= text.size(); begin = end + 1 ) {
        end = std::min( text.find( '\n', begin ), text.size() );
        lines += ( begin > 0 ? "\n" : "" ) + printable( text.substr( begin, end - begin ) );
    }
    return lines;
}

} // namespace inctl
