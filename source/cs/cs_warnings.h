// csWarnings: takes what a sort finds worth knowing in a configuration that is valid.
#ifndef CS_WARNINGS_H
#define CS_WARNINGS_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csSortBackend;
struct csWarnings;
struct pbStore;
struct pbString;

// Looks at a stored configuration, in which what the sort refuses does not occur, and adds what a person should know
// about it; online also what this host makes of it. Called like the other callbacks of a sort (cs_sort_backend.h), but
// only where somebody asks for warnings.
typedef void csSortWarningsFunc( const struct pbStore *config, pbBool online, struct csWarnings *warnings );

PB_API void csSortBackendSetWarnings( struct csSortBackend *backend, csSortWarningsFunc *warn );

// key is the way to what is meant, such as "udpOptions.portRange"; "" is the object as a whole. text says what the case
// is and what follows from it, without a full stop. warnings lives as long as the callback runs.
PB_API void csWarningsAdd( struct csWarnings *warnings, const char *key, const struct pbString *text );

PB_DECLS_END

#endif
