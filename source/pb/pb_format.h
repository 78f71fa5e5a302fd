// The formatter behind every text of the system.
//
//   %i      integer, decimal          %!16i   in the base after "!" (2..36)     %02!16i  zero-padded to the width
//   %^      lower-case digits (without it upper case)
//   %s      pbString                  %o      any object, by its text form      %b       "true" or "false"
//   %c      one code point            %%      a per cent sign
//
// "~" before s or o marks an argument that the text takes with it; the kind of the argument decides: an object of kind
// PB_FORMAT_ARGUMENT_OBJ_CONSUMED is released after formatting, whichever directive reads it.
// A null object prints "null", what is no Unicode scalar value prints as U+FFFD. i, b and c read any number.
// A directive that does not fit its argument, or too few or too many arguments, abort.
#ifndef PB_FORMAT_H
#define PB_FORMAT_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

#define PB_FORMAT_ARGUMENT_INT 0
#define PB_FORMAT_ARGUMENT_BOOL 1
#define PB_FORMAT_ARGUMENT_CHAR 2
#define PB_FORMAT_ARGUMENT_OBJ 3
#define PB_FORMAT_ARGUMENT_OBJ_CONSUMED 4 // the formatter releases the caller's reference

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
