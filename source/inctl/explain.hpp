// The subjects of inctl explain, each in its own file. They return No where the answer is that nothing is chosen, or
// nobody let in. Names are looked up for timeout milliseconds at most.
#ifndef INCTL_EXPLAIN_HPP
#define INCTL_EXPLAIN_HPP

#include "inctl/configuration.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/output.hpp"

#include <string>
#include <vector>

namespace inctl {

// OBJECT, a stack: which address it takes on this host.
Exit explainStack( Output &output, const Configuration &configuration, const std::vector<std::string> &arguments,
                   pbInt timeout );
// FILTER and ADDRESS: why the filter lets the peer in or not.
Exit explainPeer( Output &output, const Configuration &configuration, const std::vector<std::string> &arguments,
                  pbInt timeout );

} // namespace inctl

#endif
