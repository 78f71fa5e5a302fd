// Conversion of whole byte buffers to text.
#ifndef PB_CHARSET_H
#define PB_CHARSET_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;
struct pbBuffer;

#define PB_CHARSET_ASCII 0
#define PB_CHARSET_UTF8 1

// Malformed bytes become U+FFFD instead of failing the conversion.
#define PB_CHARSET_FLAG_REPLACE UINT64_C( 1 )

// Null on malformed bytes. A leading UTF-8 byte order mark is dropped.
PB_API struct pbString *pbCharsetTryConvertBufferToStringWithFlags( pbInt charset, const struct pbBuffer *buffer,
                                                                    uint64_t flags );

PB_DECLS_END

#endif
