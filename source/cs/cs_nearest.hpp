// The names that a misspelt one was probably meant to be. In-tree only.
#ifndef CS_NEAREST_HPP
#define CS_NEAREST_HPP

#include "pb/pb_base.h"

#include <string>
#include <string_view>
#include <vector>

namespace cs {

// The known names within a few typing errors of the given one (a character too many, missing, wrong, or two swapped;
// case is none), or of which it is the beginning, best first, at most three.
PB_API std::vector<std::string> nearestNames( std::string_view name, const std::vector<std::string> &known );

} // namespace cs

#endif
