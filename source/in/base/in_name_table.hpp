// Tables of names behind enumerations and flag words: a null-terminated list in which names[i] is the value i of an
// enumeration or bit i of a flag word. In-tree only.
#ifndef IN_NAME_TABLE_HPP
#define IN_NAME_TABLE_HPP

#include "pb/pb_enum.h"
#include "pb/pb_flagset.h"
#include "pb/pb_global.hpp"

namespace in {

void startEnum( pb::Global<struct pbEnum> &table, const char *const *names );
// globalName is the name of the variable, for the message of a name that is there twice.
void startFlagset( pb::Global<struct pbFlagset> &table, const char *globalName, const char *const *names );

} // namespace in

#endif
