// The kinds of the keys that inctl's records hold, so that JSON shows them right: texts that look like numbers as
// texts, empty lists as lists.
#ifndef INCTL_RECORD_KEYS_HPP
#define INCTL_RECORD_KEYS_HPP

#include "inctl/record.hpp"

#include "cs/cs_json.h"

#include <string>

namespace inctl {

// style: CS_JSON_SHORT or CS_JSON_PRETTY
std::string jsonText( const Record &record, pbInt style );

// A store that the library traces, on one line. Of those only the states of interfaces have keys that may be empty
// arrays.
std::string storeText( const struct pbStore *store );

} // namespace inctl

#endif
