// The text of a configuration as checked records.
#ifndef CS_CONFIGURATION_INTERNAL_H
#define CS_CONFIGURATION_INTERNAL_H

#include "cs/cs_problems_internal.h"
#include "cs/cs_sort_backend_internal.h"
#include "pb/pb_store.h"

namespace cs {

struct Record {
    std::string name;
    std::shared_ptr<Sort> sort;
    pb::Ref<struct pbStore> optionalStore;
};

struct ParsedConfiguration {
    std::vector<Record> records;     // in the order of the file
    pb::Ref<struct pbStore> modules; // "modules" as the updates left it, or an empty store
};

// Runs the updates on what the text says and checks the outcome. Adds all problems; the result is of use only when
// there are none.
ParsedConfiguration parseConfiguration( std::string_view bytes, Problems &problems );

// A record name of ASCII text: see csObjectRecordNameOk.
bool recordNameOk( std::string_view name );

} // namespace cs

#endif
