// The options that say on which stack a command sends or receives, and the stack that they choose.
#ifndef INCTL_STACK_CHOICE_HPP
#define INCTL_STACK_CHOICE_HPP

#include "inctl/configuration.hpp"

#include "in/base/in_stack.h"

#include <string>

struct inAddress;

namespace CLI {
class App;
}

namespace inctl {

struct StackChoice {
    const char *option = "--from-stack"; // what the user calls it
    std::string fromStack; // FILE:OBJECT
    std::string interface;
    std::string address;
    std::string ports; // FIRST-LAST
};

// The stack of that record alone: other objects of the file might change the host. Throws Failure.
pb::Ref<struct inStack> makeStack( const Configuration &configuration, const std::string &name );

void addStackOptions( CLI::App &command, StackChoice &choice );

// The stack lives as long as this does; its Host outlives both.
class ChosenStack {
public:
    // A peer narrows what the options leave open: the stack takes its version, and loopback for a loopback peer. Throws
    // Failure.
    ChosenStack( const StackChoice &choice, const struct inAddress *optionalPeer );

    struct inStack *get() const { return stack_.get(); }

private:
    pb::Ref<struct inStack> stack_;
};

} // namespace inctl

#endif
