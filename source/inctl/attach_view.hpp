// The objects of a running configuration as clients are shown them.
#ifndef INCTL_ATTACH_VIEW_HPP
#define INCTL_ATTACH_VIEW_HPP

#include "inctl/object_state.hpp"

#include "cs/cs_record.h"

namespace inctl {

// As it is now; the state of a condition is its value, "true" or "false".
ObjectState stateOf( const struct csRecord *record );
// With the key "state".
Record recordOf( const ObjectState &state );
// The same with what only this sort can tell: its configuration, addresses, interfaces, queries.
Record detailsOf( const struct csRecord *record );

} // namespace inctl

#endif
