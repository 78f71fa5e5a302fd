// StatusWatch: how the objects of a running configuration fare, and which of them changed since the last look. It keeps
// no object alive between two looks.
#ifndef INCTL_STATUS_WATCH_HPP
#define INCTL_STATUS_WATCH_HPP

#include "inctl/configuration.hpp"
#include "inctl/object_state.hpp"

#include "cs/cs_condition.h"
#include "cs/cs_record.h"
#include "cs/cs_status_reporter.h"
#include "pb/pb_signalable.h"

#include <map>
#include <string>
#include <vector>

namespace inctl {

class StatusWatch {
  public:
    // After a look they are signalled when objects may have become others, and when a state may have changed.
    // The configuration outlives this.
    StatusWatch( const Configuration &configuration, struct pbSignalable *objects, struct pbSignalable *states,
                 ObjectState ( *stateOf )( const struct csRecord *record ) );
    ~StatusWatch();
    StatusWatch( const StatusWatch & ) = delete;
    StatusWatch &operator=( const StatusWatch & ) = delete;

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

    const Configuration &configuration_;
    const pb::Ref<struct pbSignalable> objects_;
    const pb::Ref<struct pbSignalable> states_;
    ObjectState ( *const stateOf_ )( const struct csRecord *record );
    std::map<std::string, Watched> watched_;
    std::vector<std::string> order_;
    bool open_ = false;
};

} // namespace inctl

#endif
