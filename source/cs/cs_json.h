// Stores as JSON text: stores become objects, store arrays arrays. Text that is a decimal integer as a store writes it,
// within +-(2^53 - 1), is printed as a number, "true" and "false" as booleans, all else as strings; reading gives back
// the same texts, so a store comes back equal.
#ifndef CS_JSON_H
#define CS_JSON_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csKey;
struct pbStore;
struct pbString;

#define CS_JSON_SHORT 0  // one line
#define CS_JSON_PRETTY 1 // indented by two blanks

// A store whose keys are "0", "1", ... in order is printed as an array; an empty one as {}.
PB_API struct pbString *csJsonFromStore( const struct pbStore *store, pbInt style );
// The same, but where the table knows a key its kind decides: an empty array is [], text that looks like a number stays
// a string. keys describe the keys of the store itself (see cs_key.h).
PB_API struct pbString *csJsonFromStoreWithKeys( const struct pbStore *store, pbInt style, const struct csKey *keys,
                                                 pbInt keyCount );
// Null when the text is not JSON (comments are allowed), its top is neither object nor array, a value is null, a key
// occurs twice in one object, or it is nested deeper than 64.
PB_API struct pbStore *csJsonTryToStore( const struct pbString *text );
// The same; but that refuses, as files are refused, what is longer than 16 MiB or has more than 100,000 values, and this
// takes all. For text whose length the caller has bounded.
PB_API struct pbStore *csJsonTryToStoreWhole( const struct pbString *text );

PB_DECLS_END

#endif
