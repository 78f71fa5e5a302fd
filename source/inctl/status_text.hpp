// What a host tells of its objects, for a person.
#ifndef INCTL_STATUS_TEXT_HPP
#define INCTL_STATUS_TEXT_HPP

#include "inctl/output.hpp"

#include <string>

struct pbStore;

namespace inctl {

// "up", painted; padded to the width of the states there are.
std::string stateText( const Output &output, const std::string &state );
// The reason, or the items: "inStackAddress=192.0.2.1".
std::string detailText( const struct pbStore *object );

// All objects as a table, with what is to be said of the host.
void printStatus( Output &output, const struct pbStore *answer );
// The one object of the answer, with everything that is known of it.
void printDetails( Output &output, const struct pbStore *answer );

} // namespace inctl

#endif
