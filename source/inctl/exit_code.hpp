// The exit codes of inctl, and Failure: what ended a command, as a sentence for a person and the code that goes with
// it.
#ifndef INCTL_EXIT_CODE_HPP
#define INCTL_EXIT_CODE_HPP

#include <string>

namespace inctl {

enum class Exit : int {
    Yes = 0,
    No = 1, // the answer is no: nothing found, nothing came
    Usage = 2,
    Configuration = 3,
    Permission = 4, // the sentence names the missing capability
    System = 5,
};

// Thrown inside the program only; main() prints the sentence and ends with the code.
struct Failure {
    Exit exit;
    std::string sentence;
};

} // namespace inctl

#endif
