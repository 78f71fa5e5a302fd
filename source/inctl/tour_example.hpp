// The configuration that the tour shows when it is given none.
#ifndef INCTL_TOUR_EXAMPLE_HPP
#define INCTL_TOUR_EXAMPLE_HPP

#include <string_view>

namespace inctl {

extern const std::string_view tourExample;

} // namespace inctl

#endif
