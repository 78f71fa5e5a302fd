// RunBoard: what a running host says of itself: how its objects fare, and why the last new file was refused. The main
// thread writes it; any thread reads it.
#ifndef INCTL_RUN_BOARD_HPP
#define INCTL_RUN_BOARD_HPP

#include "inctl/object_state.hpp"

#include "pb/pb_monitor.hpp"
#include "pb/pb_signal.h"

#include <memory>
#include <string>
#include <vector>

namespace inctl {

class RunBoard {
public:
    using States = std::shared_ptr<const std::vector<ObjectState>>;

    // Why the last file was refused, while what ran before goes on.
    struct Refusal {
        std::string time;                  // as Output's timeStamp
        std::vector<std::string> problems; // a line each; empty when the last file was good
    };

    void setStates( std::vector<ObjectState> states );
    // In the order of the file; never null.
    States states() const;

    void setRefusal( Refusal refusal );
    Refusal refusal() const;

    // All of it in one line: a refusal first, then how many objects are not good, and why the first of them.
    std::string summary() const;

    // Signalled at the next change; register before reading.
    void updateAddSignalable( struct pbSignalable *signalable );
    void updateDelSignalable( struct pbSignalable *signalable );

private:
    // The update signal that is over, to be dropped after the monitor.
    [[nodiscard]] pb::Ref<struct pbSignal> assertUpdate() PB_REQUIRES( monitor_ );

    mutable pb::Monitor monitor_;
    States states_ PB_GUARDED_BY( monitor_ ) = std::make_shared<const std::vector<ObjectState>>();
    Refusal refusal_ PB_GUARDED_BY( monitor_ );
    pb::Ref<struct pbSignal> update_ PB_GUARDED_BY( monitor_ ) = pb::adopt( pbSignalCreate() );
};

} // namespace inctl

#endif
