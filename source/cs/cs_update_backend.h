// csUpdateBackend: a dated step that brings stored configuration of an older version of a module up to date. The steps
// of all modules run on every configuration that is loaded, in the order of their dates, before it is checked; each
// looks at the version recorded for its module and records the one that it reached. Like sorts they belong to the
// module whose backend is created next (cs_module_backend.h) and are called only while that exists, without a monitor
// of the service held. Releasing the last reference unregisters the step and waits for calls under way; not from inside
// a step.
#ifndef CS_UPDATE_BACKEND_H
#define CS_UPDATE_BACKEND_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csUpdate;
struct csUpdateBackend;

// *update is the step's own; it may replace it.
typedef void csUpdateFunc( struct csUpdateBackend *backend, struct csUpdate **update );

PB_API const struct pbSort *csUpdateBackendSort( void );
PB_API struct csUpdateBackend *csUpdateBackendRetain( const struct csUpdateBackend *obj );
PB_API void csUpdateBackendRelease( const struct csUpdateBackend *obj );
PB_API struct pbObj *csUpdateBackendObj( const struct csUpdateBackend *obj );
PB_API struct csUpdateBackend *csUpdateBackendFrom( struct pbObj *obj );
PB_API struct pbString *csUpdateBackendToString( const struct csUpdateBackend *obj );
PB_API pbInt csUpdateBackendCompare( const struct csUpdateBackend *a, const struct csUpdateBackend *b );
PB_API pbBool csUpdateBackendEquals( const struct csUpdateBackend *a, const struct csUpdateBackend *b );

// date is "YYYY-MM-DD"; steps of one date run in the order of their creation.
PB_API struct csUpdateBackend *csUpdateBackendCreateCstr( const char *date, pbInt dateLength, csUpdateFunc *func );
// Runs the steps on the update, as loading a file does.
PB_API void csUpdateBackendsRun( struct csUpdate **update );

PB_DECLS_END

#endif
