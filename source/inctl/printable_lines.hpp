// Text of several lines, for a terminal that it is not to steer.
#ifndef INCTL_PRINTABLE_LINES_HPP
#define INCTL_PRINTABLE_LINES_HPP

#include <string>

namespace inctl {

// Control characters become "?", as in printable(), but line feeds stay: they are the program's own when each piece
// from outside was made printable before.
std::string printableLines( const std::string &text );

} // namespace inctl

#endif
