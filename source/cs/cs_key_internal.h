// What the tables of keys say: of a value, whether it fits; of a name, which known one is meant.
#ifndef CS_KEY_INTERNAL_H
#define CS_KEY_INTERNAL_H

#include "cs/cs_json_reader_internal.h"
#include "cs/cs_key.h"
#include "cs/cs_problems_internal.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cs {

using Keys = std::span<const struct csKey>;

const struct csKey *findKey( Keys keys, std::string_view name ); // or null
Keys subKeys( const struct csKey *optionalKey );
// Of the members of a container: of an array all have the one description.
const struct csKey *memberKey( Keys keys, const JsonValue &container, std::string_view name );

// "1..65535", "one of A, B".
std::string expectedText( const struct csKey &key );
// Empty when the value fits.
Finding keyProblem( const struct csKey &key, const JsonValue &value );

std::vector<std::string> keyNames( Keys keys );
// "unknown KIND", and what was meant or is known.
Finding unknownName( std::string_view kind, std::string_view name, const std::vector<std::string> &known );

// A flag that stands twice in the text of a CS_KEY_FLAGS value, or empty.
std::string repeatedFlag( std::string_view text );

// The value as the store reads numbers: decimal or hexadecimal. False when it is none.
bool integerFromText( const std::string &text, pbInt &value );

} // namespace cs

#endif
