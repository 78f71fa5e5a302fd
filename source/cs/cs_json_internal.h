// What writers of JSON share.
#ifndef CS_JSON_INTERNAL_H
#define CS_JSON_INTERNAL_H

struct pbStore;

namespace cs {

// Whether the store is one that is printed as an array: its keys are "0", "1", ... and there is one at least.
bool isArray( const struct pbStore *store );

} // namespace cs

#endif
