// Network interfaces as inctl shows them: a table row, a record, a line.
#ifndef INCTL_INTERFACE_VIEW_HPP
#define INCTL_INTERFACE_VIEW_HPP

#include "inctl/record.hpp"
#include "inctl/table.hpp"

#include "in/nw/in_nw_interface.h"
#include "in/nw/in_nw_interface_state.h"
#include "pb/pb_object.hpp"

#include <string>
#include <vector>

namespace inctl {

// An interface with the state that it had when it was looked at.
struct InterfaceView {
    pb::Ref<struct inNwInterface> interface;
    pb::Ref<struct inNwInterfaceState> state;

    explicit InterfaceView( pb::Ref<struct inNwInterface> of );

    std::string name() const;
    // Keys "identifier" and "state", as in the module's information.
    Record record() const;
    // "up, 10 Gbit/s, MTU 1500, 10.0.0.1"
    std::string line() const;
};

// All of the host, ascending by name.
std::vector<InterfaceView> interfaces();

// Throws Failure, with the names that are near, unless the host has an interface of that name.
void requireInterface( const std::string &name );

void printInterfaces( Output &output, const std::vector<InterfaceView> &views );
Record interfacesRecord( const std::vector<InterfaceView> &views );

} // namespace inctl

#endif
