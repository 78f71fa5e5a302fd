// RecordsChange: one pass from the live records as they are to those that are wanted.
#ifndef CS_RECORDS_CHANGE_INTERNAL_H
#define CS_RECORDS_CHANGE_INTERNAL_H

#include "cs/cs_record_internal.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

struct trStream;
struct pbVector;

namespace cs {

using LiveRecords = std::vector<pb::Ref<struct csRecord>>;

// Null: nobody asked.
void setVector( struct pbVector **optionalVector, const pb::Ref<struct pbVector> &value );

// Its functions call into sorts, without a monitor held, and belong in this order.
class RecordsChange {
public:
    // Names stand once in each.
    RecordsChange( struct trStream *stream, LiveRecords before, const LiveRecords &next );

    // Those of before whose objects stay.
    LiveRecords kept() const;
    // Releases the objects of the others, in reverse order.
    void releaseOthers();
    // Configures and creates, in order. A record that says the same as before keeps its object untouched.
    LiveRecords makeNext();
    // What was done, as csConfigurationApply tells it.
    const pb::Ref<struct pbVector> &changes() const noexcept { return changes_; }

private:
    pb::Ref<struct csRecord> configured( const pb::Ref<struct csRecord> &before, const pb::Ref<struct csRecord> &next );
    pb::Ref<struct csRecord> created( const struct csRecord &next );
    void tell( const struct csRecord &record, const char *change );

    struct trStream *const stream_;
    LiveRecords before_;
    const LiveRecords next_;
    std::unordered_map<std::string, pb::Ref<struct csRecord>> kept_; // of before, by name
    std::unordered_set<std::string> beforeNames_, nextNames_;
    pb::Ref<struct pbVector> changes_;
};

} // namespace cs

#endif
