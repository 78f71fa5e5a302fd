// The library running for a command that looks names up and ends. It outlives the command, so that the outcome is said
// before it is shut down.
#ifndef INCTL_ASKING_HOST_HPP
#define INCTL_ASKING_HOST_HPP

#include "inctl/exit_code.hpp"

namespace inctl {

// In place of a Host of the command's own; once per process. Throws Failure.
void startAskingHost();

// A look-up still runs and nobody waits for it any more. Nothing interrupts the system's resolver, which can take
// minutes, and shutting down waits for it.
void leaveLookUpBehind();

// When the outcome is said and written. Where a look-up was left behind the process ends here, with that exit code.
void endAskingHost( Exit exit );

} // namespace inctl

#endif
