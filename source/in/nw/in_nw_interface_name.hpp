// What an interface of the host is called: the kernel's names are bytes, identifiers are text.
#ifndef IN_NW_INTERFACE_NAME_HPP
#define IN_NW_INTERFACE_NAME_HPP

#include "pb/pb_string.hpp"

#include <string>
#include <string_view>

namespace in {

// The name as text. A byte that belongs to no UTF-8 sequence becomes "\xff", two lower-case digits; so does the backslash
// of a name that has such an escape in it already: each name has an identifier of its own.
pb::String identifierOfInterface( std::string_view name );
// The name of the identifier.
std::string interfaceNameOf( const struct pbString *identifier );

} // namespace in

#endif
