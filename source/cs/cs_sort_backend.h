// csSortBackend: how the configuration service makes, reads and changes objects of one sort.
// A module registers its sorts first and creates its module backend last (cs_module_backend.h). Callbacks are called
// only while that module backend exists, from any thread, without a monitor of the service held. Releasing the last
// reference unregisters the sort and waits for calls under way; not from inside a callback.
#ifndef CS_SORT_BACKEND_H
#define CS_SORT_BACKEND_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csKey;
struct csSortBackend;
struct csStatusReporter;
struct trAnchor;
struct pbStore;
struct pbString;

// Null when the object cannot be made.
typedef struct pbObj *csSortTryCreateFunc( struct pbStore *optionalStore, struct trAnchor *optionalAnchor );
typedef struct pbStore *csSortConfigFunc( struct pbObj *obj, pbBool storeDefaults );
typedef void csSortSetConfigFunc( struct pbObj *obj, struct pbStore *store );
// Restores and stores again: what the sort drops is missing in the result, and with storeDefaults every key that has a
// default is there.
typedef struct pbStore *csSortNormalizeConfigFunc( struct pbStore *store, pbBool storeDefaults );
typedef struct csStatusReporter *csSortStatusFunc( struct pbObj *obj );
typedef void csSortTraceCompleteAnchorFunc( struct pbObj *obj, struct trAnchor *anchor );

PB_API const struct pbSort *csSortBackendSort( void );
PB_API struct csSortBackend *csSortBackendRetain( const struct csSortBackend *obj );
PB_API void csSortBackendRelease( const struct csSortBackend *obj );
PB_API struct pbObj *csSortBackendObj( const struct csSortBackend *obj );
PB_API struct csSortBackend *csSortBackendFrom( struct pbObj *obj );
PB_API struct pbString *csSortBackendToString( const struct csSortBackend *obj );
PB_API pbInt csSortBackendCompare( const struct csSortBackend *a, const struct csSortBackend *b );
PB_API pbBool csSortBackendEquals( const struct csSortBackend *a, const struct csSortBackend *b );

// A sort can be registered once at a time.
PB_API struct csSortBackend *csSortBackendCreate( const struct pbSort *sort, csSortTryCreateFunc *tryCreate,
                                                  csSortConfigFunc *config, csSortSetConfigFunc *setConfig,
                                                  csSortNormalizeConfigFunc *normalizeConfig,
                                                  csSortStatusFunc *optionalStatus,
                                                  csSortTraceCompleteAnchorFunc *optionalTraceCompleteAnchor );
// Describes the keys of the sort's configuration, which outlive the backend; see cs_key.h. A key that is not in the
// table is then unknown; without a table the sort's normalizeConfig alone decides.
PB_API void csSortBackendSetKeys( struct csSortBackend *backend, const struct csKey *keys, pbInt keyCount );

PB_DECLS_END

#endif
