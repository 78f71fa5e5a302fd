// Payloads as people and programs read them.
#ifndef INCTL_PREVIEW_HPP
#define INCTL_PREVIEW_HPP

#include <string>

struct pbBuffer;

namespace inctl {

// "80 00 1a 2b ...  |..+.|", the first 16 bytes.
std::string preview( const struct pbBuffer *payload );
// All bytes, two digits each.
std::string hexadecimal( const struct pbBuffer *payload );

} // namespace inctl

#endif
