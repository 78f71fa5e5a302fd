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

// Adds all problems; the records are of use only when there are none.
std::vector<Record> parseConfiguration( std::string_view bytes, Problems &problems );

// A record name of ASCII text: see csObjectRecordNameOk.
bool recordNameOk( std::string_view name );

} // namespace cs

#endif
