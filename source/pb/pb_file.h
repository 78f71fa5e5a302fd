// Whole-file reading.
#ifndef PB_FILE_H
#define PB_FILE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbBuffer;
struct pbString;

// Null when the file cannot be read. Reads to the end, whatever size the file system reports (/proc says 0).
PB_API struct pbBuffer *pbFileTryReadAll( const struct pbString *path );
PB_API struct pbBuffer *pbFileTryReadAllCstr( const char *path );

PB_DECLS_END

#endif
