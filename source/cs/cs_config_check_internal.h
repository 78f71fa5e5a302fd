// Judges the configuration of one record.
#ifndef CS_CONFIG_CHECK_INTERNAL_H
#define CS_CONFIG_CHECK_INTERNAL_H

#include "cs/cs_json_reader_internal.h"
#include "cs/cs_problems_internal.h"
#include "cs/cs_sort_backend_internal.h"

namespace cs {

// Adds a problem for every key that the sort does not know and every value that it would drop. config is an object;
// record is its name as printable text. The caller holds a Call of the sort. Marks what it finds in the tree.
void checkConfig( const Sort &sort, JsonValue &config, const std::string &record, Problems &problems );

struct CheckedRecord {
    std::string name;
    std::string printableName;
    std::shared_ptr<Sort> sort; // null when it is not known
    size_t offset;
    JsonValue *config; // null when it has none
};

// What shows only when all records are known: references to records, and the warnings when they are wanted. Of a text
// that is not whole the records may be missing.
void checkTogether( const std::vector<CheckedRecord> &records, bool whole, Problems &problems );

} // namespace cs

#endif
