// A record of a configuration.
#ifndef CS_RECORD_INTERNAL_H
#define CS_RECORD_INTERNAL_H

#include "cs/cs_record.h"
#include "pb/pb_object.hpp"
#include "pb/pb_string.hpp"

#include <memory>
#include <string>

PB_SORT_DECLARE( cs___sort_CS_RECORD )

namespace cs {
struct Sort;
}

struct csRecord final : pb::Object<struct csRecord, cs___sort_CS_RECORD> {
    std::string name;
    std::shared_ptr<cs::Sort> sort;
    pb::Ref<struct pbStore> optionalStore;
    pb::Ref<struct pbObj> optionalObject;
};

#endif
