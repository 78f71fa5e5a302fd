// The names of the tour: what inctl tour-names found.
#ifndef INCTL_TOUR_NAMES_HPP
#define INCTL_TOUR_NAMES_HPP

#include "inctl/output.hpp"

namespace inctl {

// False when names or peers did not come out as they must; what this system does not permit is left out, in a sentence.
bool showNames( Output &output, Record &record );

} // namespace inctl

#endif
