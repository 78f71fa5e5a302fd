// The formatter behind every text of the system.
//
//   %i      integer, decimal          %!16i   in the base after "!" (2..36)     %02!16i  zero-padded to the width
//   %^      lower-case digits (without it upper case)
//   %s      pbString                  %o      any object, by its text form      %b       "true" or "false"
//   %c      one code point            %%      a per cent sign
//   %~s %~o release the argument after formatting (C only; in C++ an argument given by value releases itself)
//
// A null object prints "null". A directive that does not fit its argument aborts.
#ifndef PB_FORMAT_H
#define PB_FORMAT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define PB_FORMAT_ARGUMENT_INT 0
#define PB_FORMAT_ARGUMENT_BOOL 1
#define PB_FORMAT_ARGUMENT_CHAR 2
#define PB_FORMAT_ARGUMENT_OBJ 3

struct pbFormatArgument {
    pbInt kind;              // PB_FORMAT_ARGUMENT_...
    pbInt number;            // integer, boolean or code point
    const struct pbObj *obj; // or null
};

PB_API struct pbString *pbStringCreateFromFormatCstr( const char *format, pbInt formatLength,
                                                      const struct pbFormatArgument *arguments, pbInt argumentCount );
PB_API void pbStringAppendFormatCstr( struct pbString **string, const char *format, pbInt formatLength,
                                      const struct pbFormatArgument *arguments, pbInt argumentCount );

PB_DECLS_END

#endif
