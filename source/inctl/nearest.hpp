// The names that a misspelt one was probably meant to be.
#ifndef INCTL_NEAREST_HPP
#define INCTL_NEAREST_HPP

#include <string>
#include <string_view>
#include <vector>

namespace inctl {

// The names within a few typing errors of the given one (a character too many, missing, wrong, or two swapped), best
// first, at most three.
std::vector<std::string> nearestNames( std::string_view name, const std::vector<std::string> &names );

// "; did you mean A or B?", or what there is when nothing is near ("; there are A, B and C"), or nothing.
std::string suggestion( std::string_view name, const std::vector<std::string> &names );

} // namespace inctl

#endif
