// Stores as JSON text: stores become objects, store arrays arrays, values strings.
#ifndef CS_JSON_H
#define CS_JSON_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbStore;
struct pbString;

#define CS_JSON_SHORT 0  // one line
#define CS_JSON_PRETTY 1 // indented by two blanks

PB_API struct pbString *csJsonFromStore( const struct pbStore *store, pbInt style );
// Null when the text is not JSON or its top is neither object nor array.
PB_API struct pbStore *csJsonTryToStore( const struct pbString *text );

PB_DECLS_END

#endif
