// What is looked at on a host before a server runs there.
#ifndef INCTL_DOCTOR_HPP
#define INCTL_DOCTOR_HPP

#include <string>
#include <vector>

namespace inctl {

enum class State {
    Good,
    Note, // no fault of this host, but something does not happen
    Bad,
};

struct Finding {
    std::string name;
    State state;
    std::string detail;
    std::string remedy; // what to do; empty when there is nothing to be done
};

// As this process finds it; changes nothing.
std::vector<Finding> examineHost();

} // namespace inctl

#endif
