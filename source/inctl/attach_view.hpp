// AttachView: the objects of a running configuration as clients are shown them, and which of them changed since the
// last look. It keeps no object alive between two looks.
#ifndef INCTL_ATTACH_VIEW_HPP
#define INCTL_ATTACH_VIEW_HPP

#include "inctl/object_state.hpp"

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_record.h"
#include "cs/cs_status_reporter.h"
#include "pb/pb_signalable.h"

#include <map>
#include <string>
#include <vector>

namespace inctl {

// As it is now; the state of a condition is its value, "true" or "false".
ObjectState stateOf( const struct csRecord *record );
// With the key "state".
Record recordOf( const ObjectState &state );
// The same with what only this sort can tell: its configuration, addresses, interfaces, queries.
Record detailsOf( const struct csRecord *record );

std::vector<pb::Ref<struct csRecord>> recordsOf( const struct csConfiguration *configuration );

class AttachView {
  public:
    // After a look they are signalled when objects may have become others, and when a state may have changed.
    AttachView( struct csConfiguration *configuration, struct pbSignalable *objects, struct pbSignalable *states );
    ~AttachView();
    AttachView( const AttachView & ) = delete;
    AttachView &operator=( const AttachView & ) = delete;

    // Registers before it reads. The names of the objects that are new, changed or gone since the last look.
    std::vector<std::string> look();
    // No signals any more; the next look finds everything new.
    void close();
    bool isOpen() const { return open_; }
    // As of the last look; null: not there.
    const ObjectState *find( const std::string &name ) const;
    // All, in the order of the file.
    std::vector<std::string> names() const;

  private:
    // What signals the changes of one object.
    struct Watched {
        ObjectState state;
        pb::Ref<struct csStatusReporter> status;
        pb::Ref<struct csCondition> condition;
    };

    bool watch( Watched &watched, const struct csRecord *record );
    void withdraw( const Watched &watched ) const;

    const pb::Ref<struct csConfiguration> configuration_;
    const pb::Ref<struct pbSignalable> objects_;
    const pb::Ref<struct pbSignalable> states_;
    std::map<std::string, Watched> watched_;
    std::vector<std::string> order_;
    bool open_ = false;
};

} // namespace inctl

#endif
