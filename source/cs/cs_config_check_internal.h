// Judges the configuration of one record.
#ifndef CS_CONFIG_CHECK_INTERNAL_H
#define CS_CONFIG_CHECK_INTERNAL_H

#include "cs/cs_json_reader_internal.h"
#include "cs/cs_problems_internal.h"
#include "cs/cs_sort_backend_internal.h"

namespace cs {

// Adds a problem for every key that the sort does not know and every value that it would drop. config is an object;
// path names its record. The caller holds a Call of the sort. Marks what it finds in the tree.
void checkConfig( const Sort &sort, JsonValue &config, const std::string &path, Problems &problems );

} // namespace cs

#endif
