// What an interface configuration stack decides and says, apart from the object that runs. In-tree only.
#ifndef IN_NW_STACK_DECISIONS_HPP
#define IN_NW_STACK_DECISIONS_HPP

#include "pb/pb_string.hpp"

#include <optional>
#include <vector>

struct inAddress;

namespace in {

// Milliseconds to wait after a failure, given those of the failure before, -1 for the first: doubled, in 100..300000.
pbInt nextRetryInterval( pbInt interval );

// What of a stack's wish the kernel did not do, and the error number that says why, 0 when there is none.
struct NwFailure {
    const char *what = nullptr;
    pbInt error = 0;
};

// An address that a stack could not take away again.
struct NwLeftBehind {
    pb::String interfaceIdentifier;
    pb::Ref<struct inAddress> address;
    pbInt error = 0;
};

// How a stack stands after a run.
struct NwStackAccount {
    pb::String interfaceIdentifier; // configured, or null
    bool interfaceFound = false;
    bool condition = true;
    pb::String conditionName; // configured, or null
    std::optional<NwFailure> failure;
    pbInt retryMilliseconds = -1; // the time that was set for the next try
    std::vector<NwLeftBehind> leftBehind;

    // Everything is as the options wish.
    bool up() const { return interfaceFound && condition && !failure; }
    // For a person: why it is not up, and what was left behind; empty when there is nothing to say.
    std::string reason() const;
    // "fd00::1 on eth0, Cannot assign requested address"; empty when there is none.
    std::string leftBehindText() const;
};

} // namespace in

#endif
