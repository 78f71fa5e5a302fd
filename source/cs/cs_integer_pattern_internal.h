// Regular expressions for the text of integers.
#ifndef CS_INTEGER_PATTERN_INTERNAL_H
#define CS_INTEGER_PATTERN_INTERNAL_H

#include "pb/pb_base.h"

#include <string>

namespace cs {

// Matches the whole of every text that a store reads as an integer of minimum..maximum: decimal or after "0x"
// hexadecimal, with any number of leading zeros, "-" in front of negative ones and of 0.
std::string integerPattern( pbInt minimum, pbInt maximum );

} // namespace cs

#endif
