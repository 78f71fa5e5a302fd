// Texts of system error codes. Thread-safe.
#ifndef UNIX_ERROR_H
#define UNIX_ERROR_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbString;

PB_API struct pbString *unixErrorToString( pbInt errorNumber );
// code: a result of getaddrinfo or getnameinfo.
PB_API struct pbString *unixErrorGetaddrinfoToString( pbInt code );

PB_DECLS_END

#endif
