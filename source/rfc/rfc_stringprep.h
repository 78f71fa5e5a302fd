// Stringprep (RFC 3454) profiles over Unicode 3.2.
#ifndef RFC_STRINGPREP_H
#define RFC_STRINGPREP_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

// Nameprep (RFC 3491): map, NFKC, prohibit, check bidi. Null when a step refuses the text. With allowUnassigned, code
// points that Unicode 3.2 does not assign pass, and a text that stays as it is is returned itself, retained. The time
// grows with the square of a long text's length.
PB_API struct pbString *rfcStringprepProfileNameprep( const struct pbString *string, pbBool allowUnassigned );

PB_DECLS_END

#endif
