// csModuleBackend: a module's presence in the configuration service. It takes charge of the sorts registered before it
// and by no other module; while it exists the service may call their callbacks. Releasing the last reference stops all
// calls into the module and waits for those under way; not from inside a callback.
#ifndef CS_MODULE_BACKEND_H
#define CS_MODULE_BACKEND_H

#include "pb/pb_module.h"

PB_DECLS_BEGIN

struct csModuleBackend;
struct pbStore;

PB_API const struct pbSort *csModuleBackendSort( void );
PB_API struct csModuleBackend *csModuleBackendRetain( const struct csModuleBackend *obj );
PB_API void csModuleBackendRelease( const struct csModuleBackend *obj );
PB_API struct pbObj *csModuleBackendObj( const struct csModuleBackend *obj );
PB_API struct csModuleBackend *csModuleBackendFrom( struct pbObj *obj );
PB_API struct pbString *csModuleBackendToString( const struct csModuleBackend *obj );
PB_API pbInt csModuleBackendCompare( const struct csModuleBackend *a, const struct csModuleBackend *b );
PB_API pbBool csModuleBackendEquals( const struct csModuleBackend *a, const struct csModuleBackend *b );

// The descriptor is static. The module's information is stored under "modules", the module's name, "info".
PB_API struct csModuleBackend *csModuleBackendCreate( const struct pbModule *module,
                                                      struct pbStore *( *optionalInfo )(void));

PB_DECLS_END

#endif
