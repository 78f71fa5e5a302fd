// The configurations that the program carries: what the tour shows when it is given none, and its part about names.
#ifndef INCTL_TOUR_EXAMPLE_HPP
#define INCTL_TOUR_EXAMPLE_HPP

#include <string_view>

namespace inctl {

extern const std::string_view tourExample;
extern const std::string_view namesExample;

} // namespace inctl

#endif
