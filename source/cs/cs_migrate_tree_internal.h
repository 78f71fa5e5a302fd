// Brings a configuration that was read up to date.
#ifndef CS_MIGRATE_TREE_INTERNAL_H
#define CS_MIGRATE_TREE_INTERNAL_H

#include "cs/cs_json_reader_internal.h"

namespace cs {

// Runs the registered updates on the tree. What they leave alone keeps its places in the text; what they write has the
// place of what it replaces, or of the object that it was added to.
void migrate( JsonValue &root );

} // namespace cs

#endif
