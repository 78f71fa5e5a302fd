// Domain names as people write them on a command line.
#ifndef INCTL_DOMAIN_NAME_HPP
#define INCTL_DOMAIN_NAME_HPP

#include "pb/pb_string.hpp"

#include <string>

namespace inctl {

// A name that the system's resolver can be asked for. Throws Failure (usage) that tells the label which is wrong.
pb::String parseDomainName( const std::string &text );

} // namespace inctl

#endif
