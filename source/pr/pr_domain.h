// prDomain: a pool of threads of its own whose processes may block.
#ifndef PR_DOMAIN_H
#define PR_DOMAIN_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct prDomain;

PB_API const struct pbSort *prDomainSort( void );
PB_API struct prDomain *prDomainRetain( const struct prDomain *obj );
PB_API void prDomainRelease( const struct prDomain *obj );
PB_API struct pbObj *prDomainObj( const struct prDomain *obj );
PB_API struct prDomain *prDomainFrom( struct pbObj *obj );
PB_API struct pbString *prDomainToString( const struct prDomain *obj );
PB_API pbInt prDomainCompare( const struct prDomain *a, const struct prDomain *b );
PB_API pbBool prDomainEquals( const struct prDomain *a, const struct prDomain *b );

// threads 1..64; priority as for pbThreadTrySpawnCstr; flags 0. Null when threads cannot be made. The last release
// waits for the processes that run and joins the threads; it must not happen inside one of them. Processes of a released
// domain that were pending or are scheduled later never run.
PB_API struct prDomain *prDomainTryCreate( pbInt threads, pbInt priority, uint64_t flags );

PB_DECLS_END

#endif
