// The names that a misspelt one was probably meant to be.
#ifndef INCTL_NEAREST_HPP
#define INCTL_NEAREST_HPP

#include "cs/cs_nearest.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace inctl {

using cs::nearestNames;

// "; did you mean A or B?", or what there is when nothing is near ("; there are A, B and C"), or nothing.
std::string suggestion( std::string_view name, const std::vector<std::string> &names );

} // namespace inctl

#endif
